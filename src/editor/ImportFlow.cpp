#include "editor/ImportFlow.h"

#include <utility>

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include "base/FileTrouble.h"
#include "base/Log.h"
#include "language/AppLanguage.h"
#include "language/Plural.h"
#include "model/ImportedFile.h"
#include "pipeline/PipelineError.h"
#include "pipeline/WhenFinished.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

QString truncatedText(qsizetype added)
{
    if (added == 0) {
        return localized({"一次最多编辑 50 张，未添加照片。", "Up to 50 photos per session. None was added.",
                          "50 photos maximum par session. Aucune n’a été ajoutée."});
    }
    return counted(
        added,
        {"一次最多编辑 50 张，已添加前 %1 张。", "Up to 50 photos per session. Added the first %1.",
         "50 photos maximum par session. La première a été ajoutée."},
        {"一次最多编辑 50 张，已添加前 %1 张。", "Up to 50 photos per session. Added the first %1.",
         "50 photos maximum par session. Les %1 premières ont été ajoutées."});
}

QString colon()
{
    return localized({"：", ": ", "\u202f: "});
}

/// A sentence for each reason, with the file's name, or how many files there are.
QStringList refusalTexts(const QList<ImportRefusal> &refused)
{
    QStringList reasons;
    QHash<QString, QStringList> names;
    for (const ImportRefusal &refusal : refused) {
        if (!reasons.contains(refusal.reason)) {
            reasons.append(refusal.reason);
        }
        names[refusal.reason].append(QFileInfo(refusal.path).fileName());
    }
    QStringList texts;
    for (const QString &reason : std::as_const(reasons)) {
        const QStringList &of = names[reason];
        const QString who = of.size() == 1 ? of.first()
                                           : counted(of.size(), {"%1 个文件", "%1 file", "%1 fichier"},
                                                     {"%1 个文件", "%1 files", "%1 fichiers"});
        texts.append(who + colon() + reason);
    }
    return texts;
}

} // namespace

QString ImportSummary::message() const
{
    QStringList parts;
    if (!stopped.isEmpty()) {
        parts.append(stopped);
        parts.append(counted(added, {"已添加 %1 张照片。", "%1 photo was added.", "%1 photo a été ajoutée."},
                             {"已添加 %1 张照片。", "%1 photos were added.", "%1 photos ont été ajoutées."}));
    }
    if (truncated) {
        parts.append(truncatedText(added));
    }
    if (unreadable > 0) {
        parts.append(counted(
            unreadable, {"%1 个文件无法读取。", "%1 file could not be read.", "%1 fichier illisible."},
            {"%1 个文件无法读取。", "%1 files could not be read.", "%1 fichiers illisibles."}));
    }
    parts += refusalTexts(refused);
    return parts.join(u' ');
}

ImportFlow::ImportFlow(EditorModel &model, ImagePipeline &pipeline) : m_model(model), m_pipeline(pipeline) {}

ImportFlow::~ImportFlow()
{
    m_stop.request_stop();
    m_copier.wait();
    if (m_running) {
        remove(m_copied);
        removeFrom(0);
    }
}

void ImportFlow::start(const ImportRequest &request)
{
    m_queue.append(request);
    if (request.mode != ImportMode::Photos && !request.target) {
        m_queue.last().target = m_model.selected();
    }
    if (!m_running) {
        next();
    }
}

void ImportFlow::cancel()
{
    m_queue.clear();
    m_stop.request_stop();
}

void ImportFlow::endNow()
{
    if (!m_running) {
        return;
    }
    m_queue.clear();
    m_copier.wait();
    ++m_run;
    m_stop.request_stop(); // what is being looked at, so that its facts are to be had at once
    if (!m_copied.isEmpty()) {
        takeCopied();
    }
    m_summary.cancelled = false;
    finish();
}

/// A photo that is copied and still being looked at belongs to what has come in.
void ImportFlow::takeCopied()
{
    try {
        PhotoItem item = m_pipeline.inspect({m_copied}, ImagePipeline::TestDecode::No).result();
        item.name = QFileInfo(m_request.paths.at(m_index - 1)).completeBaseName();
        m_items.append(item);
    } catch (const QException &) {
        remove(m_copied);
    }
    m_copied.clear();
}

void ImportFlow::next()
{
    ++m_run;
    m_request = m_queue.takeFirst();
    m_index = 0;
    m_items.clear();
    m_summary = {};
    m_stop = {};
    m_running = true;
    step();
}

