#include "app/kit/Switch.h"

#include <utility>

#include <QEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

#include "app/kit/Focus.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr QSize track(36, 20);
constexpr int gap = 12;
constexpr int rowHeight = 36;
constexpr int textFlags = Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignVCenter;

} // namespace

Switch::Switch(Phrase phrase, Side side, QWidget *parent)
    : QCheckBox(parent), m_phrase(std::move(phrase)), m_side(side)
{
    setFont(typeFont(Type::Body));
    setAccessibleName(text());
    setProperty("paintsFocus", true);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(this, &QCheckBox::clicked, this, &Switch::toggledByUser);
}

void Switch::show(bool on)
{
    setChecked(on);
}

int Switch::heightForWidth(int width) const
{
    const QRect room(0, 0, std::max(width - track.width() - gap, 20), 1000);
    return std::max(rowHeight, QFontMetrics(font()).boundingRect(room, textFlags, text()).height() + 12);
}

QSize Switch::sizeHint() const
{
    return {QFontMetrics(font()).horizontalAdvance(text()) + gap + track.width() + 2, rowHeight};
}

QSize Switch::minimumSizeHint() const
{
    return {track.width() + gap + 60, rowHeight};
}

void Switch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const Theme &look = theme();
    const bool left = m_side == Side::TextLeft;
    const QRectF box(left ? width() - track.width() : 0, (height() - track.height()) / 2.0, track.width(),
                     track.height());
    QColor fill = isChecked() ? look.accent : look.controlLine;
    if (!isEnabled()) {
        fill.setAlphaF(0.4F);
    }
    Paint::rounded(painter, box, box.height() / 2, fill);
    const double knob = 16;
    const double x = isChecked() ? box.right() - knob - 2 : box.left() + 2;
    Paint::rounded(painter, {x, box.top() + 2, knob, knob}, knob / 2,
                   look.dark && isChecked() ? look.onAccent : (look.dark ? look.ink : look.surface));
    if (hasFocus() && keyboardFocusVisible()) {
        Paint::focusRing(painter, left ? box.adjusted(0, 0, -4, 0) : box.adjusted(4, 0, 0, 0), 10,
                         look.surface);
    }
    painter.setPen(isEnabled() ? look.ink : look.disabled);
    painter.setFont(font());
    const QRectF room(left ? 0 : track.width() + gap, 0, width() - track.width() - gap, height());
    painter.drawText(room, textFlags, text());
}

void Switch::keyPressEvent(QKeyEvent *event)
{
    if (isEnterKey(*event)) {
        if (!event->isAutoRepeat()) {
            click();
        }
        return;
    }
    QCheckBox::keyPressEvent(event);
}

void Switch::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        setAccessibleName(text());
        updateGeometry();
        update();
    }
    QCheckBox::changeEvent(event);
}

} // namespace tarnovel::app
