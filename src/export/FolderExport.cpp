#include "export/FolderExport.h"

#include <QDir>

#include "base/AtomicFile.h"
#include "export/ExportChoices.h"
#include "export/ExportNames.h"
#include "pipeline/CameraTexts.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

FolderExport::FolderExport(ImagePipeline &pipeline)
    : m_pipeline(pipeline), m_thumbnails(pipeline), m_run(pipeline)
{
    connect(&m_thumbnails, &DeliveredThumbnails::changed, this, &FolderExport::changed);
}

void FolderExport::start(const QList<PhotoItem> &photos, const ExportOptions &options, const QString &folder)
{
    start(photos, options, folder, ExportNames::defaultPattern(false), {});
}

void FolderExport::start(const QList<PhotoItem> &photos, const ExportOptions &options, const QString &folder,
                         const FieldPattern &names, const QString &sizeName)
{
    if (photos.isEmpty() || working()) {
        return;
    }
    m_folder = folder;
    m_names = names;
    m_sizeName = sizeName;
    m_written.clear();
    m_taken.clear();
    m_extension = options.png ? u"png"_s : u"jpg"_s;
    m_progress = 0;
    m_total = static_cast<int>(photos.size());
    m_error.clear();
    m_cancelled = false;
    m_result.reset();
    m_thumbnails.clear();
    m_run.start(photos, options,
                {.deliver =
                     [this, photos](int index, const ExportedFile &file) {
                         // The list is read on the interface thread only after this delivery has been told
                         // there.
                         m_written.append(deliver(photos, index, file));
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

QString FolderExport::deliver(const QList<PhotoItem> &photos, int index, const ExportedFile &file)
{
    const PhotoItem &photo = photos.at(index);
    FieldValues values;
    if (m_names.usesCamera()) {
        try {
            setCameraFields(values, m_pipeline.captured(photo.file).result());
        } catch (const QException &) {
            values = {}; // the name goes without
        }
    }
    values.name = photo.name;
    values.number = index + 1;
    values.count = static_cast<int>(photos.size());
    values.templateId = photo.settings.templateID.value_or(QString());
    values.size = m_sizeName;
    values.width = file.canvas.width();
    values.height = file.canvas.height();
    return publishFile(
        file.path, m_folder,
        [&](int attempt) { return ExportNames::fileName(m_names, values, m_extension, attempt); }, m_taken);
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
    m_result = ExportResult{QUuid::createUuid(), m_folder, m_written, m_run.skippedNames(),
                            PhotographyQuotes::random()};
    m_thumbnails.read(m_written);
    Q_EMIT changed();
}

void FolderExport::dismissResult()
{
    m_result.reset();
    m_thumbnails.clear();
    Q_EMIT changed();
}

} // namespace tarnovel
