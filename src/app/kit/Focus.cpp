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
    connect(qApp, &QApplication::focusChanged, this, [this] { follow(); });
}

bool FocusRing::eventFilter(QObject *object, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        if (!withKeyboard && movesFocus(*static_cast<QKeyEvent *>(event))) {
            withKeyboard = true;
            follow();
            if (QWidget *focused = QApplication::focusWidget()) {
                focused->update();
            }
        }
        break;
    case QEvent::MouseButtonPress:
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
