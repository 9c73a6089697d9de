#include <cmath>
#include <tuple>

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include "collage/CollageRenderer.h"
#include "render/FilmEdgePrint.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

CollagePreset preset(int count, const QString &id)
{
    const QList<CollagePreset> all = CollagePreset::all(count);
    return *std::ranges::find(all, id, &CollagePreset::id);
}

CollageDesign design(int count, const QString &id)
{
    return CollageDesign::of(preset(count, id), QList<QUuid>(count));
}

/// Left half red, right half blue.
PhotoImage twoHalves()
{
    QImage image(200, 100, QImage::Format_RGB32);
    image.fill(Qt::red);
    QPainter(&image).fillRect(100, 0, 100, 100, Qt::blue);
    return {image};
}

QImage drawn(const CollageDesign &made, int longEdge, const std::map<int, PhotoImage> &images)
{
    const CollagePlan plan = CollagePlan::of(made, longEdge);
    std::map<int, QSizeF> sizes;
    for (const auto &[slot, image] : images) {
        sizes[slot] = image.image.size();
    }
    QImage canvas(plan.size, QImage::Format_RGB32);
    canvas.fill(Qt::magenta);
    QPainter painter(&canvas);
    CollageRenderer::draw(painter, made, plan, sizes, images);
    return canvas;
}

TEST(CellFrames, LeaveTheirWindow)
{
    const QRectF cell(0, 0, 1000, 1000);
    EXPECT_EQ(cellPhotoRect(CellFrame::none, cell), cell);
    EXPECT_EQ(cellPhotoRect(CellFrame::instant, cell), QRectF(60, 60, 880, 740));
    EXPECT_EQ(cellPhotoRect(CellFrame::white, {0, 0, 500, 1000}), QRectF(30, 30, 440, 940));
    EXPECT_EQ(cellPhotoRect(CellFrame::film, cell), QRectF(50, 50, 900, 900));
    EXPECT_EQ(cellPhotoRect(CellFrame::instant, {0, 0, 1000, 10}).height(), 7.4);
    for (const CellFrame frame : cellFrames) {
        EXPECT_EQ(cellFrameFromName(cellFrameName(frame)), frame);
    }
}

TEST(CellPlacement, FollowsTheFinger)
{
    const QRectF rect(100, 100, 100, 100);
    CollageCell cell;
    // 200 × 100 fills 100 × 100 at its own size; an overflow of 100 goes left and right.
    EXPECT_EQ(cellPlacement(cell, {200, 100}, rect).whole, QRectF(50, 100, 200, 100));
    cell.offset = {1, 1};
    EXPECT_EQ(cellPlacement(cell, {200, 100}, rect).whole.left(), 100);
    cell.zoom = 2;
    EXPECT_EQ(cellPlacement(cell, {200, 100}, rect).whole, QRectF(100, 100, 400, 200));
    cell.offset = {-1, -1};
    EXPECT_EQ(cellPlacement(cell, {200, 100}, rect).whole.right(), 200);
}

TEST(CollagePlan, HasTheFinishedSizes)
{
    EXPECT_EQ(CollagePlan::of(design(4, u"filmstrip"_s), 2400).size, QSize(2400, 552));
    CollageDesign gallery = design(3, u"gallery"_s);
    gallery.aspect = CollageAspect::square;
    EXPECT_EQ(CollagePlan::of(gallery, 2400).size, QSize(2400, 2400));
    EXPECT_DOUBLE_EQ(CollagePlan::of(gallery, 2400).inner.left(), 2400 * (0.03 + 0.1));
    EXPECT_DOUBLE_EQ(CollagePlan::of(gallery, 2400).gapPx, 2400 * (0.02 + 0.06));
    gallery.aspect = CollageAspect::story;
    EXPECT_EQ(CollagePlan::of(gallery, 2400).size, QSize(1350, 2400));
    EXPECT_EQ(CollagePlan::of(design(9, u"column"_s), 2400).size, QSize(480, 2400)); // held to 1 : 5
    const CollagePlan strip = CollagePlan::of(design(2, u"filmstrip"_s), 2400);
    EXPECT_NEAR(strip.inner.y() / strip.size.height(), 5.5 / 35, 1e-12);
    EXPECT_NEAR(strip.inner.height() / strip.size.height(), 24.0 / 35, 1e-12);
}

TEST(CollagePlan, CutsAStripIntoFramesOf36Millimetres)
{
    for (int count = 2; count <= 6; ++count) {
        const CollagePlan strip = CollagePlan::of(design(count, u"filmstrip"_s), 2400);
        const double unit = strip.size.height() / 35.0;
        for (const auto &[slot, cell] : strip.layout.cells) {
            // The output's sides are whole pixels, so its length misses 38 mm a frame by a little.
            EXPECT_NEAR(cell.width() / unit, 36, 0.1) << count << ' ' << slot;
            EXPECT_NEAR(cell.left() / unit, 1 + 38 * slot, 0.1 * (slot + 1)) << count << ' ' << slot;
        }
    }
}

