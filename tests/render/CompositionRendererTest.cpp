#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

#include <QPainter>
#include <gtest/gtest.h>

#include "render/BuiltInTemplate.h"
#include "render/CompositionRenderer.h"
#include "render/FrameGeometry.h"
#include "render/TestPictures.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

TextLayer textLayer(const QString &text)
{
    TextLayer layer;
    layer.id = u"title"_s;
    layer.text = text;
    layer.visible = true;
    layer.size = 0.05;
    return layer;
}

/// The lengths of the runs of one colour along a line of pixels.
std::vector<std::pair<QColor, int>> runs(const QImage &image, QPoint from, QPoint step)
{
    std::vector<std::pair<QColor, int>> found;
    for (QPoint at = from; image.rect().contains(at); at += step) {
        const QColor color = image.pixelColor(at);
        if (found.empty() || found.back().first != color) {
            found.push_back({color, 0});
        }
        ++found.back().second;
    }
    return found;
}

TEST(PhotoPlacement, CinemaFillsItsBandAndFollowsTheSlider)
{
    PhotoItem item = photoItem(1000, 1000);
    item.settings.style = FrameStyle::cinema;
    const QSizeF square(1000, 1000);
    const QRectF band = CompositionRenderer::photoRect(item, item.settings, square);
    EXPECT_NEAR(band.height(), 418.41, 0.005); // 1000 ÷ 2.39
    EXPECT_NEAR(band.y(), 290.79, 0.005);
    const auto top = [&](double y) {
        item.settings.y = y;
        return CompositionRenderer::photoPlacement(item, item.settings, square).whole;
    };
    EXPECT_NEAR(top(0).center().y(), 500, 1e-9);
    EXPECT_NEAR(top(0.45).bottom(), band.bottom(), 1e-9);
    EXPECT_NEAR(top(9).bottom(), band.bottom(), 1e-9);
    EXPECT_NEAR(top(-0.45).top(), band.top(), 1e-9);
    EXPECT_GT(top(-0.9).top(), band.top());
    EXPECT_EQ(CompositionRenderer::photoRect(item, item.settings, {1000, 200}), QRectF(0, 0, 1000, 200));
}

TEST(TextRect, KeepsATurnedLayerOnTheCanvas)
{
    const QSizeF size(1000, 800);
    TextLayer layer = textLayer(u"Some words"_s);
    for (const double rotation : {0.0, 30.0, 90.0, -135.0}) {
        for (const double place : {-3.0, 0.0, 0.5, 1.0, 7.0}) {
            layer.rotation = rotation;
            layer.x = layer.y = place;
            const QRectF rect = CompositionRenderer::textRect(layer, size);
            QTransform turn;
            turn.translate(rect.center().x(), rect.center().y());
            turn.rotate(rotation);
            turn.translate(-rect.center().x(), -rect.center().y());
            EXPECT_TRUE(QRectF(-1e-6, -1e-6, 1000 + 2e-6, 800 + 2e-6).contains(turn.mapRect(rect)));
        }
    }
    layer.imageFile = u"logo.png"_s;
    layer.rotation = {};
    EXPECT_EQ(CompositionRenderer::textRect(layer, {2000, 2000}).size(), QSizeF(500, 500));
    layer.imageAspect = 0.05;
    const QRectF tall = CompositionRenderer::textRect(layer, {2000, 2000});
    EXPECT_EQ(tall.size(), QSizeF(500, 5000));
    EXPECT_EQ(tall.center().y(), 2500); // the lower bound wins when it cannot fit
}

TEST(TextRect, BreaksLinesTheSameAtEverySize)
{
    TextLayer layer =
        textLayer(u"A longer line that has to break somewhere, 还有一些中文字需要换行显示 and one more"_s);
    for (const char *face : {"", "serif", "rounded", "mono", "handwritten", "unknown"}) {
        layer.fontStyle = QString::fromLatin1(face);
        const QRectF small = CompositionRenderer::textRect(layer, {140, 186.667});
        const QRectF large = CompositionRenderer::textRect(layer, {14000, 18666.7});
        EXPECT_NEAR(small.width() * 100, large.width(), 1e-3) << face;
        EXPECT_NEAR(small.height() * 100, large.height(), 1e-3) << face;
        EXPECT_LE(large.width(), 0.84 * 14000 + 1) << face;
        EXPECT_GT(large.height(), 2 * 0.05 * 14000) << face;
    }
    layer.text = u"word "_s.repeated(5000);
    EXPECT_LE(CompositionRenderer::textRect(layer, {1000, 1000}).height(), 300 + 2);
}

