#include "app/kit/Toast.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QPainter>
#include <QTimerEvent>

#include "app/kit/Icons.h"
#include "app/kit/Shadow.h"
#include "app/kit/Spinner.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int pillHeight = 40;
constexpr int padding = 16;
constexpr int iconSize = 16;
/// Around the pill, for its shadow.
constexpr int margin = 40;
constexpr int usualMs = 3000;
constexpr int errorMs = 6000;

} // namespace

Toast::Toast(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::NoFocus);
    hide();
}

void Toast::say(const QString &text, Kind kind)
{
    const bool same = isVisible() && m_text == text;
    m_text = text;
    m_kind = kind;
    setAccessibleName(text);
    m_end.stop();
    if (kind == Kind::Busy) {
        if (!m_spin.isActive()) {
            m_spin.start(Spinner::tickMs, this);
        }
    } else {
        m_spin.stop();
        m_end.start(kind == Kind::Error ? errorMs : usualMs, this);
    }
    place();
    raise();
    show();
    update();
    if (!same) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void Toast::endBusy()
{
    if (m_kind == Kind::Busy) {
        m_spin.stop();
        m_kind = Kind::Plain;
        hide();
    }
}

void Toast::setAnchor(QPoint bottomCentre, int mostWidth)
{
    m_anchor = bottomCentre;
    m_mostWidth = mostWidth;
    place();
}

void Toast::place()
{
    const int icon = m_kind == Kind::Plain ? 0 : iconSize + 8;
    const QFontMetrics metrics(typeFont(Type::BodyMedium));
    const int room = m_mostWidth - 2 * padding - icon;
    const QRect box = metrics.boundingRect(QRect(0, 0, room, 400), Qt::TextWordWrap, m_text);
    const QSize pill(box.width() + 2 * padding + icon + 2, std::max(pillHeight, box.height() + 20));
    setGeometry(m_anchor.x() - pill.width() / 2 - margin, m_anchor.y() - pill.height() - margin,
                pill.width() + 2 * margin, pill.height() + 2 * margin);
}

void Toast::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRectF pill = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    const double radius = 20;
    drawShadow(painter, pill, radius, Elevation::Popover);
    Paint::rounded(painter, pill, radius, theme().toast);
    QRectF room = pill.adjusted(padding, 0, -padding, 0);
    const QPointF at(room.left(), pill.center().y() - iconSize / 2.0);
    if (m_kind == Kind::Busy) {
        Spinner::paint(painter, QRectF(at, QSizeF(iconSize, iconSize)).adjusted(-2, -2, 2, 2), m_angle,
                       theme().onToast);
    } else if (m_kind != Kind::Plain) {
        // A message lies on the ink of its theme, where the other theme's colours can be seen.
        const Theme &marks = theme().dark ? Theme::light() : Theme::darkness();
        const bool error = m_kind == Kind::Error;
        Icons::draw(painter, error ? "warn" : "check", at, iconSize, error ? marks.danger : marks.accent);
    }
    if (m_kind != Kind::Plain) {
        room.setLeft(room.left() + iconSize + 8);
    }
    painter.setFont(typeFont(Type::BodyMedium));
    painter.setPen(theme().onToast);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, m_text);
}

void Toast::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_spin.timerId()) {
        m_angle = (m_angle + Spinner::degreesPerTick) % 360;
        update();
    } else if (event->timerId() == m_end.timerId()) {
        m_end.stop();
        if (underMouse()) {
            m_end.start(usualMs, this);
        } else {
            hide();
        }
    }
}

void Toast::mousePressEvent(QMouseEvent *)
{
    if (m_kind != Kind::Busy) {
        hide();
    }
}

} // namespace tarnovel::app
