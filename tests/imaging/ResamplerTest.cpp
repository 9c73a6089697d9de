#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/Pictures.h"
#include "imaging/Resampler.h"

namespace tarnovel {
namespace {

using namespace test;

QImage exactGaussian(const QImage &image, double sigma)
{
    const int radius = static_cast<int>(std::ceil(4 * sigma));
    QImage source = image;
    for (int pass = 0; pass < 2; ++pass) {
        QImage target(source.height(), source.width(),
                      source.format()); // transposed; two passes turn it back
        for (int y = 0; y < source.height(); ++y) {
            for (int x = 0; x < source.width(); ++x) {
                double sums[4] = {0, 0, 0, 0};
                double weights = 0;
                for (int k = -radius; k <= radius; ++k) {
                    const double weight = std::exp(-k * k / (2 * sigma * sigma));
                    const uchar *pixel =
                        source.constScanLine(y) + std::clamp(x + k, 0, source.width() - 1) * 4;
                    for (int channel = 0; channel < 4; ++channel) {
                        sums[channel] += weight * pixel[channel];
                    }
                    weights += weight;
                }
                for (int channel = 0; channel < 4; ++channel) {
                    target.scanLine(x)[y * 4 + channel] =
                        static_cast<uchar>(std::lround(sums[channel] / weights));
                }
            }
        }
        source = target;
    }
    return source;
}

QImage halfClear(QSize size)
{
    QImage image = texture(size).convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixel(x, y, (image.pixel(x, y) & 0xffffff) | (x / 9 % 2 == 0 ? 0xff000000 : 0x30000000));
        }
    }
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

TEST(Resampled, StaysNearTheReferenceUpAndDown)
{
    const QSize size(701, 377);
    for (const QImage &image : {texture(size), halfClear(size)}) {
        const std::vector<std::pair<QRectF, QSize>> cases = {
            {QRectF(0, 0, 701, 377), QSize(350, 188)},     {QRectF(10.3, 20.7, 300.5, 200.25), QSize(97, 61)},
            {QRectF(50.5, 60.5, 40, 30), QSize(333, 251)}, {QRectF(-20, 300, 100, 100), QSize(90, 91)},
            {QRectF(0, 0, 701, 377), QSize(7, 3)},         {QRectF(0, 0, 701, 377), QSize(1, 1)}};
        for (const auto &[region, target] : cases) {
            const QImage result = resampled(image, region, target);
            ASSERT_EQ(result.size(), target);
            EXPECT_EQ(result.format(), image.format());
            EXPECT_GT(psnr(result, lanczosReference(image, region, target)), 42)
                << region.x() << ' ' << target.width() << ' ' << image.hasAlphaChannel();
            for (int y = 0; y < target.height(); ++y) {
                for (int x = 0; x < target.width(); ++x) {
                    const QRgb pixel = reinterpret_cast<const QRgb *>(result.constScanLine(y))[x];
                    ASSERT_LE(std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)}), qAlpha(pixel));
                }
            }
        }
    }
}

TEST(Resampled, CopiesWhereNothingChangesSize)
{
    const QImage image = texture(QSize(90, 70));
    EXPECT_EQ(resampled(image, QRectF(0, 0, 90, 70), QSize(90, 70)), image);
    EXPECT_EQ(resampled(image, QRectF(11, 13, 40, 30), QSize(40, 30)), image.copy(11, 13, 40, 30));
}

TEST(Resampled, SurvivesRegionsOfEveryShape)
{
    const QImage image = quarters(QSize(30, 20));
    EXPECT_TRUE(resampled(image, QRectF(0, 0, 0, 10), QSize(5, 5)).isNull());
    EXPECT_TRUE(resampled(image, QRectF(0, 0, 10, 10), QSize(0, 5)).isNull());
    EXPECT_TRUE(resampled({}, QRectF(0, 0, 10, 10), QSize(5, 5)).isNull());
    EXPECT_EQ(resampled(image, QRectF(-1e9, -1e9, 2e9, 2e9), QSize(50, 50)).size(), QSize(50, 50));
    EXPECT_EQ(resampled(image, QRectF(3e9, 3e9, 5, 5), QSize(3, 3)).pixel(1, 1), 0xffffff00);
    EXPECT_EQ(resampled(image, QRectF(3, 3, 1e-9, 1e-9), QSize(20, 20)).size(), QSize(20, 20));
}

