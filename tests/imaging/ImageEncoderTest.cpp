#include <cmath>

#include <gtest/gtest.h>

#include <QColorSpace>
#include <QTemporaryDir>
#include <QtEndian>

#include <turbojpeg.h>

#include "base/Cancellation.h"
#include "imaging/ImageEncoder.h"
#include "imaging/Pictures.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

using namespace test;

int subsampling(const QByteArray &file)
{
    tjhandle handle = tjInitDecompress();
    int width = 0;
    int height = 0;
    int found = -1;
    int space = 0;
    tjDecompressHeader3(handle, reinterpret_cast<const unsigned char *>(file.constData()),
                        static_cast<unsigned long>(file.size()), &width, &height, &found, &space);
    tjDestroy(handle);
    return found;
}

/// Every pixel by chance: even the lowest quality leaves far more bytes than flat pictures have.
QImage noise(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    quint32 seed = 11;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            seed = seed * 1664525 + 1013904223;
            image.setPixel(x, y, 0xff000000 | (seed >> 8));
        }
    }
    return image;
}

/// Black marks on white paper, in one half of it.
QImage typed(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    quint32 seed = 5;
    for (int y = 40; y < size.height() - 40; y += 14) {
        for (int x = 30; x < size.width() / 2; x += 3) {
            seed = seed * 1664525 + 1013904223;
            for (int row = 0; row < 8 && (seed >> 13) % 3 != 0; ++row) {
                image.setPixel(x + static_cast<int>((seed >> row) & 1U), y + row, qRgb(20, 20, 20));
            }
        }
    }
    return image;
}

QMap<int, qint64> sizesOf(JpegEncoder &encoder)
{
    QMap<int, qint64> sizes;
    for (int quality = 5; quality <= 95; ++quality) {
        sizes[quality] = encoder.encode(quality / 100.0).size();
    }
    return sizes;
}

/// The bisection as it is described, encoding at every step.
JpegSearchResult plainSearch(const QMap<int, qint64> &sizes, qint64 limit)
{
    const auto fits = [&](double quality) {
        return sizes[static_cast<int>(std::lround(quality * 100))] <= limit;
    };
    if (fits(0.95)) {
        return {QByteArray(), 0.95, 1};
    }
    if (!fits(0.05)) {
        return {std::nullopt, 0, 2};
    }
    double low = 0.05;
    double high = 0.95;
    double best = low;
    for (int i = 0; i < 7; ++i) {
        const double mid = (low + high) / 2;
        if (fits(mid)) {
            best = low = mid;
        } else {
            high = mid;
        }
    }
    return {QByteArray(), best, 9};
}

TEST(JpegEncoder, StoresColourInFullFromNineTenthsOn)
{
    JpegEncoder encoder(texture(QSize(75, 53)));
    EXPECT_EQ(subsampling(encoder.encode(0.89)), TJSAMP_420);
    EXPECT_EQ(subsampling(encoder.encode(0.8999)), TJSAMP_420);
    EXPECT_EQ(subsampling(encoder.encode(0.9)), TJSAMP_444);
    EXPECT_EQ(encoder.encode(0.5), encoder.encode(0.5));
    EXPECT_EQ(encoder.encode(0.701), encoder.encode(0.70));
    EXPECT_GT(encoder.encode(1).size(), encoder.encode(0.95).size());
    EXPECT_FALSE(encoder.encode(0).isEmpty());
    for (const QSize size : {QSize(75, 53), QSize(160, 96), QSize(1, 1)}) {
        JpegEncoder again(texture(size));
        for (const double quality : {0.9, 0.95, 1.0}) {
            EXPECT_EQ(encodeJpeg(texture(size), quality), again.encode(quality)) << size.width() << quality;
        }
    }
}

TEST(JpegEncoder, KeepsThePictureAndNoMetadata)
{
    const QImage image = texture(QSize(333, 127));
    const QByteArray file = JpegEncoder(image).encode(0.95);
    EXPECT_GT(psnr(QImage::fromData(file), image), 38);
    EXPECT_FALSE(file.contains("Exif"));
    EXPECT_EQ(file.count("ICC_PROFILE"), 1);
    EXPECT_EQ(JpegEncoder(image.copy()).encode(0.95), file);
}

TEST(SearchJpegQuality, GivesWhatThePlainBisectionGivesForEveryLimit)
{
    for (const QImage &image : {texture(QSize(600, 450)), quarters(QSize(97, 61)), quarters(QSize(700, 500)),
                                typed(QSize(520, 400)), noise(QSize(500, 410))}) {
        JpegEncoder encoder(image);
        const QMap<int, qint64> sizes = sizesOf(encoder);
        QList<qint64> limits;
        for (const auto &[quality, size] : sizes.asKeyValueRange()) {
            // Of the slow ones a sixth; the two ends and where colour comes in full are always there.
            if (image.width() < 510 || quality % 6 == 5 || quality > 88) {
                limits << size - 1 << size;
            }
        }
        int most = 0;
        for (const qint64 limit : limits) {
            const JpegSearchResult wanted = plainSearch(sizes, limit);
            const JpegSearchResult found = searchJpegQuality(image, limit);
            ASSERT_EQ(found.bytes.has_value(), wanted.bytes.has_value()) << limit;
            ASSERT_EQ(found.quality, wanted.quality) << limit;
            if (found.bytes) {
                ASSERT_EQ(*found.bytes, encoder.encode(wanted.quality));
                ASSERT_LE(found.bytes->size(), limit);
            }
            most = std::max(most, found.encodings);
        }
        EXPECT_LE(most, 12);
    }
}

