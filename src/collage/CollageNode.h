#pragma once

#include <optional>

#include <QList>

namespace tarnovel {

/// The way a split goes: `horizontal` puts its two children side by side, `vertical` one above the other.
enum class CollageAxis { Horizontal, Vertical };

/// Child indices from the root to a node: 0 is the first (left, upper) child, 1 the second.
using CollagePath = QList<int>;

/// A layout: every inner node cuts its rectangle in two, every leaf shows the photo of a slot.
struct CollageNode {
    /// None on a leaf.
    std::optional<CollageAxis> axis;
    /// The first child's share of the length along the axis, 0…1.
    double ratio = 0.5;
    /// None, or exactly two.
    QList<CollageNode> children;
    /// The photo of a leaf, by its index.
    int slot = 0;
    bool operator==(const CollageNode &) const = default;

    static CollageNode leaf(int slot);
    static CollageNode split(CollageAxis axis, double ratio, const CollageNode &first,
                             const CollageNode &second);

    /// `count` equal cells along one axis, with the slots from `from` on; one leaf for a count below 2.
    static CollageNode chain(CollageAxis axis, int from, int count);
    /// The rows of a grid from row `from` on; the cells are numbered row by row from row 0 on.
    static CollageNode gridRows(int from, int columns, int rows);

    /// The path must lead to a node of this tree.
    void setRatio(const CollagePath &path, double value);
    /// Null for a path that leaves the tree.
    const CollageNode *node(const CollagePath &path) const;
    /// The slots of the leaves, in tree order.
    QList<int> leafSlots() const;
};

} // namespace tarnovel
