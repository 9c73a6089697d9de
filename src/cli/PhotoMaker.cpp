#include "cli/PhotoMaker.h"

#include <algorithm>
#include <utility>

#include <QDir>
#include <QFileInfo>

#include "base/Cancellation.h"
#include "base/FileTrouble.h"
#include "cli/FailureCode.h"
#include "language/AppLanguage.h"
#include "model/FrameSettingsJson.h"
#include "pipeline/PipelineError.h"
#include "render/CompositionRenderer.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

Json factsOf(const PhotoItem &item, const ExportedFile &made)
{
    const QRectF placed = CompositionRenderer::photoRect(item, item.settings, made.canvas);
    Json facts;
    facts["width"] = made.canvas.width();
    facts["height"] = made.canvas.height();
    facts["bytes"] = made.bytes;
    facts["canvas"] = {made.canvas.width(), made.canvas.height()};
    facts["photoRect"] = Json::array({placed.x(), placed.y(), placed.width(), placed.height()});
    facts["style"] = toJson(item.settings);
    return facts;
}

MadeSize failed(const QString &message, const QString &code)
{
    MadeSize size;
    size.message = message;
    size.code = code;
    return size;
}

MadeSize failed(const PipelineFailure &failure)
{
    const QString of = failure.file().isEmpty() ? QString() : failure.file() + u": "_s;
    return failed(of + errorDescription(failure), failureCode(failure));
}

/// The disk that temporary files lie on, or memory, refused.
MadeSize failed(const FileError &error)
{
    const QString where =
        error.path() == u"memory"_s
            ? localized({"内存", "memory", "mémoire"})
            : localized({"临时文件夹 ", "temporary folder ", "dossier temporaire "}) + QDir::tempPath();
    return failed(where + u": "_s + errorDescription(error), failureCode(error));
}

template<typename Work>
MadeSize outcomeOf(Work work)
{
    try {
        return work();
    } catch (const PipelineFailure &failure) {
        return failed(failure);
    } catch (const FileError &error) {
        return failed(error);
    }
}

bool isOneFailure(const QList<MadeSize> &sizes)
{
    return std::ranges::all_of(sizes, [&sizes](const MadeSize &size) {
        return size.path.isEmpty() && size.message == sizes.first().message;
    });
}

} // namespace

Json MadePhoto::toJson() const
{
    Json list = Json::array();
    for (const MadeSize &size : sizes) {
        list.push_back({{"path", jsonText(size.path)},
                        {"facts", size.facts},
                        {"message", jsonText(size.message)},
                        {"code", jsonText(size.code)}});
    }
    Json said = Json::array();
    for (const QString &warning : warnings) {
        said.push_back(jsonText(warning));
    }
    return {{"sizes", list}, {"warnings", said}};
}

MadePhoto MadePhoto::fromJson(const Json &json)
{
    MadePhoto photo;
    const JsonReader reader(json);
    for (const JsonReader &each : reader.member("sizes").elements()) {
        MadeSize size;
        size.path = each.member("path").text();
        size.facts = each.member("facts").value();
        size.message = each.member("message").text();
        size.code = each.member("code").text();
        if (!size.path.isEmpty()) {
            size.owner = std::make_shared<UnclaimedFile>(size.path);
        }
        photo.sizes.append(size);
    }
    for (const JsonReader &each : reader.member("warnings").elements()) {
        photo.warnings.append(each.text());
    }
    return photo;
}

MadePhoto MadePhoto::failed(const QString &message, const QString &code)
{
    return {{cli::failed(message, code)}};
}

PhotoSource::PhotoSource(ImagePipeline &pipeline, const Styler &styler, std::stop_token stop)
    : m_pipeline(pipeline), m_styler(&styler), m_stop(std::move(stop))
{
}

PhotoSource::PhotoSource(ImagePipeline &pipeline, QList<PhotoItem> items, std::stop_token stop)
    : m_pipeline(pipeline), m_items(std::move(items)), m_stop(std::move(stop))
{
}

PhotoItem PhotoSource::inspected(const PhotoJob &job) const
{
    const QString path = QFileInfo(job.photo).absoluteFilePath();
    return m_pipeline.inspect({path}, ImagePipeline::TestDecode::No, m_stop).result();
}

PhotoItem PhotoSource::item(const PhotoJob &job) const
{
    return m_styler ? m_styler->styled(inspected(job), job.index) : m_items.at(job.index);
}

PhotoItem PhotoSource::shape(const PhotoJob &job) const
{
    return m_styler ? m_styler->shaped(inspected(job), job.index) : m_items.at(job.index);
}

QString PhotoSource::file(const PhotoJob &job) const
{
    return m_styler ? QFileInfo(job.photo).absoluteFilePath() : m_items.at(job.index).file;
}

QString PhotoSource::templateOf(const PhotoJob &job) const
{
    return m_styler ? m_styler->templateId() : m_items.at(job.index).settings.templateID.value_or(QString());
}

CaptureMetadata PhotoSource::captured(const PhotoJob &job) const
{
    return m_pipeline.captured(file(job), m_stop).result();
}

std::optional<FileError> PhotoSource::trouble(const PhotoJob &job) const
{
    return fileTrouble(m_pipeline.path(file(job)));
}

void LocalMaker::begin(const PhotoJob &job)
{
    Begun begun;
    try {
        begun.item = m_source.item(job);
        QList<ExportOptions> sizes;
        for (const WantedSize &size : job.sizes) {
            sizes.append(size.options);
        }
        begun.files = m_source.pipeline().exportSizes(begun.item, sizes, m_source.stop());
    } catch (const OperationCancelled &) {
        throw;
    } catch (const QException &) {
        begun.failure = std::current_exception();
    }
    m_begun.push_back(std::move(begun));
}

MadePhoto LocalMaker::next()
{
    const Begun begun = std::move(m_begun.front());
    m_begun.pop_front();
    if (begun.failure) {
        return {{outcomeOf([&begun]() -> MadeSize { std::rethrow_exception(begun.failure); })}};
    }
    QList<MadeSize> sizes;
    for (const QFuture<ExportedFile> &file : begun.files) {
        sizes.append(outcomeOf([&begun, &file] {
            const ExportedFile made = file.result();
            MadeSize size;
            size.path = made.path;
            size.owner = made.owner;
            size.facts = factsOf(begun.item, made);
            return size;
        }));
    }
    return {isOneFailure(sizes) ? QList<MadeSize>{sizes.first()} : sizes};
}

} // namespace tarnovel::cli
