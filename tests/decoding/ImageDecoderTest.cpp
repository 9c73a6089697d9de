#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include <QColorSpace>
#include <QTemporaryDir>
#include <QTransform>

#include "base/Cancellation.h"
#include "decoding/Fixtures.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

using namespace test;

constexpr std::array scales = {0.5, 0.33, 0.2, 0.1};

QSize scaled(QSize size, double scale)
{
    return QSize(static_cast<int>(std::lround(size.width() * scale)),
                 static_cast<int>(std::lround(size.height() * scale)));
}

bool near(QRgb one, QRgb other, int tolerance)
{
    return std::abs(qRed(one) - qRed(other)) <= tolerance &&
           std::abs(qGreen(one) - qGreen(other)) <= tolerance &&
           std::abs(qBlue(one) - qBlue(other)) <= tolerance;
}

class ImageDecoderTest : public testing::Test {
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

TEST_F(ImageDecoderTest, EveryJpegSamplingStaysNearTheLanczosReference)
{
    const QImage original = texture(QSize(643, 421));
    const std::array<JpegOptions, 6> kinds = {
        {{98, 1, 1}, {98, 2, 1}, {98, 2, 2}, {98, 1, 2}, {98, 4, 1}, {98, 2, 2, false, true}}};
    for (const JpegOptions &kind : kinds) {
        const QString file = written(path(u"a.jpg"_s), jpeg(original, kind));
        const QImage full = decodeImage(file, 10'000);
        ASSERT_EQ(full.size(), original.size());
        EXPECT_EQ(full.format(), QImage::Format_RGB32);
        EXPECT_GT(psnr(full, original), kind.horizontal == 4 ? 31 : 35) << kind.horizontal << kind.vertical;
        for (const double scale : scales) {
            const QSize size = scaled(original.size(), scale);
            const QImage reference = lanczosReference(full, QRectF(full.rect()), size);
            EXPECT_GT(psnr(decodeImageRegion(file, QRectF(full.rect()), size), reference), 40)
                << kind.horizontal << kind.vertical << " at " << scale;
        }
    }
}

TEST_F(ImageDecoderTest, EveryOtherFormatStaysNearTheLanczosReference)
{
    const QImage original = texture(QSize(640, 420));
    const std::array<std::pair<QString, QString>, 6> kinds = {{{u"a.png"_s, u""_s},
                                                               {u"a.png"_s, u"[interlace]"_s},
                                                               {u"a.tif"_s, u"[compression=lzw]"_s},
                                                               {u"a.webp"_s, u"[lossless]"_s},
                                                               {u"a.heic"_s, u"[Q=90,compression=hevc]"_s},
                                                               {u"a.avif"_s, u"[Q=90,compression=av1]"_s}}};
    for (const auto &[name, options] : kinds) {
        save(original, path(name), options);
        const QImage full = decodeImage(path(name), 10'000);
        EXPECT_EQ(full.format(), QImage::Format_RGB32);
        EXPECT_GT(psnr(full, original), name == u"a.heic" || name == u"a.avif" ? 32 : 98)
            << name.toStdString();
        for (const double scale : scales) {
            const QSize size = scaled(full.size(), scale);
            EXPECT_GT(psnr(decodeImageRegion(path(name), QRectF(full.rect()), size),
                           lanczosReference(full, QRectF(full.rect()), size)),
                      40)
                << name.toStdString() << " at " << scale;
        }
    }
}

TEST_F(ImageDecoderTest, ARegionIsTheSamePartOfTheWholePicture)
{
    const QImage original = texture(QSize(1201, 803));
    written(path(u"a.jpg"_s), jpeg(original, {96, 2, 2}));
    save(original, path(u"a.png"_s));
    for (const QString &name : {u"a.jpg"_s, u"a.png"_s}) {
        const QImage full = decodeImage(path(name), 10'000);
        const std::array<std::pair<QRectF, QSize>, 5> cases = {
            {{QRectF(100.5, 200.25, 600, 400), QSize(150, 100)},
             {QRectF(0, 0, 1201, 803), QSize(75, 50)},
             {QRectF(900, 500, 301, 303), QSize(301, 303)},
             {QRectF(333.3, 99.9, 60, 40), QSize(240, 160)},
             {QRectF(-40, -30, 1300, 870), QSize(325, 290)}}};
        for (const auto &[region, size] : cases) {
            const QImage part = decodeImageRegion(path(name), region, size);
            ASSERT_EQ(part.size(), size);
            EXPECT_GT(psnr(part, lanczosReference(full, region, size)), 40)
                << name.toStdString() << ' ' << region.x() << ' ' << size.width();
        }
    }
}

TEST_F(ImageDecoderTest, EdgePixelsGoOnOutsideThePicture)
{
    const QImage original = quarters(QSize(200, 100));
    written(path(u"a.jpg"_s), jpeg(original, {98, 2, 2}));
    save(original, path(u"a.png"_s));
    for (const QString &name : {u"a.jpg"_s, u"a.png"_s}) {
        const QImage beyond = decodeImageRegion(path(name), QRectF(-200, -100, 600, 300), QSize(60, 30));
        const QImage beside = decodeImageRegion(path(name), QRectF(5000, 2000, 50, 50), QSize(8, 8));
        const std::array<std::pair<QRgb, QRgb>, 6> pairs = {{{beyond.pixel(0, 0), 0xffff0000},
                                                             {beyond.pixel(59, 0), 0xff00ff00},
                                                             {beyond.pixel(0, 29), 0xff0000ff},
                                                             {beyond.pixel(59, 29), 0xffffff00},
                                                             {beyond.pixel(22, 2), 0xffff0000},
                                                             {beside.pixel(4, 4), 0xffffff00}}};
        for (const auto &[found, wanted] : pairs) {
            EXPECT_TRUE(near(found, wanted, 6)) << name.toStdString() << std::hex << ' ' << found << ' '
                                                << wanted << ' ' << (&found - &pairs[0].first);
        }
    }
}

TEST_F(ImageDecoderTest, EveryOrientationComesOutUpright)
{
    const QImage stored = texture(QSize(302, 201));
    save(stored, path(u"plain.png"_s));
    const QByteArray file = jpeg(stored, {98, 2, 2});
    const QImage decoded = decodeImage(written(path(u"a.jpg"_s), file), 1000);
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const auto upright = [&](const QImage &image) {
            const QTransform quarter = QTransform().rotate(90);
            const std::array<QImage, 8> all = {image,
                                               image.mirrored(true, false),
                                               image.mirrored(true, true),
                                               image.mirrored(false, true),
                                               image.transformed(quarter).mirrored(true, false),
                                               image.transformed(quarter),
                                               image.transformed(quarter).mirrored(false, true),
                                               image.transformed(QTransform().rotate(270))};
            return all.at(static_cast<size_t>(orientation - 1));
        };
        written(path(u"t.jpg"_s), withExif(file, orientationBlock(orientation)));
        SaveOptions options;
        options.orientation = orientation;
        written(path(u"t.png"_s),
                withChunk(contents(path(u"plain.png"_s)), "eXIf", orientationBlock(orientation)));
        save(stored, path(u"t.tif"_s), {}, options);
        save(stored, path(u"t.webp"_s), u"[lossless]"_s, options);
        for (const QString &name : {u"t.jpg"_s, u"t.png"_s, u"t.tif"_s, u"t.webp"_s}) {
            const QImage whole = upright(name == u"t.jpg"_s ? decoded : stored);
            EXPECT_EQ(readImageHeader(path(name)).orientation, orientation) << name.toStdString();
            EXPECT_EQ(readImageHeader(path(name)).uprightSize(), whole.size());
            EXPECT_GT(psnr(decodeImage(path(name), 1000), whole), 60) << name.toStdString() << orientation;
            const QRectF region(20, 50, 100, 80);
            EXPECT_GT(psnr(decodeImageRegion(path(name), region, QSize(50, 40)),
                           lanczosReference(whole, region, QSize(50, 40))),
                      40)
                << name.toStdString() << orientation;
        }
    }
}

TEST_F(ImageDecoderTest, TheLongerSideIsLimitedAndNothingIsEnlarged)
{
    const QString file = written(path(u"a.jpg"_s), jpeg(texture(QSize(301, 100))));
    EXPECT_EQ(decodeImage(file, 150).size(), QSize(150, 50));
    EXPECT_EQ(decodeImage(file, 4000).size(), QSize(301, 100));
    EXPECT_EQ(decodeImage(written(path(u"b.jpg"_s), jpeg(texture(QSize(900, 2)))), 100).size(),
              QSize(100, 1));
    EXPECT_EQ(decodeImage(written(path(u"c.jpg"_s), jpeg(texture(QSize(1, 1)))), 100).size(), QSize(1, 1));
}

TEST_F(ImageDecoderTest, DepthsAndChannelsKeepTheirColours)
{
    QImage original = quarters(QSize(64, 48));
    for (int depth : {8, 16}) {
        for (int bands : {1, 2, 3, 4}) {
            for (const QString &name : {u"a.png"_s, u"a.tif"_s}) {
                save(original, path(name), {}, {bands, depth});
                const QImage image = decodeImage(path(name), 1000);
                EXPECT_EQ(image.format(), QImage::Format_RGB32); // opaque everywhere
                const QRgb red = image.pixel(8, 8);
                const bool grey = bands < 3;
                EXPECT_TRUE(grey ? qRed(red) == qGreen(red) && qRed(red) > 40 && qRed(red) < 160
                                 : near(red, 0xffff0000, 1))
                    << depth << bands << name.toStdString() << std::hex << red;
            }
        }
    }
    save(original, path(u"p.png"_s), u"[palette]"_s);
    EXPECT_TRUE(near(decodeImage(path(u"p.png"_s), 100).pixel(60, 40), 0xffffff00, 1));
    JpegOptions grey;
    grey.grey = true;
    const QRgb pixel = decodeImage(written(path(u"g.jpg"_s), jpeg(original, grey)), 100).pixel(60, 40);
    EXPECT_TRUE(near(pixel, 0xffe2e2e2, 2)) << std::hex << pixel;
    JpegOptions rgb;
    rgb.storedAsRgb = true;
    EXPECT_TRUE(
        near(decodeImage(written(path(u"r.jpg"_s), jpeg(original, rgb)), 100).pixel(60, 40), 0xffffff00, 3));
}

TEST_F(ImageDecoderTest, TransparencyIsKeptPremultiplied)
{
    QImage original(80, 60, QImage::Format_ARGB32);
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 80; ++x) {
            original.setPixel(x, y, qRgba(255, 0, 128, x < 40 ? 255 : 0));
        }
    }
    for (const QString &name : {u"a.png"_s, u"a.tif"_s, u"a.webp"_s}) {
        save(original, path(name), name.endsWith(u"webp") ? u"[lossless]"_s : u""_s, {4, 8});
        const QImage image = decodeImage(path(name), 40);
        ASSERT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied) << name.toStdString();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = reinterpret_cast<const QRgb *>(image.constScanLine(y))[x];
                ASSERT_LE(qRed(pixel), qAlpha(pixel));
                ASSERT_NEAR(qRed(pixel), qAlpha(pixel), 2) << "no dark fringe at " << x;
            }
        }
        EXPECT_EQ(qAlpha(image.pixel(2, 2)), 255);
        EXPECT_EQ(qAlpha(image.pixel(38, 2)), 0);
    }
}

