#include <cmath>

#include <QPainter>
#include <gtest/gtest.h>

#include "render/BuiltInTemplate.h"
#include "render/CompositionRenderer.h"
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

TEST(Draw, PlacesTheSignatureByItsDefaults)
{
    PhotoItem item = photoItem(0, 0);
    QImage ink(200, 100, QImage::Format_ARGB32_Premultiplied);
    ink.fill(Qt::black);
    EXPECT_EQ(drawn(item, {1000, 1000}, {.handwriting = ink}).pixelColor(500, 890), QColor(Qt::white));
    item.settings.handwritingFile = u"signature.png"_s;
    const QImage canvas = drawn(item, {1000, 1000}, {.handwriting = ink});
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
    // The edge pixels are covered by as much of the photo as lies on them.
    const double covered = whole.left() - std::floor(whole.left());
    const int paper = 255;
    const int edge = canvas.pixelColor(pixels.left(), 200).red();
    const int own = photo.image.pixelColor(0, 200 - pixels.top()).red();
    EXPECT_NEAR(edge, paper * covered + own * (1 - covered), 3);
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
        const QImage preview = drawn(item, small, {.photo = {photo}});
        const QImage reference = shrunk(drawn(item, small * 4, {.photo = {photo}}), 4);
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
            const QImage canvas = drawn(item, {90, 120}, {.photo = {picture}, .handwriting = picture});
            EXPECT_NE(canvas.pixelColor(0, 0), QColor(Qt::magenta));
        }
    }
}

} // namespace
} // namespace tarnovel
