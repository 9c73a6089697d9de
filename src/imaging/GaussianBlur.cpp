#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "imaging/BufferPool.h"
#include "imaging/Resampler.h"

namespace tarnovel {
namespace {

// A wider blur loses nothing by being done on a smaller picture.
constexpr double widestDirectSigma = 8;
constexpr double smallestSigma = 0.15;
constexpr double widestSigma = 1500;
// A side reduced below this would be rounded to a whole number too coarsely.
constexpr int smallestReducedSide = 100;
// Where the kernel ends, in parts of its centre: with a larger part the tails that are missing show as a rim.
constexpr double smallestAmplitude = 0.01;

QImage::Format deepFormat(const QImage &image)
{
    return image.hasAlphaChannel() ? QImage::Format_RGBA64_Premultiplied : QImage::Format_RGBX64;
}

uint16_t deepLevel(float level)
{
    return static_cast<uint16_t>(std::clamp(level * 257 + 0.5F, 0.0F, 65535.0F));
}

/// The weights from the centre outwards.
std::vector<float> halfKernel(double sigma)
{
    std::vector<float> weights;
    double sum = 0;
    for (int x = 0;; ++x) {
        const double weight = std::exp(-double(x) * x / (2 * sigma * sigma));
        if (x > 0 && weight < smallestAmplitude) {
            break;
        }
        weights.push_back(static_cast<float>(weight));
        sum += x == 0 ? weight : 2 * weight;
    }
    for (float &weight : weights) {
        weight = static_cast<float>(weight / sum);
    }
    return weights;
}

/// Pixels of four channels: blue, green, red and alpha.
using Row = std::vector<float>;
constexpr qsizetype channels = 4;

void addWeighted(Row &sum, const float *row, float weight)
{
    for (size_t i = 0; i < sum.size(); ++i) {
        sum[i] += weight * row[i];
    }
}

/// A row of the image blurred along itself, its edge pixels going on.
Row blurredRow(const uchar *pixels, int width, const std::vector<float> &kernel)
{
    const auto reach = static_cast<qsizetype>(kernel.size()) - 1;
    Row wide(static_cast<size_t>((width + 2 * reach) * channels));
    for (qsizetype i = 0; i < std::ssize(wide); ++i) {
        const qsizetype x = std::clamp<qsizetype>(i / channels - reach, 0, width - 1);
        wide[static_cast<size_t>(i)] = pixels[x * channels + i % channels];
    }
    Row sum(static_cast<size_t>(width * channels), 0);
    for (qsizetype x = -reach; x <= reach; ++x) {
        addWeighted(sum, wide.data() + (reach + x) * channels, kernel[static_cast<size_t>(std::abs(x))]);
    }
    return sum;
}

QImage blurredDirectly(const QImage &image, double sigma)
{
    const std::vector<float> kernel = halfKernel(sigma);
    const auto reach = static_cast<int>(kernel.size()) - 1;
    std::vector<Row> rows;
    rows.reserve(static_cast<size_t>(image.height()));
    for (int y = 0; y < image.height(); ++y) {
        rows.push_back(blurredRow(image.constScanLine(y), image.width(), kernel));
    }
    const bool alpha = image.hasAlphaChannel();
    QImage result = pooledImage(image.size(), deepFormat(image));
    Row sum(rows.front().size());
    for (int y = 0; y < result.height(); ++y) {
        std::fill(sum.begin(), sum.end(), 0.0F);
        for (int dy = -reach; dy <= reach; ++dy) {
            const auto from = static_cast<size_t>(std::clamp(y + dy, 0, image.height() - 1));
            addWeighted(sum, rows[from].data(), kernel[static_cast<size_t>(std::abs(dy))]);
        }
        auto *pixel = reinterpret_cast<uint16_t *>(result.scanLine(y));
        const float *exact = sum.data();
        for (int x = 0; x < result.width(); ++x, pixel += channels, exact += channels) {
            constexpr std::array<int, 4> place = {2, 1, 0, 3}; // of red, green, blue and alpha
            pixel[3] = alpha ? deepLevel(exact[3]) : 0xffff;
            for (size_t channel = 0; channel < 3; ++channel) {
                pixel[channel] = std::min(deepLevel(exact[place[channel]]), pixel[3]);
            }
        }
    }
    return result;
}

} // namespace

QImage gaussianBlurred(const QImage &image, double sigma)
{
    const QImage::Format format =
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    QImage source = image.format() == format ? image : image.convertToFormat(format);
    if (source.isNull() || !(sigma >= smallestSigma)) {
        return source.convertToFormat(deepFormat(source));
    }
    // Beyond this the picture is one colour in all but name, and the kernel longer than the library takes.
    const double held = std::min({sigma, 4.0 * std::max(source.width(), source.height()) + 1, widestSigma});
    const double factor = std::min(held / (widestDirectSigma / 2),
                                   std::min(source.width(), source.height()) / double(smallestReducedSide));
    if (held <= widestDirectSigma || factor <= 1) {
        return blurredDirectly(source, held);
    }
    const QSize small(std::max(1, static_cast<int>(std::lround(source.width() / factor))),
                      std::max(1, static_cast<int>(std::lround(source.height() / factor))));
    const QImage less = blurredDirectly(resampled(source, QRectF(source.rect()), small), held / factor);
    return resampledDeep(less, QRectF(less.rect()), source.size());
}

} // namespace tarnovel
