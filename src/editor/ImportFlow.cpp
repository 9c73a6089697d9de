#include "editor/ImportFlow.h"

#include <utility>

#include <QFile>
#include <QFileInfo>

#include "language/AppLanguage.h"
#include "model/ImportedFile.h"
#include "pipeline/PipelineError.h"
#include "pipeline/WhenFinished.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

QString ImportSummary::message(ImportSource source) const
{
    QStringList parts;
    if (truncated) {
        parts.append(
            localized({"一次最多编辑 50 张，已添加前 ", "Up to 50 photos per session. Added the first ",
                       "50 photos maximum par session. Les "}) +
            QString::number(added) + localized({" 张。", ".", " premières ont été ajoutées."}));
    }
    if (unreadable > 0) {
        const QString count = QString::number(unreadable);
        parts.append(
            count +
            (source == ImportSource::Files
                 ? localized({" 个文件无法读取。", " files could not be read.", " fichiers illisibles."})
                 : localized({" 张照片无法读取，其余已导入。",
                              " photos could not be read. The others were imported.",
                              " photos n’ont pas pu être lues. Les autres ont été importées."})));
    }
    return parts.join(u' ');
}

ImportFlow::ImportFlow(EditorModel &model, ImagePipeline &pipeline) : m_model(model), m_pipeline(pipeline)
{
    m_copier.setMaxThreadCount(1);
}

ImportFlow::~ImportFlow()
{
    m_stop.request_stop();
    m_copier.waitForDone();
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

void ImportFlow::next()
{
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
    if (m_stop.stop_requested() || full || m_index >= m_request.paths.size()) {
        m_summary.truncated =
            full && m_request.mode == ImportMode::Photos && m_index < m_request.paths.size();
        m_summary.cancelled = m_stop.stop_requested();
        finish();
        return;
    }
    m_model.setImport(true, u"%1 / %2"_s.arg(m_index + 1).arg(m_request.paths.size()));
    const QString path = m_request.paths.at(m_index++);
    m_copier.start([this, path, library = m_model.libraryFolder()] {
        QString file;
        try {
            file = ImportedFile::receive(path, library).file;
            m_copied = file; // read elsewhere only when this thread rests
        } catch (const std::exception &) {
            file.clear(); // counted as unreadable
        }
        QMetaObject::invokeMethod(
            this, [this, file] { copied(file); }, Qt::QueuedConnection);
    });
}

void ImportFlow::copied(const QString &file)
{
    if (file.isEmpty()) {
        inspected(file, std::nullopt);
        return;
    }
    whenFinished<PhotoItem>(m_pipeline.inspect({file}, ImagePipeline::TestDecode::Yes, m_stop.get_token()),
                            this, [this, file](const QFuture<PhotoItem> &finished) {
                                std::optional<PhotoItem> item;
                                try {
                                    item = finished.result();
                                } catch (const QException &) {
                                    item.reset(); // unreadable, or cancelled: `step` tells them apart
                                }
                                inspected(file, item);
                            });
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
        m_summary.added =
            m_model.importPhotos(m_items, m_request.style, m_request.autoApply, m_stop.get_token());
        // The session may have grown meanwhile.
        m_summary.truncated = m_summary.truncated || m_summary.added < m_items.size();
        removeFrom(m_summary.added);
    }
    m_items.clear();
    // Whoever hears of the end may ask for the next import at once: it waits in the queue until all have
    // heard.
    const ImportSummary summary = m_summary;
    m_model.setImport(false, {});
    if (const QString message = summary.message(m_request.source); !summary.cancelled && !message.isEmpty()) {
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
        TextLayer *logo = settings.layer(u"watermark"_s);
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
