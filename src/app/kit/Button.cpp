#include "app/kit/Button.h"

#include <utility>

#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include "app/kit/Focus.h"
#include "app/kit/Icons.h"
#include "app/kit/Spinner.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int gap = 8;
constexpr int keyGap = 10;

} // namespace

Button::Button(Kind kind, Phrase phrase, const char *icon, Face face, QWidget *parent)
    : QPushButton(parent), m_kind(kind), m_face(face), m_phrase(std::move(phrase)), m_icon(icon)
{
    setFont(typeFont(kind == Kind::Primary || kind == Kind::Danger ? Type::BodyStrong : Type::BodyMedium));
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAutoDefault(false);
    refresh();
}

void Button::setPhrase(Phrase phrase)
{
    m_phrase = std::move(phrase);
    refresh();
}

void Button::setIconName(const char *icon)
{
    m_icon = icon;
    update();
}

void Button::setHint(Phrase hint)
{
    m_hint = std::move(hint);
    refresh();
}

void Button::setKeyHint(const QString &key)
{
    m_key = key;
    refresh();
}

void Button::setHeight(int height)
{
    m_height = height;
    setProperty("focusRadius", height < 32 ? 6 : 8);
    updateGeometry();
}

void Button::setIconSizePx(int size)
{
    m_iconSize = size;
    updateGeometry();
}

void Button::setBusy(bool busy)
{
    if (busy == m_spin.has_value()) {
        return;
    }
    if (busy) {
        m_spin = startTimer(Spinner::tickMs);
    } else {
        killTimer(*std::exchange(m_spin, {}));
    }
    update();
}

void Button::refresh()
{
    const QString text = m_phrase ? m_phrase() : QString();
    setText(m_face == Face::Text ? QString(text).replace(u'&', u"&&"_s) : QString());
    setAccessibleName(text);
    // An icon's tooltip says its name, which readers have as such already.
    setAccessibleDescription(m_hint ? m_hint() : m_key);
    updateGeometry();
    update();
}

QString Button::tip() const
{
    if (m_hint) {
        return m_hint();
    }
    const QString name = accessibleName();
    return m_face == Face::Text ? QString() : m_key.isEmpty() ? name : name + u"  "_s + m_key;
}

bool Button::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), tip(), this);
        return true;
    }
    return QPushButton::event(event);
}

int Button::padding() const
{
    return m_height >= 40 ? 20 : m_height < 32 ? 10 : 12;
}

QSize Button::sizeHint() const
{
    if (m_face == Face::IconOnly) {
        return {m_height, m_height};
    }
    const QFontMetrics metrics(font());
    int width = 2 * padding() + metrics.horizontalAdvance(accessibleName());
    if (m_icon || m_spin) {
        width += m_iconSize + gap;
    }
    if (m_kind == Kind::Primary) {
        width += 8;
    }
    if (!m_key.isEmpty()) {
        width += keyGap + QFontMetrics(typeFont(Type::Label)).horizontalAdvance(m_key);
    }
    return {width + 2, m_height};
}

Button::Colors Button::colors() const
{
    const Theme &look = theme();
    const bool ghost = m_kind == Kind::Ghost || m_kind == Kind::DangerGhost || m_kind == Kind::Link;
    if (!isEnabled()) {
        return {ghost || m_face == Face::IconOnly ? QColor(Qt::transparent) : look.surfaceMuted,
                look.disabled};
    }
    switch (m_kind) {
    case Kind::Primary:
        return {isDown() || m_spin ? look.accentPressed
                : m_hovered        ? look.accentHover
                                   : look.accent,
                look.onAccent};
    case Kind::Danger:
        return {m_hovered || isDown() ? look.dangerHover : look.danger, look.onDanger};
    case Kind::DangerGhost:
        return {Qt::transparent, look.danger};
    case Kind::Link:
        return {Qt::transparent, look.accent};
    case Kind::Secondary:
        return {isChecked() ? look.selection : look.surfaceMuted, isChecked() ? look.accent : look.ink};
    case Kind::Ghost:
        break;
    }
    return {isChecked() ? look.selection : QColor(Qt::transparent), isChecked() ? look.accent : look.ink};
}

void Button::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const Colors paint = colors();
    const double radius = m_height < 32 ? 6 : 8;
    Paint::rounded(painter, rect(), radius, paint.fill);
    if (isEnabled() && m_kind != Kind::Primary && m_kind != Kind::Danger && (m_hovered || isDown())) {
        Paint::rounded(painter, rect(), radius, isDown() ? theme().pressed() : theme().hover());
    }
    const QString text = m_face == Face::Text ? accessibleName() : QString();
    const int textWidth = QFontMetrics(font()).horizontalAdvance(text);
    const int iconWidth = m_icon || m_spin ? m_iconSize : 0;
    const int keyWidth = m_key.isEmpty() || text.isEmpty()
                             ? 0
                             : keyGap + QFontMetrics(typeFont(Type::Label)).horizontalAdvance(m_key);
    const int content = iconWidth + (iconWidth > 0 && !text.isEmpty() ? gap : 0) + textWidth + keyWidth;
    double x = m_kind == Kind::Link ? 0 : (width() - content) / 2.0;
    if (m_spin) {
        Spinner::paint(painter, {x, (height() - m_iconSize) / 2.0, double(m_iconSize), double(m_iconSize)},
                       m_angle, paint.text);
    } else if (m_icon) {
        Icons::draw(painter, m_icon, {x, (height() - m_iconSize) / 2.0}, m_iconSize, paint.text);
    }
    x += iconWidth > 0 && !text.isEmpty() ? iconWidth + gap : iconWidth;
    painter.setPen(paint.text);
    painter.setFont(font());
    painter.drawText(QRectF(x, 0, textWidth + 1, height()), Qt::AlignLeft | Qt::AlignVCenter, text);
    if (keyWidth > 0) {
        QColor faint = paint.text;
        faint.setAlphaF(0.8F);
        painter.setPen(faint);
        painter.setFont(typeFont(Type::Label));
        painter.drawText(QRectF(x + textWidth + keyGap, 0, keyWidth, height()),
                         Qt::AlignLeft | Qt::AlignVCenter, m_key);
    }
}

void Button::keyPressEvent(QKeyEvent *event)
{
    // Of itself a button takes Enter in a dialog only.
    if (isEnterKey(*event)) {
        if (!event->isAutoRepeat()) {
            click();
        }
        return;
    }
    QPushButton::keyPressEvent(event);
}

void Button::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        refresh();
    }
    QPushButton::changeEvent(event);
}

void Button::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    QPushButton::enterEvent(event);
}

void Button::leaveEvent(QEvent *event)
{
    m_hovered = false;
    QPushButton::leaveEvent(event);
}

void Button::timerEvent(QTimerEvent *)
{
    m_angle = (m_angle + Spinner::degreesPerTick) % 360;
    update();
}

} // namespace tarnovel::app
