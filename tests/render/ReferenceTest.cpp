// Cases on flat colours, each worked out beside it by plain arithmetic.

#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "render/FrameGeometry.h"
#include "render/TestPictures.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

TextLayer block(double size)
{
    TextLayer layer;
    layer.id = u"title"_s;
    layer.text = u"████"_s;
    layer.visible = true;
    layer.size = size;
    layer.x = 0.5;
    layer.y = 0.5;
    layer.ink = {0, 0, 0};
    return layer;
}

TEST(Reference, LayersTurnClockwise)
{
    constexpr double degrees = 30;
    QImage flat(600, 60, QImage::Format_ARGB32_Premultiplied);
    flat.fill(Qt::black);
    for (const bool picture : {false, true}) {
        PhotoItem item = photoItem(0, 0);
        item.settings.layers = {block(0.1)};
        TextLayer &layer = item.settings.layers[0];
        layer.rotation = degrees;
        if (picture) {
            layer.id = u"watermark"_s;
            layer.imageFile = u"logo.png"_s;
            layer.imageAspect = 10;
        }
        const QImage canvas = drawn(item, {800, 800}, {.logo = flat});
        const double angle = degrees * std::numbers::pi / 180;
        for (const double along : {-90.0, 90.0}) {
            const QPoint down =
                (QPointF(400, 400) + along * QPointF(std::cos(angle), std::sin(angle))).toPoint();
            const QPoint up =
                (QPointF(400, 400) + along * QPointF(std::cos(angle), -std::sin(angle))).toPoint();
            EXPECT_LT(qGray(canvas.pixel(down)), 30) << picture;
            EXPECT_GT(qGray(canvas.pixel(up)), 225) << picture;
        }
    }
}

TEST(Reference, ASubtitlesShadowFadesLikeAGaussian)
{
    PhotoItem item = photoItem(0, 0);
    item.settings.style = FrameStyle::cinema;
    item.settings.layers = {block(0.1)};
    item.settings.layers[0].ink = {1, 1, 1};
    constexpr int side = 3000;
    const QImage canvas = drawn(item, {side, side}, {});
    QPoint at(side / 2, side / 2);
    while (qGray(canvas.pixel(at)) > 250) {
        at.ry() += 1;
    }
    // The edge of the shadow lies 0.0012 × 3000 px lower; its deviation is half of a blur of 0.004 × 3000 px.
    const double deviation = 0.002 * side;
    for (const int below : {2, 6, 10, 14, 20}) {
        const double away = (below + 0.5 - 0.0012 * side) / deviation;
        const double shade = 0.85 * std::erfc(away / std::numbers::sqrt2) / 2;
        EXPECT_NEAR(1 - qGray(canvas.pixel(at + QPoint(0, below))) / 255.0, shade, 0.05) << below;
    }
}

TEST(Reference, ABorderTakesFourPartsInAHundredOfTheShorterEdge)
{
    const auto width = [](QSizeF canvas) {
        return FrameGeometry::photoRect({1000, 1000}, canvas, {.scale = 1, .borderPx = 500}).width();
    };
    EXPECT_DOUBLE_EQ(width({1000, 3000}), 1000 - 2 * 40);
    EXPECT_DOUBLE_EQ(width({3000, 1000}), 1000 - 2 * 40);
}

/// A film piece at 100 pixels a millimetre.
QImage film(bool light)
{
    PhotoItem item = photoItem(30, 20);
    item.settings.style = FrameStyle::film;
    item.settings.scale = 1;
    item.settings.film = FilmOptions();
    item.settings.film->light = light;
    const QSizeF mm = orientedSize(FilmFormat::mm35, item.size());
    return drawn(item, (mm * 100).toSize(), {});
}

void expectPixel(QRgb pixel, int red, int green, int blue)
{
    EXPECT_NEAR(qRed(pixel), red, 1);
    EXPECT_NEAR(qGreen(pixel), green, 1);
    EXPECT_NEAR(qBlue(pixel), blue, 1);
}

TEST(Reference, TheEdgePrintHasItsColours)
{
    // The middle of the upper arrow. Amber of 0.77, 0.65, 0.38 covers the base of 0.026, 0.024, 0.022 by
    // 0.92.
    const QPoint arrow(478, 70);
    expectPixel(film(false).pixel(arrow), 181, 153, 90);
    expectPixel(film(true).pixel(arrow), 41, 41, 41);
    // Letters glow: what the amber leaves of the base is covered once more by 0.16 × 0.92.
    const QImage dark = film(false);
    int brightest = 0;
    for (int y = 20; y < 130; ++y) {
        for (int x = 610; x < 1200; ++x) {
            brightest = std::max(brightest, qRed(dark.pixel(x, y)));
        }
    }
    EXPECT_NEAR(brightest, 255 * (0.77 - (0.77 - 0.026) * 0.08 * (1 - 0.16 * 0.92)), 1);
}

TEST(Reference, HolesHaveRoundCorners)
{
    // The first hole begins at 2.575 − 1.981 ÷ 2 mm, 1.85 mm from the edge. A corner of 0.51 mm leaves out
    // what is nearer to it than 0.51 × (1 − √½) = 0.149 mm along both sides.
    const QImage image = film(false);
    const QPoint corner(158, 185);
    EXPECT_LT(qGray(image.pixel(corner + QPoint(10, 10))), 60);
    EXPECT_GT(qGray(image.pixel(corner + QPoint(22, 22))), 240);
}

} // namespace
} // namespace tarnovel
