#pragma once

#include <memory>

#include <QPointer>
#include <QWidget>

#include "app/Appearance.h"
#include "app/EditorContext.h"
#include "app/FileChooser.h"
#include "app/export/ExportSuccess.h"
#include "app/window/PhotoQuestions.h"
#include "app/window/WindowPlacement.h"
#include "base/ScratchFolder.h"
#include "base/Worker.h"

class QMimeData;
class QStackedLayout;

namespace tarnovel {
class PhotoLibrary;
}

namespace tarnovel::app {

class CollageScreen;
class DropVeil;
class EditorActions;
class EditorPage;
class HandwritingScreen;
class ManagePhotos;
class Overlay;
class SetPreview;
class WindowClosing;

/// What the window works with; all of it outlives it.
struct WindowServices {
    EditorContext editor;
    Appearance &appearance;
    FileChooser chooser;
    PhotoLibrary &library;
    /// Called when the user has chosen another language.
    std::function<void()> languageChosen;
};

/// The program's window: its pages, and what passes between them.
class MainWindow : public QWidget {
    Q_OBJECT

public:
    explicit MainWindow(const WindowServices &services);
    ~MainWindow() override;

    /// Brings photos in, as another start of the program or the command line asks.
    void openPhotos(const QStringList &photos, const QString &activationToken = {});

    CollageScreen *collage() const;
    HandwritingScreen *handwriting() const;
    EditorPage *page() const { return m_page; }
    Toast *toast() const { return m_toast; }
    EditorState &state() { return m_services.editor.state; }
    void showManage();
    void showSetPreview();
    void showCollage();
    void showHandwriting();
    /// Goes on with a draft; false when it cannot be read, or its photo has gone.
    bool resumeHandwriting(const QByteArray &draft);
    Overlay *showSettings();
    /// Shows every text in the language that holds now.
    void retranslate();
    /// Back to the editor, or home when nothing is left.
    void showEditor();
    QWidget *currentPage() const;
    /// A question or a sheet lies over the page.
    bool overlayOpen() const;
    /// Keeps everything without a question, for a program that has to end now, or may have to: edits, photos
    /// that have come in, and drafts of what the studios hold.
    void saveNow(bool certain = true);
    /// Offers what an earlier end of the program left unfinished.
    void offerDrafts();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    HandwritingScreen &handwritingScreen();
    void connectActions();
    void connectState();
    void modelChanged(EditorModel::Changes changes);
    void updateActions();
    void acceptDrag(QDropEvent *event) const;
    void showPage(QWidget *page);
    void import(const QStringList &files, ImportMode mode);
    bool backgroundWanted() const;
    void paste();
    /// Takes the picture itself, where no file of it is at hand. False when there is none.
    bool importImage(const QMimeData *carried, const QString &name);
    void placeToast();

    WindowServices m_services;
    std::unique_ptr<EditorActions> m_actions;
    WindowPlacement m_placement;
    QStackedLayout *m_pages;
    EditorPage *m_page;
    PhotoQuestions m_questions;
    ExportSuccess m_success;
    QPointer<ManagePhotos> m_manage;
    QPointer<SetPreview> m_preview;
    QPointer<CollageScreen> m_collage;
    QPointer<HandwritingScreen> m_handwriting;
    DropVeil *m_veil;
    Toast *m_toast;
    /// Pictures from the clipboard wait here for their import.
    std::unique_ptr<ScratchFolder> m_pasted;
    int m_pastes = 0;
    std::unique_ptr<WindowClosing> m_closing;
    bool m_dropUsable = false;
    Worker m_paster;
};

} // namespace tarnovel::app