TEST(Resampled, EnlargesDeepPicturesWithoutSteps)
{
    // Ten pixels a level, in 64ths of one: in eight bits there would be nothing between two levels.
    QImage slope(80, 40, QImage::Format_RGBX64);
    const auto exact = [](double x) { return 100 + x / 10; };
    for (int y = 0; y < slope.height(); ++y) {
        for (int x = 0; x < slope.width(); ++x) {
            const auto level = static_cast<quint16>(std::lround(257 * exact(x + 0.5)));
            slope.setPixelColor(x, y, QColor::fromRgba64(level, 257 * 7, 65535));
        }
    }
    const QImage large = resampled(slope, QRectF(slope.rect()), QSize(1600, 800));
    ASSERT_EQ(large.format(), QImage::Format_RGB32);
    for (int left = 160; left < 1440; left += 8) { // away from the edges, beyond which the outermost goes on
        double sum = 0;
        for (int i = 0; i < 64; ++i) {
            const QRgb pixel = large.pixel(left + i % 8, 400 + i / 8);
            sum += qRed(pixel);
            EXPECT_EQ(qGreen(pixel), 7);
            EXPECT_EQ(qBlue(pixel), 255);
        }
        EXPECT_NEAR(sum / 64, exact((left + 4) / 20.0), 0.04) << left;
    }
    EXPECT_EQ(resampled(slope, QRectF(slope.rect()), QSize(1600, 800)), large);
    EXPECT_EQ(resampledDeep(slope, QRectF(slope.rect()), QSize(160, 80)).format(), QImage::Format_RGBX64);
}

TEST(Resampled, KeepsWhatIsTransparentInBothDepths)
{
    QImage clear(40, 30, QImage::Format_ARGB32_Premultiplied);
    clear.fill(qRgba(0, 0, 0, 0));
    for (int y = 0; y < 30; ++y) {
        for (int x = 20; x < 40; ++x) {
            clear.setPixel(x, y, qRgba(100, 50, 0, 100)); // red at full, green at half strength
        }
    }
    for (const QImage &source : {clear, clear.convertToFormat(QImage::Format_RGBA64_Premultiplied)}) {
        const QImage large = resampled(source, QRectF(0, 0, 40, 30), QSize(93, 70));
        ASSERT_EQ(large.format(), QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < 70; ++y) {
            const auto *row = reinterpret_cast<const QRgb *>(large.constScanLine(y));
            EXPECT_EQ(row[5], qRgba(0, 0, 0, 0));
            EXPECT_EQ(row[80], qRgba(100, 50, 0, 100));
            for (int x = 0; x < 93; ++x) {
                EXPECT_LE(qRed(row[x]), qAlpha(row[x]));
            }
        }
    }
}

QImage blurredInBytes(const QImage &image, double sigma)
{
    return gaussianBlurred(image, sigma).convertToFormat(image.format());
}

TEST(GaussianBlurred, IsTheGaussianWithClampedEdges)
{
    const QImage opaque = quarters(QSize(160, 120));
    const QImage clear = halfClear(QSize(160, 120));
    for (const double sigma : {0.8, 3.0, 11.0, 22.0}) {
        EXPECT_GT(psnr(blurredInBytes(opaque, sigma), exactGaussian(opaque, sigma)), 45) << sigma;
        EXPECT_GT(psnr(blurredInBytes(clear, sigma), exactGaussian(clear, sigma)), 45) << sigma;
    }
    const QImage large = quarters(QSize(640, 480));
    EXPECT_GT(psnr(blurredInBytes(large, 40), exactGaussian(large, 40)), 45);
    EXPECT_EQ(blurredInBytes(opaque, 0), opaque);
    QImage flat(50, 40, QImage::Format_RGB32);
    flat.fill(0xff406080);
    EXPECT_EQ(blurredInBytes(flat, 1e9), flat);
}

} // namespace
} // namespace tarnovel
