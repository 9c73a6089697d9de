#include "app/window/TopBar.h"

#include <QAction>
#include <QBoxLayout>
#include <QPainter>

#include "app/Wording.h"
#include "app/kit/Button.h"
#include "app/kit/Icons.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int barHeight = 56;
constexpr int brandWidth = 138;
constexpr QRect markBox(26, 18, 20, 20);

QHBoxLayout *rowIn(QWidget *box, int spacing)
{
    auto *row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    return row;
}

} // namespace

TopBar::TopBar(const Actions &actions)
{
    setFixedHeight(barHeight);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(brandWidth, 0, 16, 0);
    row->setSpacing(4);
    m_left = new QWidget;
    QHBoxLayout *left = rowIn(m_left, 4);
    left->addWidget(addButton(actions.add, "plus", false));
    left->addWidget(addButton(actions.collage, "collage", false));
    row->addWidget(m_left);
    row->addStretch();
    m_history = new QWidget;
    QHBoxLayout *history = rowIn(m_history, 4);
    history->addWidget(addButton(actions.undo, "undo", true));
    history->addWidget(addButton(actions.redo, "redo", true));
    history->addSpacing(17);
    row->addWidget(m_history);
    row->addWidget(addButton(actions.guide, "help", true));
    row->addWidget(addButton(actions.settings, "settings", true));
    row->addSpacing(12);
    m_export = addButton(actions.exporting, "export", false, true);
    row->addWidget(m_export);
}

Button *TopBar::addButton(QAction *action, const char *icon, bool iconOnly, bool primary)
{
    auto *button = new Button(
        primary ? Button::Kind::Primary : Button::Kind::Ghost, [action] { return action->text(); }, icon,
        iconOnly ? Button::Face::IconOnly : Button::Face::Text);
    if (iconOnly && !action->shortcut().isEmpty()) {
        button->setKeyHint(action->shortcut().toString(QKeySequence::NativeText));
    }
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    connect(action, &QAction::changed, button, [button, action] {
        button->setEnabled(action->isEnabled());
        button->refresh();
    });
    button->setEnabled(action->isEnabled());
    return button;
}

void TopBar::setHome(bool home)
{
    m_left->setVisible(!home);
    m_history->setVisible(!home);
    m_export->setVisible(!home);
}

void TopBar::setExportProgress(const QString &progress, bool held)
{
    m_export->setBusy(!progress.isEmpty() && !held);
    m_export->setIconName(held ? "warn" : "export");
    if (progress.isEmpty()) {
        m_export->setPhrase(said({"导出", "Export", "Exporter"}));
    } else {
        m_export->setPhrase([progress] { return progress; });
    }
}

void TopBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), theme().canvas);
    Paint::hairline(painter, QPointF(0, height() - 1), QPointF(width(), height() - 1));
    Icons::drawMark(painter, markBox);
    painter.setFont(typeFont(Type::Heading));
    painter.setPen(theme().ink);
    painter.drawText(QRect(56, 0, 100, height()), Qt::AlignLeft | Qt::AlignVCenter, u"Tarnovel"_s);
    if (m_history->isVisible()) {
        const int x = m_history->geometry().right() - 6;
        Paint::hairline(painter, QPointF(x, 18), QPointF(x, 38));
    }
}

} // namespace tarnovel::app
