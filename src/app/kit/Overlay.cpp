#include "app/kit/Overlay.h"

#include <algorithm>
#include <utility>

#include <QAccessible>
#include <QApplication>
#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include "app/kit/Focus.h"
#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int windowMargin = 24;
constexpr int anchorGap = 8;

} // namespace

Overlay::Overlay(Kind kind, QWidget *window, Phrase name)
    : QWidget(window->window()),
      m_kind(kind),
      m_name(std::move(name)),
      m_card(new QWidget(this)),
      m_column(new QVBoxLayout(m_card)),
      m_owner(window)
{
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_DeleteOnClose);
    setAccessibleName(m_name());
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(0);
    hide();
    window->window()->installEventFilter(this);
}

void Overlay::anchorTo(QWidget *anchor)
{
    m_anchor = anchor;
}

void Overlay::anchorAt(QPoint inWindow)
{
    m_anchor = nullptr;
    m_point = inWindow;
}

void Overlay::open()
{
    if (isVisible()) {
        place();
        return;
    }
    m_before = QApplication::focusWidget();
    for (Overlay *other : parentWidget()->findChildren<Overlay *>(Qt::FindDirectChildrenOnly)) {
        if (other != this && other->isVisible() && other->m_kind == Kind::Popover &&
            m_kind == Kind::Popover && !other->isAncestorOf(m_owner)) {
            other->close();
        }
    }
    place();
    show();
    raise();
    setFocus();
    if (m_start) {
        m_start->setFocus(Qt::TabFocusReason);
    }
    for (QWidget *next = nextInFocusChain(); !m_start && next && next != this;
         next = next->nextInFocusChain()) {
        if (m_card->isAncestorOf(next) && next->focusPolicy() & Qt::TabFocus && next->isEnabled() &&
            next->isVisible()) {
            next->setFocus(Qt::TabFocusReason);
            break;
        }
    }
    QAccessibleEvent opened(this, QAccessible::DialogStart);
    QAccessible::updateAccessibility(&opened);
}

void Overlay::close()
{
    if (!isVisible()) {
        return;
    }
    hide();
    if (m_before && m_before->isVisible()) {
        m_before->setFocus();
    } else if (parentWidget()) {
        parentWidget()->setFocus();
    }
    Q_EMIT closed();
    deleteLater();
}

void Overlay::place()
{
    const QWidget *window = parentWidget();
    setGeometry(window->rect());
    const QSize most = window->size() - QSize(2 * windowMargin, 2 * windowMargin);
    QSize size = m_wanted.isEmpty() ? m_card->sizeHint() : m_wanted;
    if (m_wanted.width() > 0 && m_wanted.height() <= 0) {
        size = {m_wanted.width(), m_column->hasHeightForWidth() ? m_column->heightForWidth(m_wanted.width())
                                                                : m_card->sizeHint().height()};
    }
    size = size.boundedTo(most);
    if (m_kind == Kind::Sheet) {
        m_card->setGeometry(
            QRect(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size));
        return;
    }
    const QRect anchor =
        m_anchor ? QRect(m_anchor->mapTo(window, QPoint()), m_anchor->size()) : QRect(m_point, QSize(1, 1));
    int y = anchor.bottom() + anchorGap;
    if (y + size.height() > height() - anchorGap) {
        y = std::max(anchor.top() - anchorGap - size.height(), anchorGap);
    }
    const int x = std::clamp(anchor.right() - size.width(), anchorGap,
                             std::max(width() - size.width() - anchorGap, anchorGap));
    m_card->setGeometry(QRect(QPoint(x, y), size));
}

void Overlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (m_kind == Kind::Sheet) {
        painter.fillRect(rect(), theme().scrim);
    }
    const double radius = m_kind == Kind::Sheet ? 16 : 12;
    const QRectF card = m_card->geometry();
    drawShadow(painter, card, radius, m_kind == Kind::Sheet ? Elevation::Sheet : Elevation::Popover);
    Paint::rounded(painter, card, radius, theme().surface);
    Paint::outline(painter, card, radius, theme().hairline);
}

void Overlay::mousePressEvent(QMouseEvent *event)
{
    if (m_kind == Kind::Popover && !m_card->geometry().contains(event->position().toPoint())) {
        close();
    }
}

void Overlay::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
    } else if (isEnterKey(*event) && m_default && m_default->isEnabled()) {
        m_default->click();
    }
    // Nothing behind the card hears of keys.
    event->accept();
}

bool Overlay::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest && isVisible()) {
        place();
    }
    return QWidget::event(event);
}

bool Overlay::eventFilter(QObject *object, QEvent *event)
{
    if (object == parentWidget() && event->type() == QEvent::Resize && isVisible()) {
        place();
    }
    return QWidget::eventFilter(object, event);
}

bool Overlay::focusNextPrevChild(bool next)
{
    QWidget *start = QApplication::focusWidget();
    if (!start || !isAncestorOf(start)) {
        start = this;
    }
    for (QWidget *widget = next ? start->nextInFocusChain() : start->previousInFocusChain(); widget != start;
         widget = next ? widget->nextInFocusChain() : widget->previousInFocusChain()) {
        if (m_card->isAncestorOf(widget) && widget->focusPolicy() & Qt::TabFocus && widget->isEnabled() &&
            widget->isVisible() && !widget->focusProxy()) {
            widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return true;
}

void Overlay::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        setAccessibleName(m_name());
    }
    QWidget::changeEvent(event);
}

} // namespace tarnovel::app
