#pragma once

#include "model/Session.h"

namespace tarnovel {

/// Gives `settings` the texts that the camera wrote about the photo: brand, model, exposure and date. Where
/// they stand and whether they show stays as it is.
void keepCameraTexts(FrameSettings &settings, const FrameSettings &photoSettings);

/// Numbers a film frame: the style's number, 1 without film options, plus `offset`. Other styles stay as they
/// are.
void numberFilmFrame(FrameSettings &settings, int offset);

/// The photo in a normalized copy of `style`, with its own camera texts; a film frame's number is moved on by
/// `offset`.
PhotoItem styled(const PhotoItem &item, const FrameSettings &style, int offset);

} // namespace tarnovel
