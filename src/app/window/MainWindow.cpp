#include "app/window/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QShortcut>
#include <QStackedLayout>

#include "app/canvas/CanvasView.h"
#include "app/canvas/TextPopover.h"
#include "app/collage/CollageScreen.h"
#include "app/export/ExportPanel.h"
#include "app/handwriting/HandwritingScreen.h"
#include "app/kit/Accessible.h"
#include "app/kit/Focus.h"
#include "app/kit/Overlay.h"
#include "app/kit/Theme.h"
#include "app/screens/ManagePhotos.h"
#include "app/screens/SetPreview.h"
#include "app/screens/SettingsSheet.h"
#include "app/window/DropVeil.h"
#include "app/window/EditorActions.h"
#include "app/window/EditorPage.h"
#include "app/window/FilmStrip.h"
#include "app/window/HomeScreen.h"
#include "app/window/WindowClosing.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

MainWindow::MainWindow(const WindowServices &services)
    : m_services(services),
      m_actions(std::make_unique<EditorActions>(this)),
      m_placement(*this, services.editor.preferences),
      m_pages(new QStackedLayout(this)),
      m_page(new EditorPage(services.editor, *m_actions, services.chooser, services.library)),
      m_questions(services.editor.model, services.editor.state, *m_page),
      m_success(*this, *m_page->exporting(), services.editor.state),
      m_veil(new DropVeil(this)),
      m_toast(new Toast(this))
{
    setWindowTitle(u"Tarnovel"_s);
    setAccessibleRole(*this, QAccessible::Window);
    setAccessibleName(windowTitle());
    setAcceptDrops(true);
    m_pages->setContentsMargins(0, 0, 0, 0);
    m_pages->addWidget(m_page);
    new FocusRing(this);
    m_actions->blockWhen([this] { return overlayOpen(); });
    connectActions();
    connectState();
    for (size_t i = 0; i < toolRows.size(); ++i) {
        const QString key = i < 9 ? QString::number(i + 1) : i == 9 ? u"0"_s : u"-"_s;
        auto *shortcut = new QShortcut(QKeySequence(u"Alt+"_s + key), this);
        connect(shortcut, &QShortcut::activated, this, [this, i] {
            if (currentPage() == m_page && !m_page->atHome() && !overlayOpen()) {
                m_page->showExport(false);
                state().setTool(toolRows.at(i).tool);
                m_page->showDrawer(true);
            }
        });
    }
    m_placement.restore();
    m_closing = std::make_unique<WindowClosing>(*this, m_services.editor);
    updateActions();
    m_page->home()->takeKeyboard();
}

MainWindow::~MainWindow() = default;

