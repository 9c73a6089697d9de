#pragma once

#include "app/EditorContext.h"
#include "app/FileChooser.h"
#include "export/ExportJobs.h"

namespace tarnovel::app {

class Button;
class ExportForm;
class Label;
class ProblemCard;
class ProgressBar;

/// Where the user says how and where to the photos go, and sees how far they are.
class ExportPanel : public QWidget {
    Q_OBJECT

public:
    ExportPanel(const EditorContext &context, const FileChooser &chooser, PhotoLibrary &library);

    /// As it is whenever it opens: the whole set, into a folder.
    void open();
    bool working() const { return m_jobs.working(); }
    /// "5 / 12" while a run is under way.
    QString progress() const;
    /// The photo that the run under way could not write; it waits for the user.
    const std::optional<ExportProblem> &problem() const { return m_jobs.run().problem(); }
    const FolderExport &folderExport() const { return m_jobs.folder(); }
    const LibraryExport &libraryExport() const { return m_jobs.library(); }
    /// Of the run under way.
    bool savesToLibrary() const { return m_jobs.intoLibrary(); }
    void dismissResult() { m_jobs.folder().dismissResult(); }
    QSize sizeHint() const override { return {384, 600}; }

Q_SIGNALS:
    void closeAsked();
    void progressed();
    /// Files have been written; the summary is in folderExport().
    void exportedToFolder();
    void exportedToLibrary();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QWidget *makeHeader();
    QWidget *makeFooter();
    void refresh();
    void showRun();
    void start();
    void showProblem();
    void showError();
    void cancel();
    void jobsChanged();
    /// Once for each error: to the screen reader, and as a message when the panel is closed.
    void tellError(const QString &error);

    EditorContext m_context;
    FileChooser m_chooser;
    ExportJobs m_jobs;
    QUuid m_lastResult;
    QString m_told;
    ExportForm *m_form;
    Label *m_status;
    Label *m_photo;
    ProgressBar *m_bar;
    Label *m_note;
    Button *m_cancel;
    Button *m_start;
    Button *m_otherFolder;
    QWidget *m_progressBox;
    ProblemCard *m_problem;
    Label *m_error;
    /// What is in the library's way, and the photo that an error is about.
    Label *m_errorDetail;
};

} // namespace tarnovel::app