TEST(CollageRenderer, ShowsThePannedPartInItsFrame)
{
    CollageDesign made = design(2, u"h2"_s);
    made.margin = made.gap = 0;
    made.cells[0].offset = {1, 0};
    made.cells[1].offset = {-1, 0};
    made.cells[1].frame = CellFrame::film;
    const QImage canvas = drawn(made, 400, {{0, twoHalves()}, {1, twoHalves()}});
    EXPECT_EQ(canvas.pixelColor(5, 200), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(195, 200), QColor(Qt::red));
    EXPECT_NEAR(canvas.pixelColor(205, 200).red(), 31, 1); // the paper of a film frame
    EXPECT_EQ(canvas.pixelColor(300, 200), QColor(Qt::blue));
    made.background = Qt::green;
    made.radius = 0.2;
    const QImage round = drawn(made, 400, {{0, twoHalves()}});
    EXPECT_EQ(round.pixelColor(1, 1), QColor(Qt::green));
    EXPECT_NEAR(round.pixelColor(300, 200).red(), 31, 1); // without a photo the paper stays
}

TEST(CollageRenderer, DrawsTheInnerLineCloseAroundThePhoto)
{
    CollageDesign made = design(2, u"v2"_s);
    made.margin = made.gap = 0;
    made.cells[0].frame = CellFrame::inner;
    made.cells[1].frame = CellFrame::white;
    QImage grey(100, 100, QImage::Format_RGB32);
    grey.fill(QColor(128, 128, 128));
    const QImage canvas = drawn(made, 1250, {{0, {grey}}, {1, {grey}}});
    // A cell of 1000 × 625: the photo 37.5 in, the line around it 6 away and 4 wide.
    const auto darkness = [&canvas](int y) {
        QList<int> dark;
        for (int x = 0; x < 60; ++x) {
            if (canvas.pixelColor(x, y).value() < 80) {
                dark.append(x);
            }
        }
        return dark;
    };
    const QList<int> dark = darkness(312);
    ASSERT_FALSE(dark.isEmpty());
    EXPECT_NEAR(dark.first(), 37.5 - 6 - 2, 1);
    EXPECT_NEAR(dark.last(), 37.5 - 6 + 1, 1);
    EXPECT_EQ(canvas.pixelColor(20, 312), QColor(Qt::white));
    EXPECT_TRUE(darkness(625 + 312).isEmpty()); // the white frame has none
}

TEST(CollageRenderer, BoardAgreesWithTheResult)
{
    for (const auto &[count, id] : {std::pair(3, u"big-left"_s), {4, u"filmstrip"_s}}) {
        CollageDesign made = design(count, id);
        made.cells[0].frame = CellFrame::inner;
        made.cells[1].frame = CellFrame::instant;
        made.radius = 0.03;
        std::map<int, PhotoImage> images;
        for (int slot = 0; slot < count; ++slot) {
            images[slot] = twoHalves();
        }
        const QImage board = drawn(made, 600, images);
        const QImage result = drawn(made, 2400, images);
        double sum = 0;
        for (int y = 0; y < board.height(); ++y) {
            for (int x = 0; x < board.width(); ++x) {
                int green = 0;
                for (int i = 0; i < 16; ++i) {
                    green += qGreen(result.pixel(std::min(4 * x + i % 4, result.width() - 1),
                                                 std::min(4 * y + i / 4, result.height() - 1)));
                }
                const double difference = qGreen(board.pixel(x, y)) - green / 16.0;
                sum += difference * difference;
            }
        }
        const double psnr =
            10 * std::log10(255.0 * 255 * board.width() * board.height() / std::max(sum, 1.0));
        EXPECT_GT(psnr, 26) << id.toStdString();
    }
}

TEST(FilmStripDecor, PerforatesAtTheRealPitch)
{
    const QImage canvas = drawn(design(4, u"filmstrip"_s), 2400, {});
    const double unit = canvas.height() / 35.0;
    const auto holes = [&](double yMm) {
        int count = 0;
        bool inside = false;
        for (int x = 0; x < canvas.width(); ++x) {
            const bool white = canvas.pixelColor(x, static_cast<int>(yMm * unit)).lightness() > 200;
            count += white && !inside;
            inside = white;
        }
        return count;
    };
    // From 1.4 mm on, as long as a hole of 1.981 mm ends before 2400 ÷ (552 ÷ 35) = 152.17 mm: 32 of them.
    EXPECT_EQ(holes(3.2), 32);
    EXPECT_EQ(holes(31.7), 32);
    EXPECT_EQ(holes(17), 0);
    // Amber print above the perforations, at the left-most frame.
    bool amber = false;
    for (int x = 0; x < 400; ++x) {
        const QColor pixel = canvas.pixelColor(x, static_cast<int>(0.85 * unit));
        amber = amber || (pixel.red() > 120 && pixel.blue() < pixel.red() - 40);
    }
    EXPECT_TRUE(amber);
    // The number stands from 0.3 mm of the first frame's left edge on, the marking from 5.6 mm.
    CollageDesign quiet = design(4, u"filmstrip"_s);
    quiet.filmEdge.topText = u"MARK"_s;
    const auto ink = [&](const QImage &strip, double fromMm, double toMm, double topMm) {
        int count = 0;
        for (int x = static_cast<int>((1 + fromMm) * unit); x < static_cast<int>((1 + toMm) * unit); ++x) {
            for (int y = static_cast<int>(topMm * unit); y < static_cast<int>((topMm + 1.3) * unit); ++y) {
                count += strip.pixelColor(x, y).red() > 120;
            }
        }
        return count;
    };
    const QImage numbered = drawn(quiet, 2400, {});
    quiet.filmEdge.showsNumbers = false;
    const QImage bare = drawn(quiet, 2400, {});
    for (const auto &[from, to, top] : {std::tuple(0.2, 3.5, 0.15), {2.2, 5.4, 33.55}, {20.2, 25.2, 33.55}}) {
        EXPECT_GT(ink(numbered, from, to, top), 10) << from;
        EXPECT_EQ(ink(bare, from, to, top), 0) << from;
    }
    EXPECT_EQ(ink(numbered, 5.6, 12, 0.15), ink(bare, 5.6, 12, 0.15));
    EXPECT_GT(ink(bare, 5.6, 12, 0.15), 50);
}

