// What cameras wrote: readers of metadata never throw, whatever they are given.

#include <cmath>

#include "MemoryFile.h"
#include "codecs/Codecs.h"
#include "decoding/PhotoFile.h"
#include "imaging/ImageError.h"

using namespace tarnovel;

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    useCodecs();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count)
{
    const fuzz::MemoryFile file(bytes, count);
    CaptureMetadata read;
    try {
        read = PhotoFile(RegularFile(file.path())).metadata();
    } catch (const ImageError &) {
        return -1; // no picture
    }
    for (const std::optional<double> &value : {read.focalLengthMm, read.fNumber, read.exposureSeconds}) {
        if (value && !std::isfinite(*value)) {
            std::abort();
        }
    }
    const int orientation =
        exifOrientation(QByteArray(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(count)));
    if (orientation < 1 || orientation > 8) {
        std::abort();
    }
    return 0;
}
