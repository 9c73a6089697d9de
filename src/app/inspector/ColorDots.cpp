#include "app/inspector/ColorDots.h"

#include <utility>

#include <QBoxLayout>

#include "app/kit/ColorPicker.h"
#include "app/kit/Overlay.h"

namespace tarnovel::app {

namespace {

constexpr int pickerWidth = 296;
constexpr int padding = 16;

} // namespace

ColorDots::ColorDots(EditorState &state, QList<Entry> entries) : Swatches(Shape::Dots), m_state(state)
{
    setEntries(std::move(entries));
    setWheel(true);
    connect(this, &Swatches::colorChosen, this, &ColorDots::chosenColor);
    connect(this, &Swatches::wheelChosen, this, &ColorDots::openPicker);
}

void ColorDots::setColor(const QColor &color)
{
    m_shown = color;
    Swatches::setColor(color);
}

void ColorDots::openPicker()
{
    auto *overlay = new Overlay(Overlay::Kind::Popover, this,
                                said({"自定义颜色", "Custom color", "Couleur personnalisée"}));
    auto *picker = new ColorPicker;
    picker->setColor(m_shown);
    overlay->column()->setContentsMargins(padding, padding, padding, padding);
    overlay->column()->addWidget(picker);
    overlay->setCardSize({pickerWidth, 0});
    const QRect wheel = itemRect(count() - 1);
    // Low in the window it opens upwards, and then above all the dots.
    const bool low = mapTo(window(), wheel.center()).y() > window()->height() / 2;
    overlay->anchorAt(mapTo(window(), low ? QPoint(wheel.right(), 0) : wheel.bottomRight()));
    connect(picker, &ColorPicker::changed, this, &ColorDots::dragged);
    connect(picker, &ColorPicker::dropperRequested, this, [this, overlay] {
        overlay->close();
        m_state.pickColor([this](const QColor &color) { Q_EMIT chosenColor(color); });
    });
    overlay->open();
}

} // namespace tarnovel::app
