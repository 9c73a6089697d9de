#include "imaging/ImageLimits.h"

#include <algorithm>

#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

constexpr qint64 mostPixels = 400'000'000;
constexpr int longestSide = 65'500;

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

} // namespace tarnovel
