#pragma once

#include <functional>

#include <QHash>
#include <QImage>

#include "app/kit/ItemView.h"

namespace tarnovel::app {

/// Tiles with a picture and a name, in columns.
class CardGrid : public ItemView {
    Q_OBJECT

public:
    /// What the grid shows of a card. `image` is asked for whenever the card is painted, in device pixels and
    /// at most as large as the room it is given; a null one leaves the tile empty.
    struct Source {
        std::function<int()> count;
        std::function<QString(int index)> name;
        std::function<QImage(int index, QSize roomPx)> image;
        std::function<bool(int index)> chosen;
    };

    CardGrid(Source source, QSize tile, int columns, QWidget *parent = nullptr);

    /// The room that a picture has in its tile, in device pixels.
    QSize imageRoomPx() const;

    /// The cards have changed in number or name.
    void reload();

    int count() const override { return m_source.count(); }
    QRect itemRect(int index) const override;
    QString itemName(int index) const override { return m_source.name(index); }
    bool itemChosen(int index) const override { return m_source.chosen(index); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintItem(QPainter &painter, int index, const State &state) override;
    bool event(QEvent *event) override;

private:
    int captionHeight(int row) const;
    int top(int row) const;

    Source m_source;
    QSize m_tile;
    int m_columns;
    /// How many lines a name takes: it is asked for at every turn, and breaking it takes a while.
    mutable QHash<QString, int> m_captionLines;
};

/// Draws a framed picture centred in a tile: a soft edge, so that white shows on white.
void paintFramed(QPainter &painter, const QImage &image, const QRectF &tile, bool shadow);

} // namespace tarnovel::app