TEST_F(ImageDecoderTest, InksComeOutAsTheColoursTheyPrint)
{
    SaveOptions options;
    options.cmyk = true;
    const QImage original = quarters(QSize(64, 48));
    save(original, path(u"a.jpg"_s), u"[Q=98]"_s, options);
    save(original, path(u"a.tif"_s), {}, options);
    for (const QString &name : {u"a.jpg"_s, u"a.tif"_s}) {
        const QImage image = decodeImage(path(name), 1000);
        const QRgb red = image.pixel(8, 8);
        const QRgb yellow = image.pixel(60, 40);
        EXPECT_TRUE(qRed(red) > 180 && qGreen(red) < 90 && qBlue(red) < 90) << std::hex << red;
        EXPECT_TRUE(qRed(yellow) > 200 && qGreen(yellow) > 200 && qBlue(yellow) < 110) << std::hex << yellow;
    }
}

TEST_F(ImageDecoderTest, AWideGamutIsConvertedToSrgb)
{
    const QByteArray profile = QColorSpace(QColorSpace::AdobeRgb).iccProfile();
    QImage stored(64, 64, QImage::Format_RGB32);
    stored.fill(qRgb(120, 160, 90));
    const QByteArray file =
        withSegment(jpeg(stored, {100}), 0xe2, QByteArray("ICC_PROFILE\0\x01\x01", 14) + profile);
    const QRgb pixel = decodeImage(written(path(u"a.jpg"_s), file), 100).pixel(5, 5);
    // Worked out from the primaries and curves of both spaces.
    EXPECT_TRUE(near(pixel, qRgb(100, 161, 84), 3))
        << qRed(pixel) << ' ' << qGreen(pixel) << ' ' << qBlue(pixel);
    const QByteArray broken =
        withSegment(jpeg(stored, {100}), 0xe2, QByteArray("ICC_PROFILE\0\x01\x01", 14) + profile.left(150));
    EXPECT_TRUE(near(decodeImage(written(path(u"b.jpg"_s), broken), 100).pixel(5, 5), qRgb(120, 160, 90), 2));
}

