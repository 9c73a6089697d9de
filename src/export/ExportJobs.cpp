#include "export/ExportJobs.h"

namespace tarnovel {

ExportJobs::ExportJobs(EditorModel &model, ImagePipeline &pipeline, PhotoLibrary &library)
    : m_model(model), m_folder(pipeline), m_library(pipeline, library)
{
    connect(&m_folder, &FolderExport::changed, this, &ExportJobs::follow);
    connect(&m_library, &LibraryExport::changed, this, &ExportJobs::follow);
}

bool ExportJobs::working() const
{
    return m_folder.working() || m_library.phase() == LibraryExport::Phase::Rendering || saving();
}

void ExportJobs::follow()
{
    if (!working()) {
        m_model.keepFiles({});
    }
    Q_EMIT changed();
}

bool ExportJobs::mayStart(const QList<PhotoItem> &photos) const
{
    return !photos.isEmpty() && !working();
}

void ExportJobs::keepFiles(const QList<PhotoItem> &photos)
{
    std::set<QString> files;
    for (const PhotoItem &photo : photos) {
        files.insert(photo.file);
        files.merge(photo.settings.referencedFiles());
    }
    m_model.keepFiles(files);
}

void ExportJobs::startToFolder(const ExportChoices &choices, const QString &folder)
{
    if (const QList<PhotoItem> photos = choices.photos(m_model); mayStart(photos)) {
        keepFiles(photos);
        m_intoLibrary = false;
        m_folder.start(photos, choices.options(), folder, choices.namePattern(), choices.sizeName());
    }
}

void ExportJobs::startToLibrary(const ExportChoices &choices)
{
    if (const QList<PhotoItem> photos = choices.photos(m_model); mayStart(photos)) {
        keepFiles(photos);
        m_intoLibrary = true;
        m_library.start(photos, choices.options());
    }
}

void ExportJobs::cancel()
{
    if (m_folder.working()) {
        m_folder.cancel();
    } else {
        m_library.cancel();
    }
}

} // namespace tarnovel
