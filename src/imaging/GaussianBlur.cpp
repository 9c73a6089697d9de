#include <algorithm>
#include <array>
#include <cmath>
#include <new>

#include "imaging/BufferPool.h"
#include "imaging/Resampler.h"
#include "imaging/VipsRuntime.h"

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

QImage blurredDirectly(const QImage &image, double sigma)
{
    ensureVips();
    QByteArray pixels;
    const qsizetype rowBytes = qsizetype(image.width()) * 4;
    pixels.reserve(rowBytes * image.height());
    for (int y = 0; y < image.height(); ++y) {
        pixels.append(reinterpret_cast<const char *>(image.constScanLine(y)), rowBytes);
    }
    const VipsImagePtr source(vips_image_new_from_memory(pixels.constData(),
                                                         static_cast<size_t>(pixels.size()), image.width(),
                                                         image.height(), 4, VIPS_FORMAT_UCHAR));
    VipsImage *made = nullptr;
    if (!source || vips_gaussblur(source.get(), &made, sigma, "min_ampl", smallestAmplitude, "precision",
                                  VIPS_PRECISION_FLOAT, static_cast<void *>(nullptr)) != 0) {
        vips_error_clear();
        throw std::bad_alloc();
    }
    const VipsImagePtr blurred(made);
    size_t bytes = 0;
    const std::unique_ptr<void, GFree> memory(vips_image_write_to_memory(blurred.get(), &bytes));
    if (!memory || blurred->BandFmt != VIPS_FORMAT_FLOAT) {
        vips_error_clear();
        throw std::bad_alloc();
    }
    const bool alpha = image.hasAlphaChannel();
    QImage result = pooledImage(image.size(), deepFormat(image));
    for (int y = 0; y < result.height(); ++y) {
        auto *pixel = reinterpret_cast<uint16_t *>(result.scanLine(y));
        const float *exact = static_cast<const float *>(memory.get()) + y * rowBytes;
        for (int x = 0; x < result.width(); ++x, pixel += 4, exact += 4) {
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
