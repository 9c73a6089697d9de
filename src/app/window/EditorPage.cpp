#include "app/window/EditorPage.h"

#include <QApplication>
#include <QBoxLayout>
#include <QPainter>
#include <QStackedWidget>

#include "app/canvas/CanvasView.h"
#include "app/export/ExportPanel.h"
#include "app/kit/Theme.h"
#include "app/window/EditorActions.h"
#include "app/window/FilmStrip.h"
#include "app/window/HomeScreen.h"
#include "app/window/ToolPanel.h"
#include "app/window/ToolRail.h"
#include "app/window/TopBar.h"

namespace tarnovel::app {

namespace {

constexpr int toastGap = 16;
/// Below this width of the window the panel comes only when asked for.
constexpr int foldingWidth = 1100;

QBoxLayout *tight(QBoxLayout *layout)
{
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return layout;
}

/// The first widget in there that takes the keyboard.
QWidget *firstStop(QWidget *part)
{
    if (part->focusPolicy() & Qt::TabFocus) {
        return part;
    }
    for (QWidget *child : part->findChildren<QWidget *>()) {
        if (child->focusPolicy() & Qt::TabFocus && child->isVisible() && child->isEnabled()) {
            return child;
        }
    }
    return nullptr;
}

} // namespace

EditorPage::EditorPage(const EditorContext &context, EditorActions &actions, const FileChooser &chooser,
                       PhotoLibrary &library)
    : m_context(context),
      m_bar(new TopBar({actions.action(Act::AddPhotos), actions.action(Act::Collage),
                        actions.action(Act::Undo), actions.action(Act::Redo), actions.action(Act::Guide),
                        actions.action(Act::Settings), actions.action(Act::Export)})),
      m_body(new QStackedWidget),
      m_home(new HomeScreen(context.photos(), context.state)),
      m_editor(new QWidget),
      m_canvas(new CanvasView(context.photos(), context.state, context.clock)),
      m_strip(new FilmStrip(context.photos(), context.state)),
      m_panel(new ToolPanel(context)),
      m_rail(new ToolRail(context.state)),
      m_export(new ExportPanel(context, chooser, library))
{
    QBoxLayout *column = tight(new QVBoxLayout(this));
    column->addWidget(m_bar);
    column->addWidget(m_body, 1);
    m_body->addWidget(m_home);
    m_body->addWidget(m_editor);
    QBoxLayout *row = tight(new QHBoxLayout(m_editor));
    QBoxLayout *stage = tight(new QVBoxLayout);
    stage->addWidget(m_canvas, 1);
    stage->addWidget(m_strip);
    row->addLayout(stage, 1);
    row->addWidget(m_panel);
    row->addWidget(m_rail);
    row->addWidget(m_export);
    m_export->hide();
    connect(m_home, &HomeScreen::continueAsked, this, &EditorPage::showEditor);
    connect(m_rail, &ItemView::chosen, this, [this] {
        const Tool tool = m_context.state.tool();
        showDrawer(!(m_drawer && m_drawerTool == tool));
    });
    connect(m_export, &ExportPanel::closeAsked, this, [this] { showExport(false); });
    connect(m_export, &ExportPanel::progressed, this,
            [this] { m_bar->setExportProgress(m_export->progress(), m_export->problem().has_value()); });
    showHome();
}

bool EditorPage::atHome() const
{
    return m_body->currentWidget() == m_home;
}

void EditorPage::showHome()
{
    const bool left = m_body->currentWidget() != m_home;
    m_body->setCurrentWidget(m_home);
    m_bar->setHome(true);
    if (left) {
        m_home->takeKeyboard();
    }
}

void EditorPage::showEditor()
{
    const bool fresh = atHome();
    m_body->setCurrentWidget(m_editor);
    m_bar->setHome(false);
    if (fresh) {
        m_canvas->setFocus(Qt::OtherFocusReason);
    }
}

void EditorPage::fold(bool folded)
{
    if (folded == m_folded) {
        return;
    }
    m_folded = folded;
    m_drawer = false;
    updatePanel();
}

void EditorPage::updatePanel()
{
    const bool shown = !exportShown() && (!m_folded || m_drawer);
    if (!shown && m_panel->isAncestorOf(QApplication::focusWidget())) {
        m_rail->setFocus(Qt::OtherFocusReason);
    }
    m_panel->setVisible(shown);
}

void EditorPage::showDrawer(bool shown)
{
    m_drawerTool = m_context.state.tool();
    if (!m_folded || m_drawer == shown) {
        return;
    }
    m_drawer = shown;
    updatePanel();
}

void EditorPage::resizeEvent(QResizeEvent *event)
{
    fold(width() < foldingWidth);
    QWidget::resizeEvent(event);
}

void EditorPage::showExport(bool shown)
{
    if (shown == exportShown()) {
        return;
    }
    if (shown) {
        m_drawer = false;
        m_beforeExport = QApplication::focusWidget();
    }
    const bool inside = m_export->isAncestorOf(QApplication::focusWidget());
    m_rail->setVisible(!shown);
    m_export->setVisible(shown);
    updatePanel();
    if (shown) {
        m_export->open();
    } else if (inside) {
        QWidget *back = m_beforeExport && m_beforeExport->isVisible() ? m_beforeExport.data() : m_canvas;
        back->setFocus(Qt::OtherFocusReason);
    }
}

bool EditorPage::exportShown() const
{
    return !m_export->isHidden();
}

QRect EditorPage::dropArea() const
{
    const int top = m_bar->height();
    return {0, top, atHome() ? width() : m_canvas->width(), height() - top};
}

QPoint EditorPage::toastAnchor() const
{
    return {stageWidth() / 2, atHome() ? height() - 56 : height() - m_strip->height() - toastGap};
}

int EditorPage::stageWidth() const
{
    return atHome() ? width() : m_canvas->width();
}

void EditorPage::focusNextPart(bool forward)
{
    QList<QWidget *> parts = {m_bar};
    if (atHome()) {
        parts.append(m_home);
    } else if (exportShown()) {
        parts.append({m_canvas, m_strip, m_export});
    } else {
        parts.append({m_canvas, m_strip});
        if (m_panel->isVisible()) {
            parts.append(m_panel);
        }
        parts.append(m_rail);
    }
    const QWidget *focused = QApplication::focusWidget();
    qsizetype at = -1;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (focused && (parts.at(i) == focused || parts.at(i)->isAncestorOf(focused))) {
            at = i;
        }
    }
    const qsizetype next = (at + (forward ? 1 : parts.size() - 1)) % parts.size();
    QWidget *part = parts.at(at < 0 ? 0 : next);
    // In the strip one wants the photos, not the buttons over them.
    if (QWidget *stop = part == m_strip ? m_strip->view() : firstStop(part)) {
        stop->setFocus(Qt::TabFocusReason);
    }
}

void EditorPage::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
}

} // namespace tarnovel::app
