#include "imaging/ImageLimits.h"

#include <algorithm>
#include <cmath>

#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

constexpr qint64 mostPixels = 400'000'000;
constexpr int longestSide = 65'500;
constexpr int longestTargetSide = 32'000;

} // namespace

void checkPictureSize(QSize size)
{
    if (size.isEmpty()) {
        throw ImageError(ImageError::Cause::Damaged, "an empty picture");
    }
    if (std::max(size.width(), size.height()) > longestSide ||
        qint64(size.width()) * size.height() > mostPixels) {
        throw ImageError(ImageError::Cause::TooLarge, "too many pixels");
    }
}

void checkPicturePart(const PicturePart &part)
{
    const QRectF &region = part.region;
    const bool finite = std::isfinite(region.x()) && std::isfinite(region.y()) && region.width() > 0 &&
                        region.height() > 0 && std::isfinite(region.width()) &&
                        std::isfinite(region.height());
    if (!finite || part.size.isEmpty() ||
        std::max(part.size.width(), part.size.height()) > longestTargetSide) {
        throw ImageError(ImageError::Cause::TooLarge, "no such part of a picture");
    }
}

} // namespace tarnovel
