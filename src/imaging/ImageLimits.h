#pragma once

#include <QSize>

#include "imaging/ImageHeader.h"

namespace tarnovel {

/// Throws an ImageError: TooLarge above 400 megapixels or for a side above 65,500 pixels, Damaged when empty.
void checkPictureSize(QSize size);

/// Throws an ImageError (TooLarge) for a part that is none, or that would become more than 32,000 pixels
/// long.
void checkPicturePart(const PicturePart &part);

} // namespace tarnovel
