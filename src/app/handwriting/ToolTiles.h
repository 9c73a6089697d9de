#pragma once

#include <vector>

#include "app/kit/ItemView.h"
#include "app/kit/Phrase.h"

namespace tarnovel::app {

/// A row of tiles with a picture and a caption each, of which one is chosen.
class ToolTiles : public ItemView {
    Q_OBJECT

public:
    struct Tile {
        Phrase name;
        /// Draws within a box of the picture's size; a chosen picture may take the colour given.
        std::function<void(QPainter &, const QRectF &, const QColor &)> paint;
        /// Shown in the tooltip; empty for none.
        QString key = {};
    };

    ToolTiles(std::vector<Tile> tiles, QSize tile, QSize picture, QWidget *parent = nullptr);

    /// Narrow tiles have no captions; their tooltips say the names.
    void setNarrow(bool narrow);

    int count() const override { return static_cast<int>(m_tiles.size()); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override { return m_tiles.at(static_cast<size_t>(index)).name(); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;
    bool event(QEvent *event) override;

private:
    int tileWidth() const;

    std::vector<Tile> m_tiles;
    QSize m_tile;
    QSize m_picture;
    bool m_narrow = false;
};

} // namespace tarnovel::app
