#pragma once

#include <map>

#include <QList>
#include <QRectF>
#include <QString>

#include "collage/CollageNode.h"

namespace tarnovel {

/// The line between the two children of a split, which the user can drag.
struct CollageDivider {
    CollagePath path;
    CollageAxis axis = CollageAxis::Horizontal;
    /// The split's whole rectangle, the gap included.
    QRectF parent;
    /// The middle of the gap: an x for a horizontal split, a y for a vertical one.
    double position = 0;
    /// The length that the two children share by the ratio: the parent's without the gaps along the axis.
    double shared = 0;

    /// The path's steps joined by "-"; empty for the root.
    QString id() const;
    static std::optional<CollagePath> pathFromId(const QString &id);
};

struct CollageLayout {
    /// Rectangles by slot.
    std::map<int, QRectF> cells;
    /// A split's own divider, then those of its first child, then those of its second.
    QList<CollageDivider> dividers;
};

/// One geometry for board, thumbnails and result.
namespace CollageGeometry {

/// Before a split shares out its length, the gaps of all splits that go on along its axis are taken out, so
/// that the cells of a chain are equal. Where the gaps need more than there is, the cells have no length.
CollageLayout layout(const CollageNode &node, const QRectF &rect, double gap);

/// What a divider dragged to a point does to its split.
struct Drag {
    /// 0.15…0.85, pulled to 1/2, 1/3 and 2/3 within 0.02.
    double ratio = 0.5;
    bool snapped = false;
    /// For example "62 : 38", in the current language.
    QString readout;
};

Drag dragDivider(const CollageDivider &divider, QPointF point);

/// No cell is dragged thinner than 15 % of its split.
double heldRatio(double ratio);
/// "62 : 38", or that the split is centred, in the current language.
QString ratioText(double ratio);

} // namespace CollageGeometry

} // namespace tarnovel
