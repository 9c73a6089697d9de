#pragma once

#include <QByteArray>
#include <QImage>

namespace tarnovel {

/// The image, whose pixels are in the RGB profile, in sRGB. A profile that is empty, unreadable or of another
/// colour model leaves the pixels as they are.
QImage convertedToSrgb(QImage image, const QByteArray &profile);

} // namespace tarnovel
