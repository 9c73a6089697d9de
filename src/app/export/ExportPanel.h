#pragma once

#include "app/EditorContext.h"
#include "app/FileChooser.h"
#include "export/ExportChoices.h"
#include "export/FolderExport.h"
#include "export/LibraryExport.h"

class QVBoxLayout;

namespace tarnovel::app {

class Button;
class Label;
class ProblemCard;
class ProgressBar;
class Segments;
class SizeChoice;

/// Where the user says how and where to the photos go, and sees how far they are.
class ExportPanel : public QWidget {
    Q_OBJECT

public:
    ExportPanel(const EditorContext &context, const FileChooser &chooser, PhotoLibrary &library);

    /// As it is whenever it opens: the whole set, into a folder.
    void open();
    bool working() const;
    /// "5 / 12" while a run is under way.
    QString progress() const;
    /// The photo that the run under way could not write; it waits for the user.
    const std::optional<ExportProblem> &problem() const { return run().problem(); }
    const FolderExport &folderExport() const { return m_folder; }
    const LibraryExport &libraryExport() const { return m_library; }
    /// Of the run under way.
    bool savesToLibrary() const { return m_intoLibrary; }
    void dismissResult() { m_folder.dismissResult(); }
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
    void addOptions(QVBoxLayout *column);
    QWidget *makeFooter();
    void refresh();
    void showRun();
    void choose(const std::function<void(ExportChoices &)> &change);
    void start();
    void startInto(const QString &folder);
    /// The run under way, or the last one.
    const ExportRun &run() const { return m_intoLibrary ? m_library.run() : m_folder.run(); }
    ExportRun &run() { return m_intoLibrary ? m_library.run() : m_folder.run(); }
    void showProblem();
    void showError();
    /// Photos may be removed from the session while a run still reads their files.
    void keepFiles(const QList<PhotoItem> &photos);
    void cancel();
    void folderChanged();
    void libraryChanged();
    /// Once for each error: to the screen reader, and as a message when the panel is closed.
    void tellError(const QString &error);
    bool toLibrary() const;

    EditorContext m_context;
    FileChooser m_chooser;
    FolderExport m_folder;
    LibraryExport m_library;
    ExportChoices m_choices;
    QUuid m_lastResult;
    QString m_told;
    QWidget *m_options;
    Segments *m_destination;
    Segments *m_which;
    SizeChoice *m_size;
    Segments *m_format;
    Segments *m_limit;
    Label *m_limitNote;
    Label *m_fileName;
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
    bool m_intoLibrary = false;
};

} // namespace tarnovel::app
