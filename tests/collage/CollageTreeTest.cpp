#include <algorithm>
#include <numeric>
#include <tuple>

#include <gtest/gtest.h>

#include "collage/CollageGeometry.h"
#include "collage/CollagePreset.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

QStringList ids(int count)
{
    QStringList list;
    for (const CollagePreset &preset : CollagePreset::all(count)) {
        list.append(preset.id);
    }
    return list;
}

TEST(CollagePresets, AreOfferedInOrder)
{
    EXPECT_EQ(ids(0), QStringList());
    EXPECT_EQ(ids(1), (QStringList{u"grid"_s, u"filmstrip"_s}));
    EXPECT_EQ(ids(2), (QStringList{u"h2"_s, u"v2"_s, u"book"_s, u"filmstrip"_s}));
    EXPECT_EQ(ids(3),
              (QStringList{u"h3"_s, u"v3"_s, u"big-left"_s, u"big-top"_s, u"gallery"_s, u"filmstrip"_s}));
    EXPECT_EQ(ids(4), (QStringList{u"g4"_s, u"big3"_s, u"label"_s, u"row"_s, u"column"_s, u"filmstrip"_s}));
    EXPECT_EQ(ids(5), (QStringList{u"grid"_s, u"row"_s, u"column"_s, u"filmstrip"_s}));
    EXPECT_EQ(ids(6), (QStringList{u"grid"_s, u"g6"_s, u"row"_s, u"column"_s, u"filmstrip"_s}));
    EXPECT_EQ(ids(7), (QStringList{u"grid"_s, u"row"_s, u"column"_s}));
    EXPECT_DOUBLE_EQ(CollagePreset::all(5).first().aspect, 1.5);
    EXPECT_DOUBLE_EQ(CollagePreset::all(7).first().aspect, 1);
    EXPECT_EQ(CollagePreset::balancedRows(8), (QList<int>{2, 3, 3}));
    EXPECT_EQ(CollagePreset::balancedRows(10), (QList<int>{2, 2, 3, 3}));
}

TEST(CollagePresets, FillTheirAreaWithEverySlotOnce)
{
    const QRectF area(30, 20, 2000, 1500);
    for (int count = 1; count <= 9; ++count) {
        for (const CollagePreset &preset : CollagePreset::all(count)) {
            SCOPED_TRACE(preset.id.toStdString() + " " + std::to_string(count));
            QList<int> expected(count);
            std::iota(expected.begin(), expected.end(), 0);
            EXPECT_EQ(preset.node.leafSlots(), expected);
            const CollageLayout layout = CollageGeometry::layout(preset.node, area, 0);
            ASSERT_EQ(layout.cells.size(), static_cast<size_t>(count));
            EXPECT_EQ(layout.dividers.size(), count - 1);
            double covered = 0;
            for (const auto &[slot, cell] : layout.cells) {
                covered += cell.width() * cell.height();
                EXPECT_TRUE(area.adjusted(-1e-6, -1e-6, 1e-6, 1e-6).contains(cell));
                for (const auto &[other, otherCell] : layout.cells) {
                    const QRectF common = cell & otherCell;
                    EXPECT_TRUE(slot == other || common.width() * common.height() < 1e-6);
                }
            }
            EXPECT_NEAR(covered, 2000.0 * 1500, 1e-3);
        }
    }
}

TEST(CollagePresets, MakeRegularCellsEqual)
{
    for (const auto &[count, id] :
         {std::pair(3, u"h3"_s), {4, u"g4"_s}, {6, u"g6"_s}, {9, u"grid"_s}, {6, u"filmstrip"_s}}) {
        const QList<CollagePreset> all = CollagePreset::all(count);
        const CollagePreset preset = *std::ranges::find(all, id, &CollagePreset::id);
        const CollageLayout layout = CollageGeometry::layout(preset.node, {0, 0, 1200, 1200}, 0);
        for (const auto &[slot, cell] : layout.cells) {
            EXPECT_NEAR(cell.width(), layout.cells.at(0).width(), 1e-9) << id.toStdString();
            EXPECT_NEAR(cell.height(), layout.cells.at(0).height(), 1e-9) << id.toStdString();
        }
    }
}

TEST(CollagePresets, SuitThePhotos)
{
    const QSizeF wide(3, 2);
    const QSizeF tall(2, 3);
    const QSizeF square(2, 2);
    const auto best = [](const QList<QSizeF> &photos) { return CollagePreset::best(photos).id; };
    EXPECT_EQ(best({wide, wide}), u"v2"_s);
    EXPECT_EQ(best({wide, square}), u"h2"_s);
    EXPECT_EQ(best({wide, wide, wide}), u"v3"_s);
    EXPECT_EQ(best({tall, square, tall}), u"h3"_s);
    EXPECT_EQ(best({tall, wide, tall}), u"big-left"_s);
    EXPECT_EQ(best({wide, tall, tall}), u"big-top"_s);
    EXPECT_EQ(best({tall, tall, tall, tall}), u"g4"_s);
    EXPECT_EQ(best(QList<QSizeF>(8, wide)), u"grid"_s);
}

/// The lengths of a chain's cells along it, in order of their slots.
QList<double> widths(const CollageNode &node, double length, double gap)
{
    QList<double> found;
    for (const auto &[slot, cell] : CollageGeometry::layout(node, {7, 3, length, 90}, gap).cells) {
        found.append(cell.width());
    }
    return found;
}

