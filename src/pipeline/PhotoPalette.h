#pragma once

#include <QImage>
#include <QList>

#include "model/FrameSettings.h"

namespace tarnovel::PhotoPalette {

/// Up to three clearly different colours of the picture, most frequent first; none for a picture without
/// opaque pixels.
QList<Ink> extract(const QImage &image);

} // namespace tarnovel::PhotoPalette
