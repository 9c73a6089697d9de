#pragma once

#include <QSize>

namespace tarnovel {

/// Throws an ImageError: TooLarge above 400 megapixels or for a side above 65,500 pixels, Damaged when empty.
void checkPictureSize(QSize size);

} // namespace tarnovel
