#include "collage/CollageNode.h"

namespace tarnovel {

CollageNode CollageNode::leaf(int slot)
{
    CollageNode node;
    node.slot = slot;
    return node;
}

CollageNode CollageNode::split(CollageAxis axis, double ratio, const CollageNode &first,
                               const CollageNode &second)
{
    CollageNode node;
    node.axis = axis;
    node.ratio = ratio;
    node.children = {first, second};
    return node;
}

CollageNode CollageNode::chain(CollageAxis axis, int from, int count)
{
    if (count < 2) {
        return leaf(from);
    }
    return split(axis, 1.0 / count, leaf(from), chain(axis, from + 1, count - 1));
}

CollageNode CollageNode::gridRows(int from, int columns, int rows)
{
    CollageNode row = chain(CollageAxis::Horizontal, from * columns, columns);
    if (from >= rows - 1) {
        return row;
    }
    return split(CollageAxis::Vertical, 1.0 / (rows - from), row, gridRows(from + 1, columns, rows));
}

void CollageNode::setRatio(const CollagePath &path, double value)
{
    CollageNode *place = this;
    for (const int child : path) {
        Q_ASSERT(child >= 0 && child < place->children.size());
        place = &place->children[child];
    }
    place->ratio = value;
}

const CollageNode *CollageNode::node(const CollagePath &path) const
{
    const CollageNode *place = this;
    for (const int child : path) {
        if (child < 0 || child >= place->children.size()) {
            return nullptr;
        }
        place = &place->children.at(child);
    }
    return place;
}

QList<int> CollageNode::leafSlots() const
{
    if (children.isEmpty()) {
        return {slot};
    }
    QList<int> all;
    for (const CollageNode &child : children) {
        all += child.leafSlots();
    }
    return all;
}

} // namespace tarnovel