void ImportFlow::step()
{
    const qsizetype room =
        m_request.mode == ImportMode::Photos ? EditorModel::mostPhotos - m_model.photos().size() : 1;
    const bool full = m_items.size() >= room;
    if (m_stop.stop_requested() || full || !m_summary.stopped.isEmpty() ||
        m_index >= m_request.paths.size()) {
        m_summary.truncated =
            full && m_request.mode == ImportMode::Photos && m_index < m_request.paths.size();
        m_summary.cancelled = m_stop.stop_requested();
        finish();
        return;
    }
    m_model.setImport(true, u"%1 / %2"_s.arg(m_index + 1).arg(m_request.paths.size()));
    const QString path = m_request.paths.at(m_index++);
    m_copier.run(
        [this, path, library = m_model.libraryFolder()] {
            QString file;
            std::optional<FileError> refusal = fileTrouble(path);
            try {
                if (!refusal) {
                    file = ImportedFile::receive(path, library).file;
                    m_copied = file; // read elsewhere only when this thread rests
                }
            } catch (const FileError &error) {
                refusal = error;
            }
            return std::pair(file, refusal);
        },
        [this, run = m_run](const std::pair<QString, std::optional<FileError>> &copy) {
            if (run == m_run) {
                copied(copy.first, copy.second);
            }
        });
}

void ImportFlow::refused(const FileError &refusal)
{
    qCWarning(logEditor) << "not imported:" << refusal.what();
    const QString reason = errorDescription(refusal);
    if (refusal.access() == FileAccess::Read) {
        m_summary.refused.append({m_request.paths.at(m_index - 1), reason});
    } else {
        m_summary.stopped = reason;
    }
    step();
}

void ImportFlow::copied(const QString &file, const std::optional<FileError> &refusal)
{
    if (refusal) {
        refused(*refusal);
        return;
    }
    whenFinished<PhotoItem>(m_pipeline.inspect({file}, ImagePipeline::TestDecode::Yes, m_stop.get_token()),
                            this, [this, file, run = m_run](const QFuture<PhotoItem> &finished) {
                                if (run != m_run) {
                                    return;
                                }
                                std::optional<PhotoItem> item;
                                try {
                                    item = finished.result();
                                } catch (const PipelineFailure &failure) {
                                    if (failure.hasTellingFault()) {
                                        notFramed(file, errorDescription(failure));
                                        return;
                                    }
                                } catch (const QException &) {
                                    item.reset(); // unreadable, or cancelled: `step` tells them apart
                                }
                                inspected(file, item);
                            });
}

void ImportFlow::notFramed(const QString &file, const QString &reason)
{
    m_copied.clear();
    remove(file);
    m_summary.refused.append({m_request.paths.at(m_index - 1), reason});
    step();
}

void ImportFlow::inspected(const QString &file, const std::optional<PhotoItem> &item)
{
    m_copied.clear();
    if (item) {
        m_items.append(*item);
        // The library's name for the copy says nothing; the photo keeps the one it came with.
        m_items.last().name = QFileInfo(m_request.paths.at(m_index - 1)).completeBaseName();
    } else {
        remove(file);
        m_summary.unreadable += m_stop.stop_requested() ? 0 : 1;
    }
    step();
}

void ImportFlow::finish()
{
    if (m_summary.cancelled) {
        removeFrom(0);
    } else if (m_request.mode != ImportMode::Photos) {
        finishPicture();
    } else if (!m_items.isEmpty()) {
        m_summary.added = m_model.importPhotos(m_items, m_model.styleForImport());
        // The session may have grown meanwhile.
        m_summary.truncated = m_summary.truncated || m_summary.added < m_items.size();
        removeFrom(m_summary.added);
    }
    m_items.clear();
    // Whoever hears of the end may ask for the next import at once: it waits in the queue until all have
    // heard.
    const ImportSummary summary = m_summary;
    m_model.setImport(false, {});
    if (const QString message = summary.message(); !summary.cancelled && !message.isEmpty()) {
        m_model.setMessage(message);
    }
    Q_EMIT finished(summary);
    m_running = false;
    if (!m_queue.isEmpty()) {
        next();
    }
}

void ImportFlow::removeFrom(qsizetype index)
{
    for (qsizetype i = index; i < m_items.size(); ++i) {
        remove(m_items.at(i).file);
    }
}

void ImportFlow::finishPicture()
{
    if (m_items.isEmpty()) {
        return;
    }
    const PhotoItem *wanted = m_request.target ? m_model.photo(*m_request.target) : nullptr;
    if (!wanted) {
        remove(m_items.first().file);
        return;
    }
    FrameSettings settings = wanted->settings;
    const PhotoItem &picture = m_items.first();
    if (m_request.mode == ImportMode::Background) {
        settings.background = Backdrop::image;
        settings.backgroundFile = picture.file;
    } else {
        settings.normalize();
        TextLayer *logo = settings.layer(logoLayer);
        logo->imageFile = picture.file;
        logo->imageAspect = picture.height > 0 ? picture.width / picture.height : 1;
        logo->visible = true;
    }
    m_model.change(*m_request.target, settings);
}

void ImportFlow::remove(const QString &file) const
{
    if (!file.isEmpty()) {
        QFile::remove(m_model.libraryFolder() + u'/' + file);
    }
}

} // namespace tarnovel
