#include "app/handwriting/InkColors.h"

#include <array>

#include <QEvent>

#include "handwriting/HandwritingTool.h"
#include "render/CompositionRenderer.h"

namespace tarnovel::app {

namespace {

constexpr int dotSize = 24;
constexpr int columnStep = 36;
constexpr int rowStep = 34;
constexpr int manyColumns = 8;
constexpr int fewColumns = 4;
/// Ink black, white, brick red, gold, pine green, blue-black.
constexpr std::array fewColors = {0, 2, 3, 5, 6, 9};

} // namespace

InkColors::InkColors(EditorState &state) : ColorDots(state, {})
{
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    refresh();
}

void InkColors::setFew(bool few)
{
    if (m_few != few) {
        m_few = few;
        refresh();
        updateGeometry();
    }
}

void InkColors::refresh()
{
    const QList<InkSwatch> all = inkSwatches();
    QList<Entry> shown;
    const auto add = [&](const InkSwatch &swatch) {
        shown.append({CompositionRenderer::opaque(swatch.color), [name = swatch.name] { return name; }});
    };
    if (m_few) {
        for (const int index : fewColors) {
            add(all.at(index));
        }
    } else {
        for (const InkSwatch &swatch : all) {
            add(swatch);
        }
    }
    setEntries(shown);
}

int InkColors::columns() const
{
    return m_few ? fewColumns : manyColumns;
}

QRect InkColors::itemRect(int index) const
{
    return {index % columns() * columnStep, index / columns() * rowStep, dotSize, dotSize};
}

QSize InkColors::sizeHint() const
{
    return {(columns() - 1) * columnStep + dotSize, rowStep + dotSize};
}

void InkColors::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        refresh();
    }
    ColorDots::changeEvent(event);
}

} // namespace tarnovel::app