TEST_F(ImageDecoderTest, ACancelledDecodeIsNeitherPictureNorError)
{
    std::stop_source source;
    source.request_stop();
    const QString file = written(path(u"a.jpg"_s), jpeg(texture(QSize(64, 64))));
    save(texture(QSize(64, 64)), path(u"a.png"_s));
    EXPECT_THROW(decodeImage(file, 32, source.get_token()), OperationCancelled);
    EXPECT_THROW(decodeImageRegion(path(u"a.png"_s), QRectF(0, 0, 64, 64), QSize(10, 10), source.get_token()),
                 OperationCancelled);
}

TEST_F(ImageDecoderTest, PicturesTooLargeForMemoryKeepTheirPlaces)
{
    // More than 64 megapixels, which are averaged on the way: black on the left, white below on the right.
    QImage large(8200, 8200, QImage::Format_Mono);
    large.fill(0);
    for (int y = 4100; y < 8200; ++y) {
        std::memset(large.scanLine(y) + 4100 / 8, 0xff, static_cast<size_t>(large.bytesPerLine() - 4100 / 8));
    }
    ASSERT_TRUE(large.save(path(u"large.png"_s)));
    const QImage small = decodeImage(path(u"large.png"_s), 100);
    ASSERT_EQ(small.size(), QSize(100, 100));
    for (const auto &[place, level] : {std::pair(QPoint(45, 90), 0),
                                       {QPoint(55, 90), 255},
                                       {QPoint(90, 55), 255},
                                       {QPoint(90, 45), 0},
                                       {QPoint(98, 98), 255}}) {
        EXPECT_EQ(qGray(small.pixel(place)), level) << place.x() << ' ' << place.y();
    }
}

} // namespace
} // namespace tarnovel
