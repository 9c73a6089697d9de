#pragma once

#include <QByteArray>

namespace tarnovel {

/// An ICC profile of sRGB (IEC 61966-2-1) in the least room: version 4, its curve as a formula. About half a
/// kilobyte; the same bytes at each call.
QByteArray srgbProfile();

} // namespace tarnovel
