#include "app/kit/PositionPad.h"

#include <QPainter>

#include "app/kit/Theme.h"
#include "editor/EditorRules.h"

namespace tarnovel::app {

PositionPad::PositionPad(QWidget *parent) : ItemView(Arrows::Move, parent)
{
    setFixedSize(sizeHint());
}

QRect PositionPad::itemRect(int index) const
{
    return {4 + index % 3 * 29 + index % 3 / 2, 4 + index / 3 * 29 + index / 6, 30, 30};
}

QString PositionPad::itemName(int index) const
{
    return QuickPositions::title(QuickPositions::all.at(static_cast<size_t>(index)));
}

void PositionPad::paintGround(QPainter &painter)
{
    Paint::rounded(painter, rect(), 8, theme().surfaceMuted);
}

void PositionPad::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRectF box = QRectF(itemRect(index)).adjusted(1, 1, -1, -1);
    if (state.chosen && state.enabled) {
        Paint::rounded(painter, box, 6, look.accent);
    } else if (state.hovered) {
        Paint::rounded(painter, box, 6, state.pressed ? look.pressed() : look.hover());
    }
    if (state.focused) {
        Paint::outline(painter, box, 6, look.accent, 2);
        if (state.chosen) {
            Paint::outline(painter, box.adjusted(2, 2, -2, -2), 5, look.onAccent, 1);
        }
    }
    const QColor dot = !state.enabled ? look.disabled : state.chosen ? look.onAccent : look.controlLine;
    Paint::rounded(painter, QRectF(box.center() - QPointF(2.5, 2.5), QSizeF(5, 5)), 2.5, dot);
}

} // namespace tarnovel::app
