#pragma once

#include "model/FrameSettings.h"

namespace tarnovel {

/// Where a signature lies, as fractions of the canvas: how wide it is, and its centre.
struct SignaturePlace {
    double width = 0;
    double x = 0;
    double y = 0;
};

/// Over the whole frame, as the studio saves it: its empty parts are transparent.
constexpr SignaturePlace signatureAsWritten{1, 0.5, 0.5};

/// The place that the settings give it, or that of records which say nothing.
SignaturePlace signaturePlace(const FrameSettings &settings);
void placeSignature(FrameSettings &settings, const SignaturePlace &place);

/// The settings with a signature that covers the whole frame; `aspect` is its width ÷ height.
FrameSettings withSignature(FrameSettings settings, const QString &file, double aspect);
/// The settings without any. The file stays in the library as long as the history needs it.
FrameSettings withoutSignature(FrameSettings settings);

} // namespace tarnovel
