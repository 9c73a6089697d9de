#pragma once

#include "export/ExportChoices.h"
#include "export/FolderExport.h"
#include "export/LibraryExport.h"

namespace tarnovel {

/// The two ways in which photos leave the editor, of which one at a time is under way. The files that it
/// reads stay meanwhile, whatever becomes of their photos in the session.
class ExportJobs : public QObject {
    Q_OBJECT

public:
    ExportJobs(EditorModel &model, ImagePipeline &pipeline, PhotoLibrary &library);

    /// Nothing happens without photos or while a run is under way.
    void startToFolder(const ExportChoices &choices, const QString &folder);
    void startToLibrary(const ExportChoices &choices);
    /// Gives up the run under way.
    void cancel();

    bool working() const;
    /// Into the photo library: there is no way back.
    bool saving() const { return m_library.phase() == LibraryExport::Phase::Saving; }
    int done() const { return m_folder.working() ? m_folder.progress() : m_library.progress(); }
    int total() const { return m_folder.working() ? m_folder.total() : m_library.total(); }
    /// Whether the run under way, or the last one, goes into the photo library.
    bool intoLibrary() const { return m_intoLibrary; }
    const ExportRun &run() const { return m_intoLibrary ? m_library.run() : m_folder.run(); }
    ExportRun &run() { return m_intoLibrary ? m_library.run() : m_folder.run(); }

    FolderExport &folder() { return m_folder; }
    const FolderExport &folder() const { return m_folder; }
    const LibraryExport &library() const { return m_library; }

Q_SIGNALS:
    void changed();

private:
    bool mayStart(const QList<PhotoItem> &photos) const;
    void keepFiles(const QList<PhotoItem> &photos);
    void follow();

    EditorModel &m_model;
    FolderExport m_folder;
    LibraryExport m_library;
    bool m_intoLibrary = false;
};

} // namespace tarnovel
