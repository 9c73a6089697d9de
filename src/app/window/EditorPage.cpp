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
      m_home(new HomeScreen(context)),
      m_editor(new QWidget),
      m_canvas(new CanvasView(context)),
      m_strip(new FilmStrip(context)),
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
    connect(m_export, &ExportPanel::closeAsked, this, [this] { showExport(false); });
    connect(m_export, &ExportPanel::progressed, this,
            [this] { m_bar->setExportProgress(m_export->progress()); });
    showHome();
}

bool EditorPage::atHome() const
{
    return m_body->currentWidget() == m_home;
}

void EditorPage::showHome()
{
    m_body->setCurrentWidget(m_home);
    m_bar->setHome(true);
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

void EditorPage::showExport(bool shown)
{
    m_panel->setVisible(!shown);
    m_rail->setVisible(!shown);
    m_export->setVisible(shown);
    if (shown) {
        m_export->open();
    } else {
        m_canvas->setFocus();
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
        parts.append({m_canvas, m_strip, m_panel, m_rail});
    }
    const QWidget *focused = QApplication::focusWidget();
    qsizetype at = -1;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (focused && (parts.at(i) == focused || parts.at(i)->isAncestorOf(focused))) {
            at = i;
        }
    }
    const qsizetype next = (at + (forward ? 1 : parts.size() - 1)) % parts.size();
    if (QWidget *stop = firstStop(parts.at(at < 0 ? 0 : next))) {
        stop->setFocus(Qt::TabFocusReason);
    }
}

void EditorPage::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
}

} // namespace tarnovel::app
