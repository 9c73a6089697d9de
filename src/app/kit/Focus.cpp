#include "app/kit/Focus.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>

#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int reach = 4;
constexpr int usualRadius = 8;
bool withKeyboard = false;
/// Whether the last thing that the user did was a key.
bool lastWasKey = false;

bool isModifier(const QKeyEvent &key)
{
    switch (key.key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
        return true;
    default:
        return false;
    }
}

bool movesFocus(const QKeyEvent &key)
{
    switch (key.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_F6:
        return true;
    default:
        return false;
    }
}

/// What of the widget can be seen through the scroll areas around it, in the coordinates of `window`.
QRect visiblePart(const QWidget *widget, const QWidget *window)
{
    QRect rect(widget->mapTo(window, QPoint()), widget->size());
    for (const QWidget *parent = widget->parentWidget(); parent && parent != window;
         parent = parent->parentWidget()) {
        const auto *area = qobject_cast<const QAbstractScrollArea *>(parent->parentWidget());
        if (area && area->viewport() == parent) {
            rect &= QRect(parent->mapTo(window, QPoint()), parent->size());
        }
    }
    return rect;
}

} // namespace

bool isEnterKey(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) &&
           !(event.modifiers() & ~Qt::KeypadModifier);
}

bool keyboardFocusVisible()
{
    return withKeyboard;
}

FocusRing::FocusRing(QWidget *window) : QWidget(window)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this] {
        // What a key has opened shows where the keyboard is.
        withKeyboard = withKeyboard || lastWasKey;
        follow();
    });
}

bool FocusRing::eventFilter(QObject *object, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        lastWasKey = lastWasKey || !isModifier(*static_cast<QKeyEvent *>(event));
        break;
    case QEvent::KeyPress:
        lastWasKey = lastWasKey || !isModifier(*static_cast<QKeyEvent *>(event));
        if (!withKeyboard && movesFocus(*static_cast<QKeyEvent *>(event))) {
            withKeyboard = true;
            follow();
            if (QWidget *focused = QApplication::focusWidget()) {
                focused->update();
            }
        }
        break;
    case QEvent::MouseButtonPress:
        lastWasKey = false;
        if (withKeyboard) {
            withKeyboard = false;
            follow();
            if (QWidget *focused = QApplication::focusWidget()) {
                focused->update();
            }
        }
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
        if (m_target && object->isWidgetType() &&
            (object == m_target || static_cast<QWidget *>(object)->isAncestorOf(m_target))) {
            follow();
        }
        break;
    default:
        break;
    }
    return QWidget::eventFilter(object, event);
}

void FocusRing::follow()
{
    QWidget *focused = QApplication::focusWidget();
    const bool shown = withKeyboard && focused && parentWidget()->isAncestorOf(focused) &&
                       focused->isVisible() && !focused->property("paintsFocus").toBool();
    m_target = focused;
    const QRect rect = shown ? visiblePart(focused, parentWidget()) : QRect();
    if (rect.isEmpty()) {
        hide();
        return;
    }
    setGeometry(rect.adjusted(-reach, -reach, reach, reach));
    raise();
    show();
    update();
}

void FocusRing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QVariant radius = m_target ? m_target->property("focusRadius") : QVariant();
    Paint::focusRing(painter, QRectF(rect()).adjusted(reach, reach, -reach, -reach),
                     radius.isValid() ? radius.toInt() : usualRadius, theme().surface);
}

} // namespace tarnovel::app
