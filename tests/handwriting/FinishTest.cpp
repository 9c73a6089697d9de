#include <array>
#include <gtest/gtest.h>

#include "handwriting/HandwritingFinish.h"
#include "handwriting/Strokes.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

constexpr QSizeF page(600, 400);
constexpr Ink violet = {0.36, 0.3, 0.55};

QImage finished(const QList<InkStroke> &strokes, HandwritingFinish finish, double scale = 1)
{
    return finishedImage(drawingOf(strokes), {finish, violet}, page, scale);
}

InkStroke dotAt(QPointF place, double width)
{
    return line(InkPen::signature, width, place, place, 1);
}

void expectColor(QRgb pixel, const QColor &color, int tolerance)
{
    EXPECT_NEAR(qRed(pixel), color.red(), tolerance);
    EXPECT_NEAR(qGreen(pixel), color.green(), tolerance);
    EXPECT_NEAR(qBlue(pixel), color.blue(), tolerance);
}

bool sameCoverage(const QImage &one, const QImage &other)
{
    return one.convertToFormat(QImage::Format_Alpha8) == other.convertToFormat(QImage::Format_Alpha8);
}

TEST(Rainbow, RunsThroughSevenColoursFromCornerToCorner)
{
    const InkStroke diagonal = line(InkPen::signature, 24, {0, 400}, {600, 0});
    const QImage image = finished({diagonal}, HandwritingFinish::rainbow);
    constexpr std::array<QRgb, 7> colors = {0xffff619e, 0xffffa340, 0xffffe040, 0xff59e09c,
                                            0xff47b8ff, 0xffb070ff, 0xffff6bc7};
    for (int i = 0; i < 7; ++i) {
        const int x = std::min(599, 100 * i);
        const int y = std::min(399, 400 - 400 * i / 6);
        expectColor(image.pixel(x, y), QColor(colors.at(static_cast<size_t>(i))), 3);
        EXPECT_EQ(qAlpha(image.pixel(x, y)), 255);
    }
    EXPECT_TRUE(sameCoverage(image, rendered({diagonal}, page)));
}

TEST(ColorFinish, FillsEveryStrokeAndNothingElse)
{
    InkStroke other = eight(InkPen::marker, 8, 400);
    other.color = {1, 0, 0};
    const QList<InkStroke> strokes = {line(InkPen::fountain, 9, {20, 20}, {500, 300}), other};
    const QImage image = finished(strokes, HandwritingFinish::color);
    EXPECT_TRUE(sameCoverage(image, rendered(strokes, page)));
    expectColor(qUnpremultiply(image.pixel(360, 200)), QColor::fromRgbF(0.36F, 0.3F, 0.55F), 2);
    for (const HandwritingFinish finish : handwritingFinishes) {
        EXPECT_TRUE(finished({}, finish).isNull());
        EXPECT_EQ(finished(strokes, finish), finished(strokes, finish));
        EXPECT_EQ(handwritingFinishFromName(handwritingFinishName(finish)), finish);
    }
    EXPECT_EQ(handwritingFinishFromName(u"Color"_s), std::nullopt);
}

TEST(Sparkles, AreStrewnAllOverThePageWithAStarHereAndThere)
{
    std::array<int, 12> inPart{};
    int stars = 0;
    for (int i = 0; i < sparkleCount; ++i) {
        const Sparkle dot = sparkle(i, page, 1);
        ASSERT_TRUE(QRectF(QPointF(), page).contains(dot.centre)) << i;
        EXPECT_GT(dot.diameter, 0.5);
        EXPECT_LT(dot.diameter, 8);
        EXPECT_GE(dot.opacity, 0.5);
        EXPECT_LE(dot.opacity, 1);
        stars += dot.star ? 1 : 0;
        ++inPart.at(static_cast<size_t>(dot.centre.x() * 4 / page.width()) +
                    4 * static_cast<size_t>(dot.centre.y() * 3 / page.height()));
        // The same dot on a page of twice the size, as a preview and what is saved show it.
        const Sparkle larger = sparkle(i, page * 2, 2);
        EXPECT_NEAR(larger.centre.x(), 2 * dot.centre.x(), 1e-9);
        EXPECT_NEAR(larger.centre.y(), 2 * dot.centre.y(), 1e-9);
        EXPECT_NEAR(larger.diameter, 2 * dot.diameter, 1e-9);
        EXPECT_EQ(larger.star, dot.star);
    }
    EXPECT_GT(stars, sparkleCount / 40);
    EXPECT_LT(stars, sparkleCount / 10);
    for (const int dots : inPart) {
        EXPECT_NEAR(dots, sparkleCount / 12.0, sparkleCount / 40.0) << "no part of the page is bare";
    }
}

