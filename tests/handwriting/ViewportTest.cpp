#include <gtest/gtest.h>

#include "handwriting/HandwritingViewport.h"

namespace tarnovel::test {
namespace {

TEST(Viewport, FitsAndLimitsTheZoom)
{
    HandwritingViewport tall({1000, 2000}, 1);
    tall.layOut({1000, 1000});
    EXPECT_DOUBLE_EQ(tall.minimumZoom(), 0.5);
    EXPECT_DOUBLE_EQ(tall.maximumZoom(), 3);
    EXPECT_DOUBLE_EQ(tall.zoom(), 0.5);
    EXPECT_EQ(tall.insets(), QPointF(250, 0));
    EXPECT_EQ(tall.referenceRect(), QRectF(250, 0, 500, 1000));
    tall.zoomTo(100, {500, 500});
    EXPECT_DOUBLE_EQ(tall.zoom(), 3);
    EXPECT_EQ(tall.insets(), QPointF(0, 0));

    HandwritingViewport small({1000, 1000}, 0.5);
    small.layOut({200, 300});
    EXPECT_DOUBLE_EQ(small.minimumZoom(), 0.2);
    EXPECT_DOUBLE_EQ(small.maximumZoom(), 2);
    small.layOut({});
    EXPECT_DOUBLE_EQ(small.minimumZoom(), 0.2);
    small.layOut({200, 300}, 20);
    EXPECT_EQ(small.referenceRect(), QRectF(20, 70, 160, 160));
    small.zoomTo(2, {100, 150});
    small.pan({1e6, 1e6});
    EXPECT_EQ(small.offset(), QPointF(0, 0)); // zoomed in, the page takes the whole view
}

TEST(Viewport, KeepsItsPlaceWhenTheWindowChanges)
{
    HandwritingViewport viewport({1000, 1400}, 0.8);
    viewport.layOut({700, 700});
    EXPECT_DOUBLE_EQ(viewport.zoom(), 0.5);
    viewport.layOut({1400, 1400});
    EXPECT_DOUBLE_EQ(viewport.zoom(), 1); // still all of it

    viewport.zoomTo(3, {700, 700});
    viewport.pan({-200, 150});
    const QPointF middle = viewport.toReference({700, 700});
    viewport.layOut({900, 700});
    EXPECT_DOUBLE_EQ(viewport.relativeZoom(), 3);
    EXPECT_NEAR(viewport.toReference({450, 350}).x(), middle.x(), 1e-9);
    EXPECT_NEAR(viewport.toReference({450, 350}).y(), middle.y(), 1e-9);
    EXPECT_EQ(viewport.toView(viewport.toReference({12, 34})), QPointF(12, 34));
}

TEST(Viewport, ZoomsAboutThePointerAndStopsAtTheEdges)
{
    HandwritingViewport viewport({1000, 1000}, 0.5);
    viewport.layOut({500, 500});
    const QPointF held = viewport.toReference({400, 100});
    viewport.zoomTo(1.5, {400, 100});
    EXPECT_NEAR(viewport.toReference({400, 100}).x(), held.x(), 1e-9);
    EXPECT_NEAR(viewport.toReference({400, 100}).y(), held.y(), 1e-9);
    viewport.pan({1e6, 1e6});
    EXPECT_EQ(viewport.toReference({0, 0}), QPointF(0, 0));
    viewport.pan({-1e6, -1e6});
    EXPECT_EQ(viewport.toReference({500, 500}), QPointF(1000, 1000));
    viewport.zoomTo(0, {400, 100});
    EXPECT_EQ(viewport.referenceRect(), QRectF(0, 0, 500, 500));
}

} // namespace
} // namespace tarnovel::test
