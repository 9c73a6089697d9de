#include <cstdlib>
#include <memory>
#include <new>

#include <spng.h>

#include "base/Cancellation.h"
#include "imaging/ImageEncoder.h"

namespace tarnovel {
namespace {

// Beyond this level a file gets a few parts in a hundred smaller and takes several times as long.
constexpr int compressionLevel = 1;

// The rendering intent that an sRGB chunk names for photographs.
constexpr int perceptualIntent = 0;

struct FreeContext {
    void operator()(spng_ctx *context) const { spng_ctx_free(context); }
};

void check(int failed)
{
    if (failed != 0) {
        throw std::bad_alloc();
    }
}

} // namespace

QByteArray encodePng(const QImage &image, const std::stop_token &stop)
{
    const bool alpha = image.hasAlphaChannel();
    const QImage::Format rowFormat = alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888;
    const std::unique_ptr<spng_ctx, FreeContext> context(spng_ctx_new(SPNG_CTX_ENCODER));
    if (!context || image.isNull()) {
        throw std::bad_alloc();
    }
    spng_ihdr header{};
    header.width = static_cast<uint32_t>(image.width());
    header.height = static_cast<uint32_t>(image.height());
    header.bit_depth = 8;
    header.color_type = alpha ? SPNG_COLOR_TYPE_TRUECOLOR_ALPHA : SPNG_COLOR_TYPE_TRUECOLOR;
    check(spng_set_ihdr(context.get(), &header));
    check(spng_set_srgb(context.get(), perceptualIntent));
    check(spng_set_option(context.get(), SPNG_ENCODE_TO_BUFFER, 1));
    check(spng_set_option(context.get(), SPNG_IMG_COMPRESSION_LEVEL, compressionLevel));
    check(spng_set_option(context.get(), SPNG_FILTER_CHOICE, SPNG_FILTER_CHOICE_SUB));
    check(spng_encode_image(context.get(), nullptr, 0, SPNG_FMT_PNG,
                            SPNG_ENCODE_PROGRESSIVE | SPNG_ENCODE_FINALIZE));
    const size_t rowBytes = static_cast<size_t>(image.width()) * (alpha ? 4 : 3);
    int failed = 0;
    for (int y = 0; y < image.height() && failed == 0; ++y) {
        throwIfCancelled(stop);
        // One row at a time: a second picture in another format would only be memory to fill.
        const QImage row(image.constScanLine(y), image.width(), 1, image.bytesPerLine(), image.format());
        failed = spng_encode_row(context.get(), row.convertToFormat(rowFormat).constBits(), rowBytes);
    }
    check(failed == SPNG_EOI ? 0 : failed);
    size_t size = 0;
    const std::unique_ptr<void, decltype(&std::free)> bytes(
        spng_get_png_buffer(context.get(), &size, &failed), &std::free);
    check(failed);
    return QByteArray(static_cast<const char *>(bytes.get()), static_cast<qsizetype>(size));
}

} // namespace tarnovel
