#include "imaging/Resampler.h"

#include "imaging/PlaneScaler.h"

namespace tarnovel {

QImage resampled(const QImage &image, const QRectF &region, QSize size)
{
    const bool hasAlpha = image.hasAlphaChannel();
    const QImage::Format format = hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    if (image.isNull() || size.isEmpty() || !(region.width() > 0) || !(region.height() > 0)) {
        return {};
    }
    QImage source = image.format() == format ? image : image.convertToFormat(format);
    if (region == QRectF(source.rect()) && size == source.size()) {
        return source;
    }
    PackedSource packed{source.constBits(), source.bytesPerLine(), source.size(), 4, {2, 1, 0, -1}};
    packed.offset[3] = hasAlpha ? 3 : -1;
    return scalePacked(packed, region, size);
}

} // namespace tarnovel
