#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "imaging/ImageEncoder.h"
#include "imaging/JpegSizeSample.h"
#include "imaging/Pictures.h"
#include "imaging/QualityBisection.h"

namespace tarnovel {
namespace {

using namespace test;

/// The bisection as it is described, by the true size at every step.
std::optional<double> plainSearch(const std::map<int, qint64> &sizes, qint64 limit)
{
    const auto fits = [&](double quality) {
        return sizes.at(static_cast<int>(std::lround(quality * 100))) <= limit;
    };
    if (fits(0.95)) {
        return 0.95;
    }
    if (!fits(0.05)) {
        return std::nullopt;
    }
    double low = 0.05;
    double high = 0.95;
    for (int i = 0; i < 7; ++i) {
        const double mid = (low + high) / 2;
        (fits(mid) ? low : high) = mid;
    }
    return low;
}

/// A cheap stand-in for a picture: the sizes of its files, and how wrong a sample is about them.
struct Model {
    const char *name;
    qint64 pixels;
    /// Bytes at quality 50, how fast they grow, and by how much more from 90 on.
    double middle;
    double exponent;
    double fullColour;
    /// How far single sizes stray from the curve, and the guesses from the sizes: all alike, and each alone.
    double ripple;
    double bias;
    double noise;
    double statedError;
};

double chance(quint32 seed)
{
    seed = (seed ^ (seed >> 15)) * 0x2c1b3c6dU;
    seed = (seed ^ (seed >> 12)) * 0x297a2d39U;
    return static_cast<double>((seed ^ (seed >> 15)) & 0xffffU) / 32768.0 - 1;
}

TEST(QualityBisection, EndsWhereThePlainOneEndsForEveryKindOfPicture)
{
    const std::vector<Model> models = {
        {"a photo", 12'000'000, 1.1e6, 0.75, 1.4, 0, 0.012, 0.0015, 0.014},
        {"a grainy photo", 12'000'000, 4e6, 0.9, 1.9, 0.002, -0.015, 0.002, 0.01},
        {"hardly any colour", 11'000'000, 0.8e6, 0.7, 1.02, 0.0005, 0.02, 0.002, 0.02},
        {"sizes that fall", 8'000'000, 0.6e6, 0.3, 1.2, 0.05, 0.01, 0.002, 0.02},
        {"a smooth one", 12'000'000, 0.3e6, 0.2, 1.5, 0.004, 0.01, 0.003, 0.03},
        {"one size for many", 12'000'000, 0.2e6, 0.0, 1.0, 0, 0.0, 0.0, 0.03},
        {"a small photo", 1'500'000, 0.2e6, 0.8, 1.5, 0.002, 0.02, 0.008, 0.03},
        {"text on paper", 9'000'000, 0.3e6, 0.5, 1.3, 0.003, 0.4, 0.02, 0.2},
        {"a wrong sample", 9'000'000, 0.3e6, 0.5, 1.3, 0.003, -0.5, 0.0, 0.01},
        {"a tiny one", 40'000, 0.01e6, 0.6, 1.3, 0.02, 0.3, 0.1, 0.01},
    };
    int all = 0;
    for (const Model &model : models) {
        std::map<int, qint64> sizes;
        std::map<int, QualitySizes::Guess> guesses;
        for (int quality = 5; quality <= 95; ++quality) {
            const auto seed = static_cast<quint32>(quality) * 977U;
            const double step = quality < 50 ? 5000.0 / quality : 200.0 - 2 * quality;
            const double bytes = 1100 + model.middle * std::pow(100 / step, model.exponent) *
                                            (quality >= 90 ? model.fullColour : 1);
            sizes[quality] = std::llround(bytes * (1 + model.ripple * chance(seed)));
            guesses[quality] = {double(sizes[quality]) * (1 + model.bias + model.noise * chance(seed + 5)),
                                model.statedError};
        }
        const auto [least, most] =
            std::ranges::minmax_element(sizes, {}, [](const auto &each) { return each.second; });
        int encodings = 0;
        int limits = 0;
        for (double limit = double(least->second) * 0.7; limit < double(most->second) * 1.3;
             limit *= 1.0015) {
            const auto whole = static_cast<qint64>(limit);
            QualityBisection bisection({.encoded = [&](int quality) { return sizes.at(quality); },
                                        .guessed = [&](int quality) { return guesses.at(quality); },
                                        .pixels = model.pixels},
                                       whole);
            ASSERT_EQ(bisection.run(), plainSearch(sizes, whole)) << model.name << ' ' << whole;
            encodings += bisection.encodings();
            ++limits;
        }
        all += limits;
        if (std::abs(model.bias) < 0.1) {
            EXPECT_LT(encodings, 3.2 * limits) << model.name;
        }
    }
    EXPECT_GT(all, 10'000);
}

TEST(JpegSizeSample, CountsTheBitsThatTheCodecWrites)
{
    // Small enough for all of it to be in the sample.
    for (const QImage &image : {texture({320, 240}), texture({333, 127}), texture({64, 600})}) {
        JpegEncoder encoder(image);
        JpegSizeSample sample(encoder.image());
        for (const int quality : {5, 17, 50, 75, 89, 90, 95, 100}) {
            const QByteArray file = encoder.encode(quality / 100.0);
            const JpegSizeSample::Estimate estimate = sample.estimate(quality);
            // A row's first unit follows on the last of the row before, which a sample does not know.
            EXPECT_NEAR(estimate.bytes, double(file.size()), 0.004 * double(file.size()) + 12)
                << image.width() << ' ' << quality;
            EXPECT_EQ(estimate.error, 0);
        }
    }
}

TEST(JpegSizeSample, IsNearTheSizeOfALargePictureAndKnowsHowNear)
{
    const QImage image = texture({2400, 1800});
    JpegEncoder encoder(image);
    JpegSizeSample sample(encoder.image());
    for (const int quality : {10, 60, 89, 90, 95}) {
        const JpegSizeSample::Estimate estimate = sample.estimate(quality);
        const double size = double(encoder.encode(quality / 100.0).size());
        EXPECT_NEAR(estimate.bytes, size, 0.03 * size) << quality;
        EXPECT_GT(estimate.error, 0);
        EXPECT_LT(estimate.error, 0.04);
    }
    // All in one corner: chance decides how much of it a sample has.
    QImage sparse(2400, 1800, QImage::Format_RGB32);
    sparse.fill(Qt::white);
    for (int y = 0; y < 160; ++y) {
        std::copy_n(image.constScanLine(y), 4 * 160, sparse.scanLine(y));
    }
    EXPECT_GT(JpegSizeSample(sparse).estimate(60).error, 0.03);
}

} // namespace
} // namespace tarnovel
