#include "decoding/FormatLibrary.h"

#include "imaging/ImageError.h"

namespace tarnovel {

namespace {

const FormatLibrary *known = nullptr;

} // namespace

void setFormatLibrary(const FormatLibrary &library)
{
    known = &library;
}

bool hasFormatLibrary()
{
    return known != nullptr;
}

const FormatLibrary &formatLibrary()
{
    if (known == nullptr) {
        throw ImageError(ImageError::Cause::NoDecoder, "is for the decoder of all formats");
    }
    return *known;
}

} // namespace tarnovel
