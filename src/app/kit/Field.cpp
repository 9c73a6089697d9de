#include "app/kit/Field.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <QTimer>

#include "app/kit/Focus.h"
#include "app/kit/Icons.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int sidePadding = 10;
constexpr int iconSize = 16;
const QChar minusSign(0x2212);

} // namespace

QString asWritten(QString number)
{
    if (currentLanguage() == AppLanguage::french) {
        number.replace(u'.', u',').replace(u' ', QChar(0x202F));
    }
    return number;
}

Field::Field(Phrase name, QWidget *parent) : QLineEdit(parent), m_name(std::move(name))
{
    setFrame(false);
    setFont(typeFont(Type::Body));
    setProperty("paintsFocus", true);
    setAttribute(Qt::WA_Hover);
    setAccessibleName(m_name());
    // The ground is painted here, not by the style.
    QPalette clear = palette();
    clear.setBrush(QPalette::Base, Qt::transparent);
    setPalette(clear);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    layoutMargins();
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *before, const QWidget *now) {
        if (now == this && before && before->window() == window()) {
            // From field to field the keyboard still came from where the first one got it.
            const auto *field = qobject_cast<Field *>(before);
            m_before = field && field->m_before ? field->m_before.data() : before;
        }
    });
}

void Field::giveKeyboardBack()
{
    if (m_before && m_before != this && m_before->isVisible() && m_before->isEnabled()) {
        m_before->setFocus(Qt::OtherFocusReason);
    } else {
        clearFocus();
    }
}

bool Field::isForOthers(const QKeyEvent &key) const
{
    // With nothing typed there is nothing to take back here: the step before is the window's.
    return (key.matches(QKeySequence::Undo) && !isUndoAvailable()) ||
           (key.matches(QKeySequence::Redo) && !isRedoAvailable());
}

bool Field::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && isForOthers(*static_cast<QKeyEvent *>(event))) {
        event->ignore();
        return false;
    }
    return QLineEdit::event(event);
}

void Field::keyPressEvent(QKeyEvent *event)
{
    if (isForOthers(*event)) {
        event->ignore();
        return;
    }
    if (m_givesBack && (isEnterKey(*event) || event->key() == Qt::Key_Escape)) {
        if (isEnterKey(*event)) {
            QLineEdit::keyPressEvent(event);
        }
        event->accept();
        giveKeyboardBack();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void Field::setPlaceholder(Phrase placeholder)
{
    m_placeholder = std::move(placeholder);
    setPlaceholderText(m_placeholder());
}

void Field::setPrefix(const QString &prefix)
{
    m_prefix = prefix;
    layoutMargins();
}

void Field::setIconName(const char *icon)
{
    m_icon = icon;
    layoutMargins();
}

void Field::setFault(bool fault)
{
    m_fault = fault;
    update();
}

void Field::display(const QString &text)
{
    if (this->text() != text && !(hasFocus() && isModified())) {
        setText(text);
        setCursorPosition(0);
    }
}

void Field::setHeight(int height)
{
    m_height = height;
    updateGeometry();
}

void Field::layoutMargins()
{
    int left = sidePadding;
    if (m_icon) {
        left += iconSize + 8;
    }
    if (!m_prefix.isEmpty()) {
        left += QFontMetrics(font()).horizontalAdvance(m_prefix) + 6;
    }
    setTextMargins(left - 2, 0, sidePadding - 2, 0);
}

void Field::paintEvent(QPaintEvent *event)
{
    const Theme &look = theme();
    {
        QPainter painter(this);
        const double radius = m_height < 32 ? 6 : 8;
        const bool typing = hasFocus() && isEnabled() && !isReadOnly();
        Paint::rounded(painter, rect(), radius, typing || m_fault ? look.surface : look.surfaceMuted);
        if (m_fault) {
            Paint::outline(painter, rect(), radius, look.danger, 2);
        } else if (typing) {
            Paint::outline(painter, rect(), radius, look.accent, 2);
        } else if (underMouse() && isEnabled()) {
            Paint::rounded(painter, rect(), radius, look.hover());
        }
        int x = sidePadding;
        if (m_icon) {
            Icons::draw(painter, m_icon, QPointF(x, (height() - iconSize) / 2.0), iconSize, look.ink);
            x += iconSize + 8;
        }
        painter.setPen(isEnabled() ? look.inkSecondary : look.disabled);
        painter.setFont(font());
        painter.drawText(QRect(x, 0, width(), height()), Qt::AlignLeft | Qt::AlignVCenter, m_prefix);
    }
    QLineEdit::paintEvent(event);
}

void Field::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        setAccessibleName(m_name());
        setPlaceholderText(m_placeholder ? m_placeholder() : QString());
    }
    QLineEdit::changeEvent(event);
}

NumberField::NumberField(Phrase name, Range range, QWidget *parent)
    : Field(std::move(name), parent), m_range(std::move(range))
{
    setAlignment(Qt::AlignRight);
    setFont(typeFont(Type::Label));
    setHeight(28);
    setGivesKeyboardBack(true);
    setValue(m_range.low);
    connect(this, &QLineEdit::editingFinished, this, &NumberField::take);
}

void NumberField::setRange(const Range &range)
{
    m_range = range;
    setText(textOf(m_value));
}

QString NumberField::textOf(double value) const
{
    if (m_range.decimals < 0) {
        return asWritten(QString::number(std::round(value * 100) / 100, 'g', 6) + m_range.unit);
    }
    const double unit = std::pow(10, m_range.decimals);
    const double rounded = std::round(value * unit) / unit;
    QString text = QString::number(std::abs(rounded), 'f', rounded == 0 ? 0 : m_range.decimals);
    if (rounded < 0) {
        text.prepend(minusSign);
    }
    return asWritten(text + m_range.unit);
}

void NumberField::setValue(double value)
{
    m_value = value;
    if (!hasFocus() || !isModified()) {
        setText(textOf(value));
    }
}

void NumberField::take()
{
    if (!isModified()) {
        return;
    }
    QString typed = text().remove(m_range.unit.trimmed()).trimmed();
    typed.replace(minusSign, u'-').replace(u',', u'.');
    bool isNumber = false;
    const double value = typed.toDouble(&isNumber);
    setModified(false);
    if (!isNumber || !std::isfinite(value)) {
        setText(textOf(m_value));
        return;
    }
    const double held = std::clamp(value, m_range.low, m_range.high);
    const bool differs = held != m_value;
    m_value = held;
    setText(textOf(held));
    if (differs) {
        Q_EMIT valueTyped(held);
    }
}

void NumberField::step(double by)
{
    take();
    const double held = std::clamp(m_value + by * m_range.step, m_range.low, m_range.high);
    if (held != m_value) {
        m_value = held;
        setText(textOf(held));
        Q_EMIT valueTyped(held);
    }
}

void NumberField::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Up:
        step(event->modifiers() & Qt::ShiftModifier ? 10 : 1);
        return;
    case Qt::Key_Down:
        step(event->modifiers() & Qt::ShiftModifier ? -10 : -1);
        return;
    case Qt::Key_Escape:
        setModified(false);
        setText(textOf(m_value));
        break;
    default:
        break;
    }
    Field::keyPressEvent(event);
}

void NumberField::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange && !isModified()) {
        setText(textOf(m_value));
    }
    Field::changeEvent(event);
}

void NumberField::focusInEvent(QFocusEvent *event)
{
    Field::focusInEvent(event);
    QTimer::singleShot(0, this, &QLineEdit::selectAll);
}

} // namespace tarnovel::app
