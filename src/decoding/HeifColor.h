#pragma once

#include <optional>

#include "decoding/ImageFile.h"

namespace tarnovel {

/// The colours of a HEIC or AVIF picture as code points of ITU-T H.273.
struct CodedColor {
    int primaries = 2;
    int transfer = 2;
    bool operator==(const CodedColor &) const = default;
};

/// What the file's primary picture states in code points; none where it states nothing so, or the file is
/// damaged. Profiles are another matter: one that is there comes first.
std::optional<CodedColor> readCodedColor(const ImageFile &file);

} // namespace tarnovel