TEST(FilmStripDecor, PutsHolesNumbersAndArrowsWhereFilmHasThem)
{
    constexpr int unit = 40;
    const auto strip = [](const QList<QRectF> &frames, const FilmEdge &edge) {
        QImage image(76 * unit, 35 * unit, QImage::Format_RGB32);
        image.fill(FilmStripDecor::base());
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        FilmStripDecor::draw(painter, image.size(), frames, edge);
        return image;
    };
    const QRectF first(1 * unit, 5.5 * unit, 36 * unit, 24 * unit);
    const QRectF second = first.translated(38 * unit, 0);
    const FilmEdge edge{.topText = u"MARK"_s, .startNumber = 7};
    const QImage image = strip({first, second}, edge);
    EXPECT_EQ(strip({second, first}, edge), image) << "numbered by place, not by order";
    // The first hole begins at 1.4 mm.
    int x = 0;
    while (qGray(image.pixel(x, 3 * unit)) < 200) {
        ++x;
    }
    EXPECT_NEAR(x, 1.4 * unit, 2);
    // The lower arrow points at its middle row from 19.4 mm of the frame on, for 0.48 mm.
    const auto isAmber = [&image](double xMm, double yMm) {
        const QColor pixel = image.pixelColor(qRound(xMm * unit), qRound(yMm * unit));
        return pixel.red() > 120 && pixel.blue() < pixel.red() - 40;
    };
    EXPECT_TRUE(isAmber(1 + 19.4 + 0.2, 34.22));
    EXPECT_FALSE(isAmber(1 + 19.4 + 0.6, 34.22));
    // The numbers, set here by themselves in their strips.
    for (const auto &[text, at, size, widest] : {std::tuple(u"7"_s, QPointF(1.3, 0.18), 1.25, 3.2),
                                                 {u"8"_s, QPointF(39.3, 0.18), 1.25, 3.2},
                                                 {u"7A"_s, QPointF(21.2, 33.6), 1.1, 5.0},
                                                 {u"8A"_s, QPointF(59.2, 33.6), 1.1, 5.0}}) {
        FilmEdgeText alone;
        alone.text = text;
        alone.at = at;
        alone.sizeMm = size;
        alone.widestMm = widest;
        alone.stripTop = at.y() < 17 ? 0 : 35 - 1.85;
        alone.stripBottom = at.y() < 17 ? 1.85 : 35;
        FilmEdgePrint print;
        print.texts.push_back(alone);
        QImage expected(image.size(), QImage::Format_RGB32);
        expected.fill(FilmStripDecor::base());
        QPainter painter(&expected);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(unit, unit);
        drawFilmEdge(painter, print, QColor::fromRgbF(0.77F, 0.65F, 0.38F, 0.92F));
        painter.end();
        const QRect area =
            QRectF(at.x() * unit, at.y() * unit, 1.9 * unit, 1.3 * unit).toAlignedRect() & image.rect();
        EXPECT_EQ(image.copy(area), expected.copy(area)) << text.toStdString();
    }
}

TEST(CollagePlan, RoundsCornersByTheShorterSide)
{
    for (const CollageAspect aspect : {CollageAspect::story, CollageAspect::square}) {
        CollageDesign made = design(2, u"book"_s);
        made.aspect = aspect;
        made.radius = 0.1;
        const CollagePlan plan = CollagePlan::of(made, 2400);
        EXPECT_DOUBLE_EQ(plan.radiusPx, 0.1 * std::min(plan.size.width(), plan.size.height()));
    }
    CollageDesign wide = design(2, u"book"_s);
    wide.aspect = CollageAspect::preset;
    wide.radius = 0.1;
    const CollagePlan plan = CollagePlan::of(wide, 2400);
    ASSERT_GT(plan.size.width(), plan.size.height());
    EXPECT_DOUBLE_EQ(plan.radiusPx, 0.1 * plan.size.height());
}

} // namespace
} // namespace tarnovel
