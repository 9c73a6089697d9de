#include "app/window/ToolRail.h"

#include <algorithm>

#include <QPainter>

#include "app/kit/Icons.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr int itemWidth = 72;
constexpr int itemHeight = 56;
/// Where the window is too low for all.
constexpr int leastItemHeight = 44;
constexpr int topMargin = 4;
constexpr int groupGap = 13;
/// Icon and caption, one under the other.
constexpr int contentHeight = 42;

const ToolRow &rowAt(int index)
{
    return toolRows.at(static_cast<size_t>(index));
}

} // namespace

ToolRail::ToolRail(EditorState &state) : ItemView(Arrows::Choose), m_state(state)
{
    setFixedWidth(sizeHint().width());
    setName(said({"工具", "Tools", "Outils"}));
    setCurrent(static_cast<int>(state.tool()));
    connect(this, &ItemView::chosen, this, [this](int index) { m_state.setTool(rowAt(index).tool); });
    connect(&state, &EditorState::toolChanged, this,
            [this] { setCurrent(static_cast<int>(m_state.tool())); });
}

QRect ToolRail::itemRect(int index) const
{
    const auto groups = static_cast<int>(std::ranges::count_if(toolRows, &ToolRow::beginsGroup));
    const int room = height() - 2 * topMargin - groups * groupGap;
    const int each = std::clamp(room / count(), leastItemHeight, itemHeight);
    int y = topMargin + index * each;
    for (int i = 0; i <= index; ++i) {
        y += rowAt(i).beginsGroup ? groupGap : 0;
    }
    return {(width() - itemWidth) / 2, y, itemWidth, each};
}

QString ToolRail::itemName(int index) const
{
    return localized(rowAt(index).title);
}

void ToolRail::paintGround(QPainter &painter)
{
    painter.fillRect(rect(), theme().surface);
    Paint::hairline(painter, QPointF(0, 0), QPointF(0, height()));
    for (int i = 0; i < count(); ++i) {
        if (rowAt(i).beginsGroup) {
            const double y = itemRect(i).top() - groupGap / 2.0;
            Paint::hairline(painter, QPointF(16, y), QPointF(width() - 16, y));
        }
    }
}

void ToolRail::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRectF box = itemRect(index);
    if (state.chosen) {
        Paint::rounded(painter, box, 8, look.selection);
    } else if (state.hovered) {
        Paint::rounded(painter, box, 8, state.pressed ? look.pressed() : look.hover());
    }
    if (state.focused) {
        Paint::outline(painter, box.adjusted(1, 1, -1, -1), 7, look.accent, 2);
    }
    const QColor color = state.chosen ? look.accent : state.hovered ? look.ink : look.inkSecondary;
    const int top = box.top() + (box.height() - contentHeight) / 2;
    Icons::draw(painter, rowAt(index).icon, {box.center().x() - 10.0, top + 1.0}, 20, color);
    painter.setFont(typeFont(state.chosen ? Type::CaptionStrong : Type::Caption));
    painter.setPen(color);
    painter.drawText(QRectF(box.left() - 4, top + 25, box.width() + 8, 18), Qt::AlignCenter, itemName(index));
}

} // namespace tarnovel::app
