#include "export/FolderExport.h"

#include <QDir>

#include "base/AtomicFile.h"
#include "export/ExportChoices.h"
#include "export/ExportNames.h"
#include "pipeline/WhenFinished.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr qsizetype mostThumbnails = 4;
constexpr int thumbnailPixels = 700;

} // namespace

FolderExport::FolderExport(ImagePipeline &pipeline) : m_pipeline(pipeline), m_run(pipeline) {}

void FolderExport::start(const QList<PhotoItem> &photos, const ExportOptions &options, const QString &folder)
{
    if (photos.isEmpty() || working()) {
        return;
    }
    m_folder = folder;
    m_written.clear();
    m_taken.clear();
    m_extension = options.png ? u"png"_s : u"jpg"_s;
    m_progress = 0;
    m_total = static_cast<int>(photos.size());
    m_error.clear();
    m_cancelled = false;
    m_result.reset();
    m_run.start(photos, options,
                {.deliver =
                     [this, photos](int index, const ExportedFile &file) {
                         // The list is read on the interface thread only after this delivery has been told
                         // there.
                         m_written.append(deliver(photos.at(index), file));
                     },
                 .progressed =
                     [this](int done) {
                         m_progress = done;
                         Q_EMIT changed();
                     },
                 .completed =
                     [this] {
                         if (m_written.isEmpty() && !m_run.skipped().isEmpty()) {
                             m_error = ExportTexts::failed(m_run.skipped().constLast().description);
                         }
                         sumUp();
                     },
                 .cancelled =
                     [this] {
                         m_cancelled = true;
                         fail(ExportTexts::cancelled(m_written.size()));
                     },
                 .paused = [this] { Q_EMIT changed(); },
                 .failed =
                     [this](const ExportProblem &problem) {
                         m_error = ExportTexts::failed(problem.description);
                         sumUp();
                     }});
    Q_EMIT changed();
}

QString FolderExport::deliver(const PhotoItem &photo, const ExportedFile &file)
{
    return publishFile(
        file.path, m_folder,
        [&](int attempt) { return ExportNames::fileName(photo.name, m_extension, attempt); }, m_taken);
}

void FolderExport::sumUp()
{
    if (m_written.isEmpty()) {
        Q_EMIT changed();
    } else {
        finish();
    }
}

void FolderExport::fail(const QString &error)
{
    m_error = error;
    Q_EMIT changed();
}

void FolderExport::finish()
{
    m_result = ExportResult{QUuid::createUuid(),  m_folder, m_written,
                            m_run.skippedNames(), {},       PhotographyQuotes::random()};
    addThumbnails();
    Q_EMIT changed();
}

void FolderExport::addThumbnails()
{
    for (const QString &file : m_written.first(std::min(mostThumbnails, m_written.size()))) {
        whenFinished<QImage>(m_pipeline.read(file, thumbnailPixels), this,
                             [this, id = m_result->id](const QFuture<QImage> &finished) {
                                 if (!m_result || m_result->id != id) {
                                     return;
                                 }
                                 try {
                                     m_result->thumbnails.append(finished.result());
                                     Q_EMIT changed();
                                 } catch (const QException &) {
                                     return; // a file that went away has no thumbnail
                                 }
                             });
    }
}

void FolderExport::dismissResult()
{
    m_result.reset();
    Q_EMIT changed();
}

} // namespace tarnovel