TEST(Draw, PutsBackdropBorderAndPhotoInPlace)
{
    PhotoItem item = photoItem(100, 100);
    item.settings.preset = CanvasPreset::square;
    item.settings.scale = 0.5;
    item.settings.border = 0.02;
    item.settings.color = {0, 0, 1};
    item.settings.borderColor = {1, 0, 0};
    QImage green(100, 100, QImage::Format_RGB32);
    green.fill(QColor(0, 200, 0));
    const QImage canvas = drawn(item, {200, 200}, {.photo = {green}});
    // Box 100 − 2 × 4 = 92 pixels wide, from 54 to 146; border 4.
    EXPECT_EQ(canvas.pixelColor(49, 100), QColor(0, 0, 255));
    EXPECT_EQ(canvas.pixelColor(51, 100), QColor(255, 0, 0));
    EXPECT_EQ(canvas.pixelColor(54, 100), QColor(0, 200, 0));
    EXPECT_EQ(canvas.pixelColor(145, 100), QColor(0, 200, 0));
    EXPECT_EQ(canvas.pixelColor(149, 149), QColor(255, 0, 0));
    EXPECT_EQ(canvas.pixelColor(150, 150), QColor(0, 0, 255));
}

TEST(Draw, LetsTransparentPartsShowWhatLiesBehind)
{
    PhotoItem item = photoItem(100, 100);
    item.settings.scale = 1;
    item.settings.border = 0;
    item.settings.color = {1, 1, 0};
    QImage clear(100, 100, QImage::Format_ARGB32_Premultiplied);
    clear.fill(Qt::transparent);
    EXPECT_EQ(drawn(item, {90, 120}, {.photo = {clear}}).pixelColor(45, 60), QColor(255, 255, 0));
}

TEST(Draw, UsesThePictureOnlyForBackdropsThatTakeOne)
{
    PhotoItem item = photoItem(0, 0);
    QImage red(10, 20, QImage::Format_RGB32);
    red.fill(Qt::red);
    for (const auto &[kind, expected] : {std::pair(Backdrop::solid, QColor(Qt::white)),
                                         {Backdrop::image, Qt::red},
                                         {Backdrop::blur, Qt::red},
                                         {Backdrop::gradient, Qt::white}}) {
        item.settings.background = kind;
        item.settings.secondColor = {0, 0, 0};
        const QImage canvas = drawn(item, {60, 80}, {.background = red});
        EXPECT_NEAR(canvas.pixelColor(0, 0).green(), expected.green(), 4);
        EXPECT_NEAR(canvas.pixelColor(0, 0).red(), expected.red(), 4);
        if (kind == Backdrop::gradient) {
            EXPECT_LT(canvas.pixelColor(59, 79).red(), 5);
            EXPECT_NEAR(canvas.pixelColor(30, 40).red(), 127, 4);
        }
    }
}

TEST(Draw, DithersAGradientToItsExactLevels)
{
    PhotoItem item = photoItem(0, 0);
    item.settings.background = Backdrop::gradient;
    item.settings.color = {40 / 255.0, 1, 0.2};
    item.settings.secondColor = {52 / 255.0, 1, 0.7};
    const QSize size(800, 600);
    const QImage canvas = drawn(item, size, {});
    // Along the diagonal, of which a point is as far as its projection on it.
    const auto exact = [](double x, double y) {
        return 40 + 12 * (x * 800 + y * 600) / (800 * 800 + 600 * 600);
    };
    for (int top = 0; top < 600; top += 8) {
        for (int left = 0; left < 800; left += 8) {
            double sum = 0;
            for (int i = 0; i < 64; ++i) {
                const QPoint at(left + i % 8, top + i / 8);
                const int red = canvas.pixelColor(at).red();
                sum += red;
                EXPECT_NEAR(red, exact(at.x() + 0.5, at.y() + 0.5), 1);
                EXPECT_EQ(canvas.pixelColor(at).green(), 255); // a whole level stays
            }
            EXPECT_NEAR(sum / 64, exact(left + 4, top + 4), 0.06);
        }
    }
    EXPECT_EQ(drawn(item, size, {}), canvas);
}

