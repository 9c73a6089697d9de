#include "app/handwriting/ToolTiles.h"

#include <utility>

#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr int gap = 4;
constexpr int captionGap = 6;
constexpr int narrowWidth = 60;

} // namespace

ToolTiles::ToolTiles(std::vector<Tile> tiles, QSize tile, QSize picture, QWidget *parent)
    : ItemView(Arrows::Choose, parent), m_tiles(std::move(tiles)), m_tile(tile), m_picture(picture)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
}

void ToolTiles::setNarrow(bool narrow)
{
    if (m_narrow != narrow) {
        m_narrow = narrow;
        updateGeometry();
        update();
    }
}

int ToolTiles::tileWidth() const
{
    return m_narrow ? narrowWidth : m_tile.width();
}

QRect ToolTiles::itemRect(int index) const
{
    return {index * (tileWidth() + gap), 0, tileWidth(), m_tile.height()};
}

QSize ToolTiles::sizeHint() const
{
    return {count() * (tileWidth() + gap) - gap, m_tile.height()};
}

void ToolTiles::paintItem(QPainter &painter, int index, const State &state)
{
    const Theme &look = theme();
    const QRect box = itemRect(index);
    if (state.chosen) {
        Paint::rounded(painter, box, 8, look.selection);
    } else if (state.hovered) {
        Paint::rounded(painter, box, 8, state.pressed ? look.pressed() : look.hover());
    }
    if (state.focused) {
        Paint::outline(painter, box, 8, look.accent, 2);
    }
    const QColor color = !state.enabled ? look.disabled : state.chosen ? look.accent : look.inkSecondary;
    const QFont font = typeFont(state.chosen ? Type::CaptionStrong : Type::Caption);
    const int caption = m_narrow ? 0 : captionGap + lineHeight(Type::Caption);
    const int top = box.top() + (box.height() - m_picture.height() - caption) / 2;
    const QRectF picture(box.left() + (box.width() - m_picture.width()) / 2.0, top, m_picture.width(),
                         m_picture.height());
    painter.save();
    painter.setOpacity(state.enabled ? 1 : 0.5);
    m_tiles.at(static_cast<size_t>(index)).paint(painter, picture, color);
    painter.restore();
    if (m_narrow) {
        return;
    }
    painter.setFont(font);
    painter.setPen(color);
    const QRect row(box.left() + 2, top + m_picture.height() + captionGap, box.width() - 4,
                    lineHeight(Type::Caption));
    painter.drawText(row, Qt::AlignCenter,
                     QFontMetrics(font).elidedText(itemName(index), Qt::ElideRight, row.width()));
}

bool ToolTiles::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const int index = itemAt(help->pos());
        const QString key = index < 0 ? QString() : m_tiles.at(static_cast<size_t>(index)).key;
        if (index >= 0 && (m_narrow || !key.isEmpty())) {
            QToolTip::showText(help->globalPos(),
                               key.isEmpty() ? itemName(index) : itemName(index) + u"  "_s + key, this);
        }
        return true;
    }
    return ItemView::event(event);
}

} // namespace tarnovel::app