void MainWindow::connectActions()
{
    const auto when = [this](Act act, void (MainWindow::*done)()) {
        m_actions->connectTo(act, [this, done] { (this->*done)(); });
    };
    m_actions->connectTo(Act::AddPhotos, [this] { Q_EMIT state().addPhotosAsked(); });
    m_actions->connectTo(Act::Export, [this] {
        showEditor();
        m_page->showExport(!m_page->exportShown());
    });
    m_actions->connectTo(Act::Undo, [this] { m_services.editor.model.undoVisibly(); });
    m_actions->connectTo(Act::Redo, [this] { m_services.editor.model.redoVisibly(); });
    m_actions->connectTo(Act::ApplyToAll, [this] { m_questions.applyToAll(); });
    m_actions->connectTo(Act::SaveStyle, [this] { m_questions.askStyleName(); });
    when(Act::Collage, &MainWindow::showCollage);
    when(Act::PreviewSet, &MainWindow::showSetPreview);
    when(Act::Manage, &MainWindow::showManage);
    m_actions->connectTo(Act::Guide, [this] { showSettings(); });
    m_actions->connectTo(Act::Settings, [this] { showSettings(); });
    when(Act::Paste, &MainWindow::paste);
    // One window is the whole program.
    m_actions->connectAlways(Act::Close, [this] { close(); });
    m_actions->connectAlways(Act::Quit, [this] { close(); });
    m_actions->connectAlways(Act::FullScreen,
                             [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
}

void MainWindow::connectState()
{
    EditorState &shared = state();
    const EditorContext &editor = m_services.editor;
    connect(&editor.model, &EditorModel::changed, this, &MainWindow::modelChanged);
    connect(&shared, &EditorState::saying, m_toast, [this](const QString &text, Toast::Kind kind) {
        placeToast();
        m_toast->say(text, kind);
    });
    connect(&shared, &EditorState::addPhotosAsked, this, [this] {
        m_services.chooser.photos(this,
                                  [this](const QStringList &files) { import(files, ImportMode::Photos); });
    });
    connect(&shared, &EditorState::backgroundAsked, this, [this] {
        m_services.chooser.picture(
            this, [this](const QStringList &files) { import(files, ImportMode::Background); });
    });
    connect(&shared, &EditorState::logoAsked, this, [this] {
        m_services.chooser.picture(this,
                                   [this](const QStringList &files) { import(files, ImportMode::Logo); });
    });
    connect(&shared, &EditorState::signatureAsked, this, &MainWindow::showHandwriting);
    connect(m_page->strip(), &FilmStrip::manageAsked, this, &MainWindow::showManage);
    connect(m_page->strip(), &FilmStrip::previewSetAsked, this, &MainWindow::showSetPreview);
    connect(m_page->home(), &HomeScreen::continueAsked, this, &MainWindow::showEditor);
    connect(m_page->canvas(), &CanvasView::editTextAsked, this, [this](const QString &layer) {
        state().setTool(Tool::Text);
        const std::optional<QRectF> box = m_page->canvas()->layerBox();
        if (box) {
            const QPoint below(qRound(box->center().x()) + 160, qRound(box->bottom()) + 12);
            editTextOnCanvas(this, m_services.editor, layer, m_page->canvas()->mapTo(this, below));
        }
    });
    connect(&editor.imports, &ImportFlow::finished, this, [this](const ImportSummary &summary) {
        // A studio is not left because photos have come.
        if (summary.added > 0 && currentPage() == m_page) {
            showEditor();
        }
    });
}

HandwritingScreen *MainWindow::handwriting() const
{
    return m_handwriting;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(m_closing->mayClose());
    if (event->isAccepted()) {
        m_placement.remember();
    }
}

void MainWindow::saveNow(bool certain)
{
    m_closing->saveNow(certain ? WindowClosing::Ending::Certain : WindowClosing::Ending::Possible);
    m_placement.remember();
}

void MainWindow::offerDrafts()
{
    m_closing->offerDrafts();
}

CollageScreen *MainWindow::collage() const
{
    return m_collage;
}

bool MainWindow::overlayOpen() const
{
    const QList<Overlay *> overlays = findChildren<Overlay *>(Qt::FindDirectChildrenOnly);
    return std::any_of(overlays.begin(), overlays.end(),
                       [](const Overlay *overlay) { return overlay->isVisible(); });
}

QWidget *MainWindow::currentPage() const
{
    return m_pages->currentWidget();
}

void MainWindow::showPage(QWidget *page)
{
    if (m_pages->indexOf(page) < 0) {
        m_pages->addWidget(page);
    }
    m_pages->setCurrentWidget(page);
    m_veil->hide();
    updateActions();
    placeToast();
}

void MainWindow::showEditor()
{
    const QList<PhotoItem> &photos = m_services.editor.model.photos();
    if (photos.isEmpty()) {
        m_page->showExport(false);
        m_page->showHome();
    } else {
        m_page->showEditor();
    }
    showPage(m_page);
}

void MainWindow::showManage()
{
    if (!m_manage) {
        m_manage = new ManagePhotos(m_services.editor.photos());
        connect(m_manage, &ManagePhotos::closeAsked, this, &MainWindow::showEditor);
    }
    showPage(m_manage);
    m_manage->open();
}

void MainWindow::showSetPreview()
{
    if (!m_preview) {
        m_preview = new SetPreview(m_services.editor.photos());
        connect(m_preview, &SetPreview::closeAsked, this, &MainWindow::showEditor);
        connect(m_preview, &SetPreview::exportAsked, this, [this] {
            showEditor();
            m_page->showExport(true);
        });
    }
    showPage(m_preview);
    m_preview->open();
}

void MainWindow::showCollage()
{
    if (!m_collage) {
        m_collage = new CollageScreen(m_services.editor, m_services.chooser);
        for (const auto ended : {&CollageScreen::closeAsked, &CollageScreen::finished}) {
            connect(m_collage, ended, this, &MainWindow::showEditor);
            connect(m_collage, ended, this, [this] { m_closing->endVisit(Drafts::Kind::Collage); });
        }
    }
    showPage(m_collage);
    m_collage->begin();
}

HandwritingScreen &MainWindow::handwritingScreen()
{
    if (!m_handwriting) {
        m_handwriting = new HandwritingScreen(m_services.editor);
        for (const auto ended : {&HandwritingScreen::closeAsked, &HandwritingScreen::finished}) {
            connect(m_handwriting, ended, this, &MainWindow::showEditor);
            connect(m_handwriting, ended, this, [this] { m_closing->endVisit(Drafts::Kind::Handwriting); });
        }
    }
    return *m_handwriting;
}

void MainWindow::showHandwriting()
{
    HandwritingScreen &screen = handwritingScreen();
    showPage(&screen);
    if (!screen.begin()) {
        showEditor();
    }
}

bool MainWindow::resumeHandwriting(const QByteArray &draft)
{
    HandwritingScreen &screen = handwritingScreen();
    showPage(&screen);
    return screen.resume(draft);
}

Overlay *MainWindow::showSettings()
{
    return app::showSettings(this, m_services.editor, m_services.appearance, [this] {
        m_services.languageChosen();
        retranslate();
    });
}

void MainWindow::retranslate()
{
    m_actions->retranslate();
    QEvent change(QEvent::LanguageChange);
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        QApplication::sendEvent(widget, &change);
    }
    m_page->home()->refresh();
    update();
}

void MainWindow::modelChanged(EditorModel::Changes changes)
{
    const EditorModel &model = m_services.editor.model;
    if (changes & EditorModel::ImportChanged) {
        if (model.busy()) {
            placeToast();
            m_toast->say(localized({"正在导入 ", "Importing ", "Importation "}) + model.importProgress(),
                         Toast::Kind::Busy);
        } else {
            m_toast->endBusy();
        }
    }
    if (changes & EditorModel::MessageChanged && !model.message().isEmpty()) {
        placeToast();
        m_toast->say(model.message(), Toast::Kind::Error);
    }
    if (changes & EditorModel::PhotosChanged && model.photos().isEmpty() && currentPage() == m_page) {
        showEditor();
    }
    updateActions();
}

void MainWindow::updateActions()
{
    const EditorModel &model = m_services.editor.model;
    const bool editing = currentPage() == m_page && !m_page->atHome();
    const bool onPage = currentPage() == m_page;
    const bool photo = model.current() != nullptr;
    m_actions->setEnabled(Act::AddPhotos, onPage && model.photos().size() < EditorModel::mostPhotos);
    m_actions->setEnabled(Act::Paste, onPage && model.photos().size() < EditorModel::mostPhotos);
    m_actions->setEnabled(Act::Undo, editing && model.canUndo());
    m_actions->setEnabled(Act::Redo, editing && model.canRedo());
    for (const Act act :
         {Act::Export, Act::ApplyToAll, Act::SaveStyle, Act::PreviewSet, Act::Manage, Act::Collage}) {
        m_actions->setEnabled(act, editing && photo);
    }
    m_actions->setEnabled(Act::Guide, onPage);
    m_actions->setEnabled(Act::Settings, onPage);
}

void MainWindow::placeToast()
{
    if (currentPage() == m_page) {
        m_toast->setAnchor(m_page->toastAnchor(), std::max(m_page->stageWidth() - 64, 280));
    } else {
        m_toast->setAnchor({width() / 2, height() - 96}, std::max(width() / 2, 280));
    }
    m_toast->raise();
}

void MainWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
}

void MainWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        m_placement.shown();
    }
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeToast();
}

void MainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::ActivationChange && !isActiveWindow()) {
        m_services.editor.model.scheduleSave(SaveScheduler::Moment::AtOnce);
    }
    QWidget::changeEvent(event);
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F6 && currentPage() == m_page) {
        m_page->focusNextPart(!(event->modifiers() & Qt::ShiftModifier));
        return;
    }
    if (event->key() == Qt::Key_Escape && currentPage() == m_page) {
        if (state().colorTaker()) {
            state().endPicking();
        } else if (m_services.editor.model.busy()) {
            m_services.editor.imports.cancel();
        } else if (m_page->exportShown()) {
            m_page->showExport(false);
        } else if (m_page->drawerShown()) {
            m_page->showDrawer(false);
        }
        return;
    }
    QWidget::keyPressEvent(event);
}

} // namespace tarnovel::app