TEST(Draw, ShowsLayersInTheirInkAndOrder)
{
    PhotoItem item = photoItem(0, 0);
    item.settings.layers = {textLayer(u"████"_s), textLayer(u"████"_s)};
    item.settings.layers[0].ink = {1, 0, 0};
    item.settings.layers[1].ink = {0, 0, 1};
    item.settings.layers[1].size = 0.02;
    const QImage canvas = drawn(item, {300, 400}, {});
    EXPECT_EQ(canvas.pixelColor(150, 200), QColor(Qt::blue));
    EXPECT_EQ(canvas.pixelColor(130, 200), QColor(Qt::red));
    item.settings.layers[1].visible = false;
    item.settings.layers[0].text.clear();
    QImage paper(300, 400, QImage::Format_RGB32);
    paper.fill(Qt::white);
    EXPECT_EQ(drawn(item, {300, 400}, {}), paper);
}

TEST(Draw, ShadesTextOnlyInTheCinema)
{
    PhotoItem item = photoItem(0, 0);
    item.settings.layers = {textLayer(u"████"_s)};
    item.settings.layers[0].ink = {1, 1, 1};
    const auto darkest = [&item](FrameStyle style) {
        item.settings.style = style;
        const QImage canvas = drawn(item, {600, 600}, {});
        int least = 255;
        for (int y = 0; y < 600; ++y) {
            least = std::min(least, canvas.pixelColor(300, y).value());
        }
        return least;
    };
    EXPECT_EQ(darkest(FrameStyle::simple), 255);
    EXPECT_EQ(darkest(FrameStyle::instant), 255);
    EXPECT_LT(darkest(FrameStyle::cinema), 200);
}

TEST(Draw, DropsASubtitlesShadowStraightBelow)
{
    PhotoItem item = photoItem(0, 0);
    item.settings.style = FrameStyle::cinema;
    item.settings.layers = {textLayer(u"████"_s)};
    item.settings.layers[0].ink = {1, 1, 1};
    const QImage canvas = drawn(item, {1000, 1000}, {});
    // A block of white whose edges the shadow, 0.0012 × 1000 px lower, leaves by as much more below.
    const auto shade = [&canvas](QPoint from, QPoint step) {
        QPoint at = from;
        while (canvas.rect().contains(at) && canvas.pixelColor(at).value() > 250) {
            at += step;
        }
        double sum = 0;
        for (int i = 0; i < 12 && canvas.rect().contains(at); ++i, at += step) {
            sum += 1 - canvas.pixelColor(at).valueF();
        }
        return sum;
    };
    const QPoint middle =
        CompositionRenderer::textRect(item.settings.layers[0], {1000, 1000}).center().toPoint();
    const double above = shade(middle, {0, -1});
    const double below = shade(middle, {0, 1});
    // A blurred edge leaves 0.85 of σ ÷ √(2π) pixels in the shade, one moved by d about 0.85 · d ÷ 2 more or
    // less.
    EXPECT_NEAR(below - above, 0.85 * 1.2, 0.35);
    EXPECT_NEAR(shade(middle, {-1, 0}), shade(middle, {1, 0}), 0.1);
}

TEST(Draw, PlacesTheSignatureWhereTheSettingsSay)
{
    PhotoItem item = photoItem(0, 0);
    QImage ink(200, 100, QImage::Format_ARGB32_Premultiplied);
    ink.fill(Qt::black);
    item.settings.handwritingFile = u"signature.png"_s;
    item.settings.handwritingX = 0.2;
    item.settings.handwritingY = 0.3;
    item.settings.handwritingWidth = 0.1;
    item.settings.handwritingAspect = 4;
    const QImage canvas = drawn(item, {1000, 1000}, {.signature = ink});
    // 100 × 25 around (200, 300).
    const auto across = runs(canvas, {0, 300}, {1, 0});
    ASSERT_EQ(across.size(), 3U);
    EXPECT_EQ(across[0].second, 150);
    EXPECT_EQ(across[1].second, 100);
    const auto down = runs(canvas, {200, 0}, {0, 1});
    ASSERT_GE(down.size(), 3U);
    EXPECT_NEAR(down[0].second, 287, 1);
}

