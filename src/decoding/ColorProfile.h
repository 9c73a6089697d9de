#pragma once

#include <QByteArray>
#include <QColorSpace>
#include <QImage>

namespace tarnovel {

/// The image, whose pixels are in the profile, in sRGB and in eight bits a channel: RGB32 or, with alpha,
/// ARGB32_Premultiplied. The profile is one for RGB, or one for grey whose levels stand in all channels; one
/// that is empty, unreadable or of another colour model leaves the colours as they are. Profiles that take
/// the library of all formats throw what formatLibrary() throws.
QImage convertedToSrgb(QImage image, const QByteArray &profile);

/// The image, whose pixels are in a standard colour space, in sRGB.
QImage convertedToSrgb(QImage image, QColorSpace::NamedColorSpace space);

} // namespace tarnovel
