#include "pipeline/PhotoPalette.h"

#include <algorithm>
#include <array>
#include <vector>

#include "imaging/Resampler.h"

namespace tarnovel::PhotoPalette {

namespace {

constexpr int side = 96;
constexpr int levels = 11;
constexpr int levelWidth = 24;
constexpr int leastAlpha = 200;
constexpr size_t mostColors = 3;

/// Nearer colours count as one; the distance weighs the channels by their share in luma.
constexpr double leastDistance = 0.018;

struct Bin {
    int key = 0;
    int count = 0;
    std::array<int, 3> sum = {};

    Ink color() const
    {
        const auto mean = [this](size_t channel) { return static_cast<double>(sum[channel]) / count / 255; };
        return {mean(0), mean(1), mean(2)};
    }
};

double distance(const Ink &a, const Ink &b)
{
    return 0.3 * (a.r - b.r) * (a.r - b.r) + 0.59 * (a.g - b.g) * (a.g - b.g) +
           0.11 * (a.b - b.b) * (a.b - b.b);
}

std::vector<Bin> countedBins(const QImage &small)
{
    std::vector<Bin> bins(levels * levels * levels);
    for (int y = 0; y < small.height(); ++y) {
        const auto *pixels = reinterpret_cast<const QRgb *>(small.constScanLine(y));
        for (int x = 0; x < small.width(); ++x) {
            const QRgb pixel = pixels[x];
            if (small.hasAlphaChannel() && qAlpha(pixel) <= leastAlpha) {
                continue;
            }
            const std::array<int, 3> channels = {qRed(pixel), qGreen(pixel), qBlue(pixel)};
            const int key = (channels[0] / levelWidth * levels + channels[1] / levelWidth) * levels +
                            channels[2] / levelWidth;
            Bin &bin = bins[static_cast<size_t>(key)];
            bin.key = key;
            ++bin.count;
            for (size_t i = 0; i < channels.size(); ++i) {
                bin.sum[i] += channels[i];
            }
        }
    }
    return bins;
}

} // namespace

QList<Ink> extract(const QImage &image)
{
    if (image.isNull()) {
        return {};
    }
    std::vector<Bin> bins = countedBins(resampled(image, image.rect(), {side, side}));
    std::erase_if(bins, [](const Bin &bin) { return bin.count == 0; });
    std::ranges::stable_sort(bins, std::ranges::greater(), &Bin::count);
    QList<Ink> colors;
    for (const Bin &bin : bins) {
        const Ink color = bin.color();
        if (std::ranges::all_of(
                colors, [&color](const Ink &chosen) { return distance(color, chosen) > leastDistance; })) {
            colors.append(color);
        }
        if (colors.size() == mostColors) {
            break;
        }
    }
    return colors;
}

} // namespace tarnovel::PhotoPalette