TEST(Draw, PlacesTheSignatureByItsDefaults)
{
    PhotoItem item = photoItem(0, 0);
    QImage ink(200, 100, QImage::Format_ARGB32_Premultiplied);
    ink.fill(Qt::black);
    EXPECT_EQ(drawn(item, {1000, 1000}, {.signature = ink}).pixelColor(500, 890), QColor(Qt::white));
    item.settings.handwritingFile = u"signature.png"_s;
    const QImage canvas = drawn(item, {1000, 1000}, {.signature = ink});
    // 420 wide, 210 high, its centre held from 900 to 1000 − 105.
    EXPECT_EQ(canvas.pixelColor(291, 895), QColor(Qt::black));
    EXPECT_EQ(canvas.pixelColor(288, 895), QColor(Qt::white));
    EXPECT_EQ(canvas.pixelColor(500, 788), QColor(Qt::white));
    EXPECT_EQ(canvas.pixelColor(500, 999), QColor(Qt::black));
}

TEST(Draw, CopiesAPhotoWhosePixelsLieOnTheCanvas)
{
    PhotoItem item = photoItem(300, 200);
    item.settings.border = 0;
    const QSize size(301, 399);
    const QRectF whole = CompositionRenderer::photoRect(item, item.settings, size);
    const QRect pixels = whole.toAlignedRect();
    PhotoImage photo;
    photo.image = photoImage(pixels.size());
    photo.extent = {(pixels.x() - whole.x()) / whole.width(), (pixels.y() - whole.y()) / whole.height(),
                    pixels.width() / whole.width(), pixels.height() / whole.height()};
    const QImage canvas = drawn(item, size, {.photo = photo});
    const QRect inside = pixels.adjusted(1, 1, -1, -1);
    EXPECT_EQ(canvas.copy(inside), photo.image.copy(1, 1, inside.width(), inside.height()));
    // The outermost pixels are the photo's or the paper's, never a mixture.
    EXPECT_EQ(canvas.pixelColor(qRound(whole.left()), 200),
              photo.image.pixelColor(qRound(whole.left()) - pixels.left(), 200 - pixels.top()));
    EXPECT_EQ(canvas.pixelColor(qRound(whole.left()) - 1, 200), QColor(Qt::white));
}

/// A photo in one colour, its pixels on the canvas's as the pipeline makes them.
PhotoImage flatPhoto(const PhotoItem &item, QSize canvas, const QColor &color)
{
    const QRectF whole = CompositionRenderer::photoRect(item, item.settings, canvas);
    const QRect pixels = (whole & QRectF({}, QSizeF(canvas))).toAlignedRect();
    PhotoImage photo{QImage(pixels.size(), QImage::Format_RGB32),
                     {(pixels.x() - whole.x()) / whole.width(), (pixels.y() - whole.y()) / whole.height(),
                      pixels.width() / whole.width(), pixels.height() / whole.height()}};
    photo.image.fill(color);
    return photo;
}

TEST(Draw, ShowsNoLineAroundAPhotoWithoutBorder)
{
    for (const QSizeF source :
         {QSizeF(3000, 2000), QSizeF(2000, 3000), QSizeF(4000, 2667), QSizeF(601, 400)}) {
        PhotoItem item = photoItem(source.width(), source.height());
        item.settings.preset = CanvasPreset::original;
        item.settings.scale = 1;
        item.settings.border = 0;
        for (const int longEdge : {97, 400, 410, 1366, 4096}) {
            const QSize canvas = FrameGeometry::canvas(source.width() / source.height(), longEdge).toSize();
            QImage black(60, 40, QImage::Format_RGB32);
            black.fill(Qt::black);
            for (const PhotoImage &photo : {flatPhoto(item, canvas, Qt::black), PhotoImage{black}}) {
                const QImage made = drawn(item, canvas, {.photo = photo});
                for (const QPoint at : {QPoint(0, 0), QPoint(canvas.width() - 1, canvas.height() - 1)}) {
                    EXPECT_EQ(made.pixelColor(at.x(), canvas.height() / 2), QColor(Qt::black)) << longEdge;
                    EXPECT_EQ(made.pixelColor(canvas.width() / 2, at.y()), QColor(Qt::black)) << longEdge;
                }
            }
        }
    }
}