TEST(SearchJpegQuality, FindsNothingJustBelowTheLowestQuality)
{
    const QImage image = noise(QSize(640, 400));
    JpegEncoder encoder(image);
    const QMap<int, qint64> sizes = sizesOf(encoder);
    const qint64 least = sizes[5];
    ASSERT_GT(double(least), 0.06 * image.width() * image.height()) << "decided without a search";
    for (const qint64 limit : {least * 9 / 10, least - 1, least, least + 1, sizes[6] - 1, sizes[6]}) {
        const JpegSearchResult wanted = plainSearch(sizes, limit);
        const JpegSearchResult found = searchJpegQuality(image, limit);
        EXPECT_EQ(found.bytes.has_value(), limit >= least) << limit;
        EXPECT_EQ(found.bytes.has_value(), wanted.bytes.has_value()) << limit;
        EXPECT_EQ(found.quality, wanted.quality) << limit;
        EXPECT_TRUE(!found.bytes || *found.bytes == encoder.encode(wanted.quality)) << limit;
    }
}

TEST(SearchJpegQuality, EncodesOnceWhenTheBestFitsAndTwiceWhenNothingDoes)
{
    const QImage image = texture(QSize(160, 120));
    EXPECT_EQ(searchJpegQuality(image, 1'000'000).encodings, 1);
    EXPECT_EQ(searchJpegQuality(image, 1'000'000).quality, 0.95);
    EXPECT_EQ(searchJpegQuality(image, 100).encodings, 2);
    EXPECT_FALSE(searchJpegQuality(image, 100).bytes.has_value());
    EXPECT_FALSE(searchJpegQuality(image, -5).bytes.has_value());
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(searchJpegQuality(image, 10'000, source.get_token()), OperationCancelled);
}

/// As another reader sees the file than the one that the decoder has; it checks every sum.
QImage readElsewhere(const QByteArray &file, QImage::Format format)
{
    QImage image = QImage::fromData(file, "PNG").convertToFormat(format);
    image.setColorSpace({});
    return image;
}

TEST(EncodePng, CutsLargeDataIntoChunksAndTakesPixelsOfAnyFormat)
{
    const QImage image = noise(QSize(701, 533));
    const QByteArray file = encodePng(image);
    EXPECT_GT(file.size(), 1'000'000);
    int chunks = 0;
    qsizetype at = 8;
    while (at + 12 <= file.size()) {
        const qsizetype length = qFromBigEndian<quint32>(file.constData() + at);
        const bool isData = file.mid(at + 4, 4) == "IDAT";
        EXPECT_TRUE(!isData || (length > 0 && length <= 262'144)) << length;
        chunks += isData ? 1 : 0;
        at += 12 + length;
    }
    EXPECT_EQ(at, file.size());
    EXPECT_GE(chunks, 4);
    EXPECT_EQ(readElsewhere(file, QImage::Format_RGB32), image);
    for (const QImage::Format format : {QImage::Format_RGB888, QImage::Format_RGBX64, QImage::Format_RGBX8888,
                                        QImage::Format_BGR888, QImage::Format_RGB32}) {
        EXPECT_EQ(encodePng(image.convertToFormat(format)), file) << format;
    }
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    EXPECT_EQ(readElsewhere(encodePng(grey), QImage::Format_RGB32),
              grey.convertToFormat(QImage::Format_RGB32));
    QImage clear = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < clear.height(); ++y) {
        for (int x = 0; x < clear.width(); x += 3) {
            clear.setPixel(x, y, (clear.pixel(x, y) & 0xffffff) | static_cast<QRgb>((x + y) % 255 + 1) << 24);
        }
    }
    EXPECT_EQ(readElsewhere(encodePng(clear), QImage::Format_ARGB32), clear);
    // Sizes at which a row or the whole is next to nothing.
    for (const QSize size : {QSize(1, 1), QSize(1, 40), QSize(5000, 1), QSize(3, 17)}) {
        const QImage small = noise(size);
        EXPECT_EQ(readElsewhere(encodePng(small), QImage::Format_RGB32), small);
    }
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(encodePng(image, source.get_token()), OperationCancelled);
    EXPECT_THROW(encodePng({}), std::bad_alloc);
}

TEST(EncodePng, IsLosslessForOpaqueAndTransparentImages)
{
    const QImage image = texture(QSize(301, 77));
    const QImage opaque = QImage::fromData(encodePng(image));
    EXPECT_EQ(opaque.format(), QImage::Format_RGB32);
    EXPECT_EQ(psnr(opaque, image), 99);
    EXPECT_EQ(encodePng(image).at(25), 2); // the colour type in the header: RGB

    QImage clear = image.convertToFormat(QImage::Format_ARGB32);
    for (int x = 0; x < 200; ++x) {
        clear.setPixel(x, 20, qRgba(200, 100, 50, x));
    }
    const QByteArray file = encodePng(clear.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    EXPECT_EQ(file.at(25), 6);
    const QImage back = QImage::fromData(file).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    EXPECT_GT(psnr(back, clear.convertToFormat(QImage::Format_ARGB32_Premultiplied)), 65);
    EXPECT_NEAR(qRed(QImage::fromData(file).pixel(150, 20)), 200, 2);
}

} // namespace
} // namespace tarnovel
