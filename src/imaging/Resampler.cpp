#include "imaging/Resampler.h"

#include "imaging/PlaneScaler.h"

namespace tarnovel {

namespace {

QImage scaledDeep(const QImage &image, const QRectF &region, QSize size, DeepPixels pixels)
{
    const bool hasAlpha = image.hasAlphaChannel();
    const QImage::Format format = hasAlpha ? QImage::Format_RGBA64_Premultiplied : QImage::Format_RGBX64;
    const QImage source = image.format() == format ? image : image.convertToFormat(format);
    PackedSource packed{source.constBits(), source.bytesPerLine(), source.size(), 8, {0, 2, 4, -1}, true};
    packed.offset[3] = hasAlpha ? 6 : -1;
    return scalePacked(packed, region, size, {}, pixels);
}

bool isEmpty(const QImage &image, const QRectF &region, QSize size)
{
    return image.isNull() || size.isEmpty() || !(region.width() > 0) || !(region.height() > 0);
}

} // namespace

QImage resampledDeep(const QImage &image, const QRectF &region, QSize size)
{
    return isEmpty(image, region, size) ? QImage() : scaledDeep(image, region, size, DeepPixels::Kept);
}

QImage resampled(const QImage &image, const QRectF &region, QSize size)
{
    if (isEmpty(image, region, size)) {
        return {};
    }
    if (image.depth() == 64) {
        return scaledDeep(image, region, size, DeepPixels::Dithered);
    }
    const bool hasAlpha = image.hasAlphaChannel();
    const QImage::Format format = hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    QImage source = image.format() == format ? image : image.convertToFormat(format);
    if (region == QRectF(source.rect()) && size == source.size()) {
        return source;
    }
    PackedSource packed{source.constBits(), source.bytesPerLine(), source.size(), 4, {2, 1, 0, -1}, false};
    packed.offset[3] = hasAlpha ? 3 : -1;
    return scalePacked(packed, region, size);
}

} // namespace tarnovel