TEST(Draw, PutsBordersOnWholePixelsEquallyWideAllRound)
{
    for (const auto &[border, canvas, wide] : {std::tuple(0.006, QSize(1080, 1350), 6), // 6.48
                                               {0.006, QSize(300, 400), 2},             // 1.8
                                               {0.006, QSize(60, 80), 1},               // 0.36
                                               {0.013, QSize(301, 399), 4}}) {          // 3.9
        PhotoItem item = photoItem(1501, 1000);
        item.settings.scale = 0.877;
        item.settings.y = -0.0313;
        item.settings.border = border;
        item.settings.borderColor = {1, 0, 0};
        QImage blue(15, 10, QImage::Format_RGB32);
        blue.fill(Qt::blue);
        for (const PhotoImage &photo : {flatPhoto(item, canvas, Qt::blue), PhotoImage{blue}}) {
            const QImage made = drawn(item, canvas, {.photo = photo});
            const QPoint middle =
                CompositionRenderer::photoRect(item, item.settings, canvas).center().toPoint();
            for (const auto &line :
                 {runs(made, {0, middle.y()}, {1, 0}), runs(made, {middle.x(), 0}, {0, 1})}) {
                ASSERT_EQ(line.size(), 5U) << canvas.width();
                EXPECT_EQ(line[0].first, QColor(Qt::white));
                EXPECT_EQ(line[1], std::pair(QColor(Qt::red), wide));
                EXPECT_EQ(line[2].first, QColor(Qt::blue));
                EXPECT_EQ(line[3], std::pair(QColor(Qt::red), wide));
            }
        }
    }
}

/// Hides the photo's edges and its border: both sizes have them on whole pixels, up to half of one apart.
void coverEdges(const PhotoItem &item, QImage &canvas)
{
    const QRectF rect = CompositionRenderer::photoRect(item, item.settings, canvas.size());
    const double border = item.settings.border * std::min(canvas.width(), canvas.height());
    const double reach = border + 1;
    QPainter painter(&canvas);
    painter.setPen(QPen(Qt::black, 2 * reach + 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(rect);
}

TEST(Draw, AgreesWithItselfAcrossSizes)
{
    for (const BuiltInTemplate look : BuiltInTemplates::all()) {
        if (look == BuiltInTemplate::film) {
            continue; // has laws of its own
        }
        PhotoItem item = photoItem(1500, 1000);
        for (const auto &[id, text] : {std::pair(u"brand"_s, u"FUJIFILM"_s),
                                       {u"model"_s, u"X-T5"_s},
                                       {u"exif"_s, u"35 mm · f/2.8 · 1/250 s"_s},
                                       {u"title"_s, u"光的早晨 Morning light"_s},
                                       {u"caption"_s, u"A line below the title that says a little more"_s}}) {
            item.settings.layer(id)->text = text;
        }
        item.settings = BuiltInTemplates::make(look, item.settings, {{0.3, 0.4, 0.5}});
        const QSize small(look == BuiltInTemplate::full ? QSize(360, 240) : QSize(300, 400));
        const QImage photo = photoImage({1500, 1000});
        QImage preview = drawn(item, small, {.photo = {photo}});
        QImage reference = shrunk(drawn(item, small * 4, {.photo = {photo}}), 4);
        coverEdges(item, preview);
        coverEdges(item, reference);
        EXPECT_GT(psnr(preview, reference), 36) << BuiltInTemplates::id(look).toStdString();
    }
}

TEST(Draw, SurvivesAbsurdSettings)
{
    PhotoItem item = photoItem(1e300, 1e-300);
    TextLayer layer = textLayer(u"text"_s);
    for (const double value : {1e308, -1e308, 0.0}) {
        layer.size = layer.x = layer.y = value;
        layer.rotation = value;
        item.settings.layers = {layer};
        item.settings.scale = item.settings.x = item.settings.border = item.settings.y = value;
        item.settings.handwritingFile = u"h"_s;
        item.settings.handwritingWidth = item.settings.handwritingAspect = value;
        for (const FrameStyle style : {FrameStyle::simple, FrameStyle::cinema}) {
            item.settings.style = style;
            const QImage picture = photoImage({20, 10});
            const QImage canvas = drawn(item, {90, 120}, {.photo = {picture}, .signature = picture});
            EXPECT_NE(canvas.pixelColor(0, 0), QColor(Qt::magenta));
        }
    }
}

} // namespace
} // namespace tarnovel
