#include "pipeline/PlacedPhoto.h"

#include "imaging/Resampler.h"

namespace tarnovel {

namespace {

QImage resamplable(const QImage &image)
{
    return image.hasAlphaChannel() ? image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                   : image.convertToFormat(QImage::Format_RGB32);
}

} // namespace

PlacedRegion placedRegion(const PhotoPlacement &placement, QSize canvas)
{
    const QRectF &whole = placement.whole;
    const QRect pixels = (placement.shown & whole & QRectF({}, QSizeF(canvas))).toAlignedRect();
    if (whole.isEmpty() || pixels.isEmpty()) {
        return {};
    }
    return {pixels,
            {(pixels.x() - whole.x()) / whole.width(), (pixels.y() - whole.y()) / whole.height(),
             pixels.width() / whole.width(), pixels.height() / whole.height()}};
}

PhotoImage placedPhoto(const QImage &photo, const PhotoPlacement &placement, QSize canvas)
{
    const PlacedRegion region = placedRegion(placement, canvas);
    if (region.pixels.isEmpty() || photo.isNull()) {
        return {};
    }
    const QRectF source(region.extent.x() * photo.width(), region.extent.y() * photo.height(),
                        region.extent.width() * photo.width(), region.extent.height() * photo.height());
    return {resampled(resamplable(photo), source, region.pixels.size()), region.extent};
}

QImage coveringPicture(const QImage &picture, QSize canvas)
{
    if (picture.isNull() || canvas.isEmpty()) {
        return {};
    }
    const QSizeF cut = QSizeF(canvas).scaled(picture.size(), Qt::KeepAspectRatio);
    const QRectF region(QPointF((picture.width() - cut.width()) / 2, (picture.height() - cut.height()) / 2),
                        cut);
    return resampled(resamplable(picture), region, canvas);
}

QImage scaledPicture(const QImage &picture, QSize size)
{
    return picture.isNull() || size.isEmpty()
               ? QImage()
               : resampled(resamplable(picture), QRectF({}, QSizeF(picture.size())), size);
}

} // namespace tarnovel