TEST(Glitter, ShowsDotsAndStarsWithinTheStrokes)
{
    const QList<InkStroke> flood = {line(InkPen::signature, 2000, {300, 200}, {301, 200}, 2)};
    const QImage flooded = finished(flood, HandwritingFinish::glitter);
    for (const int index : {23, 46, 230}) {
        const QPointF centre = sparkle(index, page, 1).centre;
        EXPECT_GT(qGreen(flooded.pixel(centre.toPoint())), 200) << index;
    }
    EXPECT_GT(qGreen(flooded.pixel(0, 0)), 200);
    // An arm of the star in the corner reaches 13 pixels, and no farther.
    EXPECT_GT(qGreen(flooded.pixel(11, 0)), 150);
    EXPECT_LT(qGreen(flooded.pixel(15, 0)), 120);

    const QImage image =
        finished({line(InkPen::signature, 8, {100, 200}, {500, 200})}, HandwritingFinish::glitter);
    for (int x = 0; x < 600; ++x) {
        EXPECT_EQ(qAlpha(image.pixel(x, 20)), 0); // farther than any glow
        const QRgb glow = qUnpremultiply(image.pixel(x, 212));
        EXPECT_LE(qAlpha(image.pixel(x, 212)), 240);
        EXPECT_GE(qBlue(glow) + 3, qGreen(glow));
    }
    EXPECT_GT(qAlpha(image.pixel(300, 212)), 30);
    const QImage dot = finished({dotAt(sparkle(24, page, 1).centre, 24)}, HandwritingFinish::glitter);
    EXPECT_EQ(qAlpha(dot.pixel(sparkle(24, page, 1).centre.toPoint())), 255);
}

TEST(Glitter, HasAWhiteHaloWithinTheGlow)
{
    const QImage image =
        finished({line(InkPen::signature, 8, {100, 200}, {500, 200})}, HandwritingFinish::glitter);
    // Two pixels beyond the ink the halo, of 0.72 × 0.88 at its heaviest, lightens the violet of 0.3; farther
    // out than twelve pixels only the glow is left.
    int near = 0;
    int far = 0;
    for (int x = 200; x < 400; ++x) {
        near += qGreen(qUnpremultiply(image.pixel(x, 206)));
        far += qGreen(qUnpremultiply(image.pixel(x, 224)));
    }
    EXPECT_GT(near / 200, 105);
    EXPECT_NEAR(far / 200, 255 * 0.3, 12);
}

TEST(Glitter, LooksTheSameInThePreview)
{
    const QList<InkStroke> strokes = {eight(InkPen::signature, 14, 400)};
    const QImage whole = finished(strokes, HandwritingFinish::glitter)
                             .scaled(300, 200, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage half = finished(strokes, HandwritingFinish::glitter, 0.5);
    ASSERT_EQ(half.size(), whole.size());
    double difference = 0;
    double ink = 0;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 300; ++x) {
            difference += std::abs(qAlpha(half.pixel(x, y)) - qAlpha(whole.pixel(x, y))) +
                          std::abs(qGreen(half.pixel(x, y)) - qGreen(whole.pixel(x, y)));
            ink += qAlpha(whole.pixel(x, y));
        }
    }
    EXPECT_LT(difference, 0.06 * ink);
}

} // namespace
} // namespace tarnovel::test