TEST(CollageGeometry, MakesTheCellsOfAChainEqualWhateverTheGap)
{
    const auto chain = [](int count) { return CollageNode::chain(CollageAxis::Horizontal, 0, count); };
    // (1000 − 2 · 20) ÷ 3 and (1000 − 8 · 30) ÷ 9
    for (const auto &[count, gap, expected] :
         {std::tuple(3, 20.0, 320.0), {9, 30.0, 760.0 / 9}, {2, 20.0, 490.0}, {6, 0.0, 1000.0 / 6}}) {
        for (const double width : widths(chain(count), 1000, gap)) {
            EXPECT_NEAR(width, expected, 1e-9) << count;
        }
    }
    // Split from the middle the other way round, as the tree of a chain never is.
    const CollageNode backwards = CollageNode::split(
        CollageAxis::Horizontal, 0.75,
        CollageNode::split(CollageAxis::Horizontal, 2.0 / 3, chain(2), CollageNode::leaf(2)),
        CollageNode::leaf(3));
    for (const double width : widths(backwards, 1000, 40)) {
        EXPECT_NEAR(width, (1000 - 3 * 40) / 4.0, 1e-9);
    }
    // A split the other way counts no gap along this one: 38 % of 980 stay 38 % beside a stack of two.
    const CollageNode stack = CollageNode::chain(CollageAxis::Vertical, 1, 2);
    const CollageLayout mixed = CollageGeometry::layout(
        CollageNode::split(CollageAxis::Horizontal, 0.38, CollageNode::leaf(0), stack), {0, 0, 1000, 500},
        20);
    EXPECT_NEAR(mixed.cells.at(0).width(), 0.38 * 980, 1e-9);
    EXPECT_NEAR(mixed.cells.at(1).height(), 240, 1e-9);
}

TEST(CollageGeometry, KeepsCellsInsideHoweverWideTheGap)
{
    for (const CollageAxis axis : {CollageAxis::Horizontal, CollageAxis::Vertical}) {
        for (const double gap : {3.0, 12.0, 400.0}) {
            const QRectF area(5, 6, 60, 50);
            const CollageLayout layout = CollageGeometry::layout(CollageNode::chain(axis, 0, 6), area, gap);
            for (const auto &[slot, cell] : layout.cells) {
                EXPECT_GE(cell.width(), 0);
                EXPECT_GE(cell.height(), 0);
                EXPECT_TRUE(cell.left() >= 5 && cell.right() <= 65 + 1e-9 && cell.top() >= 6 &&
                            cell.bottom() <= 56 + 1e-9)
                    << slot << ' ' << gap;
            }
        }
    }
}

TEST(CollageGeometry, PutsDividersInTheMiddleOfTheirGaps)
{
    const CollageLayout layout =
        CollageGeometry::layout(CollageNode::chain(CollageAxis::Horizontal, 0, 4), {0, 0, 1000, 500}, 40);
    ASSERT_EQ(layout.dividers.size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(layout.dividers.at(i).position, (i + 1) * (220 + 40) - 20, 1e-9);
        EXPECT_NEAR(layout.dividers.at(i).shared, 220 * (4 - i), 1e-9);
    }
}

TEST(CollageGeometry, TakesTheGapOutOnceASplit)
{
    const CollageNode pair = CollageNode::chain(CollageAxis::Horizontal, 0, 2);
    const CollageLayout layout = CollageGeometry::layout(pair, {0, 0, 1000, 500}, 20);
    EXPECT_EQ(layout.cells.at(0), QRectF(0, 0, 490, 500));
    EXPECT_EQ(layout.cells.at(1), QRectF(510, 0, 490, 500));
    EXPECT_EQ(layout.dividers.first().position, 500);
    const CollageLayout crushed = CollageGeometry::layout(pair, {0, 0, 10, 10}, 50);
    EXPECT_EQ(crushed.cells.at(0).width(), 0);
    EXPECT_EQ(crushed.cells.at(1).width(), 0);
}

TEST(CollageGeometry, NamesDividersByTheirPath)
{
    const CollagePreset bigLeft = CollagePreset::all(3).at(2);
    const QList<CollageDivider> dividers =
        CollageGeometry::layout(bigLeft.node, {0, 0, 100, 100}, 0).dividers;
    ASSERT_EQ(dividers.size(), 2);
    EXPECT_EQ(dividers.at(0).id(), QString());
    EXPECT_EQ(dividers.at(1).id(), u"1"_s);
    EXPECT_EQ(CollageDivider::pathFromId(u"1-0"_s), (CollagePath{1, 0}));
    EXPECT_EQ(CollageDivider::pathFromId(u"2"_s), std::nullopt);
    CollageNode node = bigLeft.node;
    node.setRatio({1}, 0.25);
    EXPECT_EQ(node.node({1})->ratio, 0.25);
    EXPECT_EQ(node.node({0, 1}), nullptr);
}

TEST(CollageGeometry, HoldsAndSnapsADraggedDivider)
{
    CollageDivider divider;
    divider.axis = CollageAxis::Vertical;
    divider.parent = {50, 100, 300, 1000};
    const auto drag = [&divider](double percent) {
        return CollageGeometry::dragDivider(divider, {0, 100 + 10 * percent});
    };
    EXPECT_EQ(drag(5).ratio, 0.15);
    EXPECT_EQ(drag(95).ratio, 0.85);
    EXPECT_EQ(drag(49).ratio, 0.5);
    EXPECT_EQ(drag(49).readout, u"Centered · 50 : 50"_s);
    EXPECT_DOUBLE_EQ(drag(34.5).ratio, 1.0 / 3);
    EXPECT_EQ(drag(34.5).readout, u"33 : 67"_s);
    EXPECT_DOUBLE_EQ(drag(40).ratio, 0.4);
    EXPECT_FALSE(drag(40).snapped);
    EXPECT_EQ(drag(62).readout, u"62 : 38"_s);
    divider.parent = {0, 0, 0, 0};
    EXPECT_EQ(drag(0).ratio, 0.85);
}

} // namespace
} // namespace tarnovel
