#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "render/FrameGeometry.h"

namespace tarnovel {
namespace {

using FrameGeometry::Placement;
using FrameGeometry::ShortEdge;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double undefined = std::numeric_limits<double>::quiet_NaN();

TEST(Canvas, KeepsTheLongEdgeExactly)
{
    EXPECT_EQ(FrameGeometry::canvas(0.75, 4096), QSizeF(3072, 4096));
    EXPECT_EQ(FrameGeometry::canvas(1, 1080), QSizeF(1080, 1080));
    EXPECT_EQ(FrameGeometry::canvas(10, 1000), QSizeF(1000, 200));
    EXPECT_EQ(FrameGeometry::canvas(undefined, 1000), QSizeF(1000, 1000));
    EXPECT_EQ(FrameGeometry::canvas(1.5, infinity), QSizeF(720, 480));
    EXPECT_EQ(FrameGeometry::canvas(0.5, -4), QSizeF(1, 1)); // 0.5 rounds away from zero
}

TEST(FreeCanvas, KeepsTheShortEdge)
{
    EXPECT_EQ(FrameGeometry::freeCanvas(0.8, {1, 1}, ShortEdge::Fixed1080), QSizeF(1080, 1350));
    EXPECT_EQ(FrameGeometry::freeCanvas(0.1, {1, 1}, ShortEdge::Fixed1080), QSizeF(1080, 5400));
    EXPECT_EQ(FrameGeometry::freeCanvas(9, {1, 1}, ShortEdge::Fixed1080), QSizeF(5400, 1080));
    EXPECT_EQ(FrameGeometry::freeCanvas(1.5, {600, 400}, ShortEdge::PhotosOwn), QSizeF(600, 400));
    EXPECT_EQ(FrameGeometry::freeCanvas(0, {3000, 2000}, ShortEdge::PhotosOwn), QSizeF(1080, 1080));
    EXPECT_EQ(FrameGeometry::freeCanvas(10, {3000, 300}, ShortEdge::PhotosOwn), QSizeF(3000, 300));
}

TEST(PhotoRect, FitsTheBoxAndStopsAtTheMargin)
{
    const QSizeF photo(3000, 2000);
    const QSizeF canvas(1080, 1350);
    // Margin 0.006 × 1080 = 6.48; box 0.88 × 1080 − 12.96 = 937.44 wide; height 937.44 × 2 ÷ 3 = 624.96.
    const QRectF centred = FrameGeometry::photoRect(photo, canvas, {0.88, 0, 0, false, false, 6.48});
    EXPECT_NEAR(centred.width(), 937.44, 1e-9);
    EXPECT_NEAR(centred.height(), 624.96, 1e-9);
    EXPECT_NEAR(centred.center().x(), 540, 1e-9);
    EXPECT_NEAR(centred.center().y(), 675, 1e-9);
    const auto shift = [&](const Placement &placement) {
        const QPointF centre = FrameGeometry::photoRect(photo, canvas, placement).center();
        return QPointF(centre.x() - 540, centre.y() - 675);
    };
    // Slack (1350 − 624.96) ÷ 2 − 6.48 = 356.04, (1080 − 937.44) ÷ 2 − 6.48 = 64.8.
    EXPECT_NEAR(shift({0.88, 0, 1, false, false, 6.48}).y(), 356.04, 1e-9);
    EXPECT_NEAR(shift({0.88, -1, 0.1, false, false, 6.48}).x(), -64.8, 1e-9);
    EXPECT_NEAR(shift({0.88, -1, 0.1, false, false, 6.48}).y(), 135, 1e-9);
    EXPECT_NEAR(shift({0.88, -1, 0.1, true, false, 6.48}).x(), 0, 1e-9);
    EXPECT_NEAR(shift({0.88, -1, 0.1, true, true, 6.48}).y(), 0, 1e-9);
}

TEST(PhotoRect, HoldsScaleAndBorder)
{
    const auto width = [](const Placement &placement) {
        return FrameGeometry::photoRect({1000, 1000}, {1000, 1000}, placement).width();
    };
    EXPECT_DOUBLE_EQ(width({.scale = 0}), 100);
    EXPECT_DOUBLE_EQ(width({.scale = 2}), 1000);
    EXPECT_DOUBLE_EQ(width({.scale = 1, .borderPx = 500}), 1000 - 2 * 40); // never over 4 % of the short edge
    EXPECT_DOUBLE_EQ(width({.scale = 1, .borderPx = -500}), 1000);
    EXPECT_TRUE(FrameGeometry::photoRect({0, 10}, {100, 100}, {}).isNull());
    EXPECT_TRUE(FrameGeometry::photoRect({10, 10}, {100, undefined}, {}).isNull());
}

TEST(Snap, PullsSmallOffsetsToTheCentre)
{
    EXPECT_EQ(FrameGeometry::snap(0.004, 0.01), 0);
    EXPECT_EQ(FrameGeometry::snap(-0.02, 0.01), -0.02);
    EXPECT_EQ(FrameGeometry::snap(0.01, 0.01), 0.01);
}

} // namespace
} // namespace tarnovel
