#include <gtest/gtest.h>

#include "handwriting/HandwritingFinish.h"
#include "handwriting/InkPage.h"
#include "handwriting/InkSurface.h"
#include "handwriting/Strokes.h"

namespace tarnovel::test {
namespace {

constexpr InkView view = {{600, 500}, {140, 90}, 2};

QImage asRendered(const InkDrawing &drawing, const InkView &shown)
{
    return InkRenderer::render(
        drawing, {QPointF(shown.origin) / shown.scale, QSizeF(shown.pixels) / shown.scale}, shown.scale);
}

/// Whether two images differ nowhere but within the rectangle.
bool sameOutside(const QImage &one, const QImage &other, const QRect &changed)
{
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) != other.pixel(x, y) && !changed.contains(x, y)) {
                return false;
            }
        }
    }
    return true;
}

TEST(Surface, ShowsAStrokeAsItGrowsAndTellsWhatChanged)
{
    for (const InkPen pen : allPens) {
        const InkDrawing page = drawingOf({line(InkPen::marker, 9, {60, 60}, {380, 300})});
        InkSurface surface;
        surface.setView(view, page);
        EXPECT_EQ(surface.image(), asRendered(page, view));

        const InkStroke stroke = eight(pen, 7, 380, 60);
        InkPathBuilder path(stroke);
        for (const InkSample &sample : stroke.samples) {
            const QImage before = surface.image().copy();
            path.append(sample);
            EXPECT_TRUE(sameOutside(before, surface.image().copy(), surface.write(stroke, path)));
        }
        const QImage before = surface.image().copy();
        const InkDrawing all = page + drawingOf({stroke});
        const QRect dried = surface.dry(*all.last());
        EXPECT_EQ(surface.image(), asRendered(all, view));
        // Nothing jumps when the pen is lifted, but for the flick of the fountain pen.
        if (pen != InkPen::fountain) {
            EXPECT_EQ(surface.image(), before);
        }
        EXPECT_TRUE(sameOutside(before, surface.image(), dried));
    }
}

TEST(Surface, ChangesFewPixelsForASampleHoweverLongTheStroke)
{
    const InkStroke spiral = strokeAlong(InkPen::signature, 6, 6000, [](double t) {
        const double turn = 60 * std::numbers::pi * t;
        return QPointF(200, 180) + 140 * (1 - t) * QPointF(std::cos(turn), std::sin(turn));
    });
    InkSurface surface;
    surface.setView(view, {});
    InkPathBuilder path(spiral);
    for (const InkSample &sample : spiral.samples) {
        path.append(sample);
        const QRect changed = surface.write(spiral, path);
        ASSERT_LE(changed.width() * changed.height(), 70 * 70);
    }
    surface.abandon();
    EXPECT_EQ(surface.image(), asRendered({}, view));
}

TEST(Surface, FollowsTheViewWithoutATrace)
{
    const InkDrawing page = drawingOf({eight(InkPen::pencil, 12, 400), eight(InkPen::fountain, 9, 300)});
    InkSurface surface;
    surface.setView(view, page);
    for (const InkView &next : {InkView{{600, 500}, {155, 70}, 2}, InkView{{600, 500}, {-400, 20}, 2},
                                InkView{{640, 480}, {-400, 20}, 2}, InkView{{640, 480}, {10, 20}, 1.3}}) {
        surface.setView(next, page);
        EXPECT_EQ(surface.image(), asRendered(page, next));
    }
}

TEST(Surface, KeepsALiveStrokeWhenTheSharpViewComes)
{
    const InkDrawing page = drawingOf({eight(InkPen::signature, 7, 300)});
    const InkStroke stroke = eight(InkPen::marker, 10, 380, 120);
    const InkView next{{600, 500}, {40, 30}, 1.7};
    InkSurface surface;
    surface.setView(view, page);
    InkPathBuilder path(stroke);
    for (qsizetype i = 0; i < stroke.samples.size(); ++i) {
        if (i == 40) {
            surface.stretchTo(next);
        }
        if (i == 80) {
            surface.sharpen(asRendered(page, next));
        }
        path.append(stroke.samples.at(i));
        surface.write(stroke, path);
    }
    InkSurface fresh;
    fresh.setView(next, page);
    fresh.write(stroke, path);
    EXPECT_EQ(surface.image(), fresh.image());
}

TEST(Surface, ShowsTheRainbowWhileWriting)
{
    const QSize size(400, 400);
    const InkStroke stroke = eight(InkPen::signature, 10, 400);
    InkSurface surface;
    surface.setView({size, {0, 0}, 1}, {});
    surface.setRainbow(QSizeF(size));
    InkPathBuilder path(stroke);
    for (const InkSample &sample : stroke.samples) {
        path.append(sample);
        surface.write(stroke, path);
    }
    const FinishStyle rainbow = {HandwritingFinish::rainbow, {}};
    const QImage finished = finishedImage(drawingOf({stroke}), rainbow, size, 1);
    const QRgb shown = surface.image().pixel(360, 200);
    EXPECT_NEAR(qRed(shown), qRed(finished.pixel(360, 200)), 1);
    EXPECT_NEAR(qBlue(shown), qBlue(finished.pixel(360, 200)), 1);
    EXPECT_EQ(surface.image().convertToFormat(QImage::Format_Alpha8),
              finished.convertToFormat(QImage::Format_Alpha8));
    surface.setRainbow(std::nullopt);
    surface.dry(*drawingOf({stroke}).first());
    EXPECT_EQ(surface.image(), rendered({stroke}, size));
}

TEST(Page, EraserTakesWholeStrokesAsOneStep)
{
    InkPage page;
    const InkDrawing lines = drawingOf({line(InkPen::signature, 6, {50, 50}, {350, 50}, 2),
                                        line(InkPen::fountain, 6, {50, 100}, {350, 100}),
                                        line(InkPen::signature, 6, {50, 150}, {350, 150}),
                                        line(InkPen::signature, 6, {200, 300}, {200, 300}, 1)});
    InkSurface surface;
    surface.setView(view, {});
    for (const auto &stroke : lines) {
        page.add(stroke);
        surface.dry(*stroke);
    }
    page.beginErasing();
    EXPECT_TRUE(page.erase({200, 70}, {200, 80}, 5).isNull());
    // A fast eraser leaps over the lines between two reports.
    surface.redraw(page.erase({200, 80}, {210, 20}, 5), page.drawing());
    surface.redraw(page.erase({210, 20}, {300, 110}, 5), page.drawing());
    EXPECT_EQ(page.drawing(), lines.sliced(2));
    EXPECT_EQ(surface.image(), asRendered(page.drawing(), view));
    EXPECT_TRUE(page.erase({215, 300}, {215, 290}, 5).isNull());
    EXPECT_FALSE(page.erase({207, 300}, {207, 290}, 5).isNull());

    surface.redraw(page.undo(), page.drawing());
    EXPECT_EQ(page.drawing(), lines);
    EXPECT_EQ(surface.image(), asRendered(lines, view));
    EXPECT_FALSE(page.redo().isNull());
    EXPECT_EQ(page.drawing(), lines.sliced(2, 1));
    EXPECT_FALSE(page.clear().isNull());
    EXPECT_TRUE(page.clear().isNull());
    EXPECT_FALSE(page.canRedo());
    page.undo();
    page.undo();
    EXPECT_EQ(page.drawing(), lines);
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(page.undo().isNull());
    }
    EXPECT_TRUE(page.undo().isNull());
    EXPECT_TRUE(page.isEmpty());
}

} // namespace
} // namespace tarnovel::test
