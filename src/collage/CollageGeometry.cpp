#include "collage/CollageGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QStringList>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

QString CollageDivider::id() const
{
    QStringList steps;
    for (const int step : path) {
        steps.append(QString::number(step));
    }
    return steps.join(u'-');
}

std::optional<CollagePath> CollageDivider::pathFromId(const QString &id)
{
    CollagePath path;
    if (id.isEmpty()) {
        return path;
    }
    for (const QString &step : id.split(u'-')) {
        if (step != u"0"_s && step != u"1"_s) {
            return std::nullopt;
        }
        path.append(step == u"1"_s);
    }
    return path;
}

namespace CollageGeometry {

namespace {

bool isSplit(const CollageNode &node)
{
    return node.axis && node.children.size() == 2;
}

/// The gaps along one axis inside a node: those of its own split and of children that go on the same way.
int gapsAlong(CollageAxis axis, const CollageNode &node)
{
    return isSplit(node) && *node.axis == axis
               ? 1 + gapsAlong(axis, node.children.at(0)) + gapsAlong(axis, node.children.at(1))
               : 0;
}

void layOut(const CollageNode &node, const QRectF &rect, double gap, const CollagePath &path,
            CollageLayout &layout)
{
    if (!isSplit(node)) {
        layout.cells[node.slot] = rect;
        return;
    }
    const bool horizontal = *node.axis == CollageAxis::Horizontal;
    const double length = horizontal ? rect.width() : rect.height();
    const double start = horizontal ? rect.x() : rect.y();
    const int firstGaps = gapsAlong(*node.axis, node.children.at(0));
    const int gaps = gapsAlong(*node.axis, node);
    // Gaps that would need more than there is share it, and the cells have no length.
    const double held = std::min(gap, length / gaps);
    const double shared = std::max(length - held * gaps, 0.0);
    const double first = shared * node.ratio + held * firstGaps;
    layout.dividers.append({path, *node.axis, rect, start + first + held / 2, shared});
    const auto part = [&](double from, double partLength) {
        return horizontal ? QRectF(from, rect.y(), partLength, rect.height())
                          : QRectF(rect.x(), from, rect.width(), partLength);
    };
    layOut(node.children.at(0), part(start, first), gap, path + CollagePath{0}, layout);
    layOut(node.children.at(1), part(start + first + held, std::max(length - first - held, 0.0)), gap,
           path + CollagePath{1}, layout);
}

} // namespace

CollageLayout layout(const CollageNode &node, const QRectF &rect, double gap)
{
    CollageLayout result;
    layOut(node, rect, gap, {}, result);
    return result;
}

double heldRatio(double ratio)
{
    constexpr double thinnest = 0.15;
    return std::clamp(ratio, thinnest, 1 - thinnest);
}

QString ratioText(double ratio)
{
    if (std::abs(ratio - 0.5) < 0.001) {
        return localized({"居中 · 50 : 50", "Centered · 50 : 50", "Centré · 50 : 50"});
    }
    // A sum of steps of one per cent may fall short of the next by less than any step.
    const int share = static_cast<int>(ratio * 100 + 1e-9);
    return u"%1 : %2"_s.arg(share).arg(100 - share);
}

Drag dragDivider(const CollageDivider &divider, QPointF point)
{
    constexpr double pull = 0.02;
    const bool horizontal = divider.axis == CollageAxis::Horizontal;
    const double length = horizontal ? divider.parent.width() : divider.parent.height();
    const double way = horizontal ? point.x() - divider.parent.x() : point.y() - divider.parent.y();
    Drag drag;
    drag.ratio = heldRatio(length < 1 ? way : way / length);
    for (const double stop : {1.0 / 2, 1.0 / 3, 2.0 / 3}) {
        if (std::abs(drag.ratio - stop) <= pull) {
            drag.ratio = stop;
            drag.snapped = true;
        }
    }
    drag.readout = ratioText(drag.ratio);
    return drag;
}

} // namespace CollageGeometry

} // namespace tarnovel
