#include "app/kit/Slider.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>

#include "app/kit/Focus.h"
#include "app/kit/Label.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int knob = 16;
constexpr int fieldWidth = 60;

} // namespace

SliderTrack::SliderTrack(Origin origin, QWidget *parent) : QSlider(Qt::Horizontal, parent), m_origin(origin)
{
    installAccessible();
    setAttribute(Qt::WA_Hover);
    setProperty("paintsFocus", true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SliderTrack::setShown(double unit, std::function<QString(double value)> text)
{
    m_unit = unit;
    m_text = std::move(text);
}

SpokenValue SliderTrack::spoken() const
{
    return {value() / m_unit, minimum() / m_unit, maximum() / m_unit, singleStep() / m_unit,
            m_text(value() / m_unit)};
}

void SliderTrack::takeSpoken(double value)
{
    setValue(qRound(value * m_unit));
}

double SliderTrack::knobCentre() const
{
    const double share = maximum() > minimum() ? double(value() - minimum()) / (maximum() - minimum()) : 0;
    return knob / 2.0 + share * (width() - knob);
}

int SliderTrack::valueAt(double x) const
{
    const double share = std::clamp((x - knob / 2.0) / std::max(width() - knob, 1), 0.0, 1.0);
    return minimum() + qRound(share * (maximum() - minimum()));
}

void SliderTrack::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const Theme &look = theme();
    const double middle = height() / 2.0;
    const double centre = knobCentre();
    const QRectF track(0, middle - 2, width(), 4);
    Paint::rounded(painter, track, 2, look.surfaceMuted);
    Paint::outline(painter, track, 2, look.hairline);
    const double from = m_origin == Origin::Low ? 0 : width() / 2.0;
    if (isEnabled()) {
        Paint::rounded(painter, {std::min(from, centre), middle - 2, std::abs(centre - from), 4}, 2,
                       look.accent);
    }
    if (m_origin == Origin::Centre && std::abs(centre - from) > knob / 2.0) {
        painter.fillRect(QRectF(from - 0.5, middle - 5, 1, 10), isEnabled() ? look.accent : look.disabled);
    }
    const QRectF ball(centre - knob / 2.0, middle - knob / 2.0, knob, knob);
    if (isEnabled() && (underMouse() || m_grabbed)) {
        Paint::rounded(painter, ball.adjusted(-4, -4, 4, 4), knob, look.hover());
    }
    if (!isEnabled()) {
        Paint::rounded(painter, ball, knob / 2.0, look.surfaceMuted);
        Paint::outline(painter, ball, knob / 2.0, look.hairline);
        return;
    }
    Paint::rounded(painter, ball, knob / 2.0, look.dark ? look.ink : look.surface);
    QColor edge = look.ink;
    edge.setAlphaF(0.25F);
    Paint::outline(painter, ball, knob / 2.0, edge);
    if (hasFocus() && keyboardFocusVisible()) {
        Paint::outline(painter, ball.adjusted(-2, -2, 2, 2), knob, look.accent, 2);
    }
}

void SliderTrack::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_grabbed = true;
    setSliderDown(true);
    // A press on the knob takes it where it is; beside it, the knob jumps under the hand.
    if (std::abs(event->position().x() - knobCentre()) > knob / 2.0) {
        setValue(valueAt(event->position().x()));
    }
    update();
}

void SliderTrack::mouseMoveEvent(QMouseEvent *event)
{
    if (m_grabbed) {
        setValue(valueAt(event->position().x()));
    }
}

void SliderTrack::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_grabbed = false;
    setSliderDown(false);
    update();
    Q_EMIT released();
}

void SliderTrack::mouseDoubleClickEvent(QMouseEvent *)
{
    Q_EMIT resetRequested();
}

void SliderTrack::keyPressEvent(QKeyEvent *event)
{
    const int steps = event->modifiers() & Qt::ShiftModifier ? pageStep() : singleStep();
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        setValue(value() - steps);
        return;
    case Qt::Key_Right:
    case Qt::Key_Up:
        setValue(value() + steps);
        return;
    default:
        QSlider::keyPressEvent(event);
    }
}

void SliderTrack::wheelEvent(QWheelEvent *event)
{
    // The wheel scrolls the panel; a value that turns under a passing hand is a fault.
    event->ignore();
}

void SliderTrack::focusOutEvent(QFocusEvent *event)
{
    QSlider::focusOutEvent(event);
    Q_EMIT released();
}

Slider::Slider(Phrase name, const Range &range, QWidget *parent)
    : QWidget(parent),
      m_name(std::move(name)),
      m_range(range),
      m_field(new NumberField(m_name, {range.low, range.high, range.step, range.decimals, range.unit}, this)),
      m_track(new SliderTrack(range.origin, this))
{
    auto *label = new Label(Type::Label, m_name);
    m_field->setFixedWidth(fieldWidth);
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(label, 1);
    row->addWidget(m_field);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addLayout(row);
    column->addWidget(m_track);
    // The track counts in the smallest amount that is shown.
    const double unit = std::pow(10, range.decimals);
    m_track->setRange(qRound(range.low * unit), qRound(range.high * unit));
    m_track->setSingleStep(std::max(qRound(range.step * unit), 1));
    m_track->setPageStep(10 * m_track->singleStep());
    m_track->setAccessibleName(m_name());
    m_track->setShown(unit, [this](double value) { return m_field->textOf(value); });
    connect(m_track, &QSlider::valueChanged, this, [this, unit](int value) {
        if (!m_showing) {
            tell(value / unit);
        }
    });
    connect(m_track, &SliderTrack::resetRequested, this, [this] { tell(m_range.usual); });
    connect(m_track, &SliderTrack::released, this, &Slider::released);
    connect(m_field, &NumberField::valueTyped, this, &Slider::tell);
}

void Slider::setValue(double value)
{
    m_showing = true;
    m_field->setValue(value);
    m_track->setValue(qRound(value * std::pow(10, m_range.decimals)));
    m_showing = false;
}

void Slider::tell(double value)
{
    setValue(value);
    Q_EMIT changed(value);
}

void Slider::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_track->setAccessibleName(m_name());
    }
    QWidget::changeEvent(event);
}

} // namespace tarnovel::app
