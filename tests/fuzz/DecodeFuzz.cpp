// Every decoder: a picture is read whole and in part, or refused with an ImageError.

#include <algorithm>

#include "MemoryFile.h"
#include "imaging/ImageDecoder.h"
#include "imaging/ImageError.h"

using namespace tarnovel;

namespace {

constexpr int longestSide = 64;
// Larger pictures take longer, and find nothing else.
constexpr qint64 mostPixels = 4'000'000;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count)
{
    const fuzz::MemoryFile file(bytes, count);
    try {
        const ImageHeader header = readImageHeader(file.path());
        const QSize size = header.uprightSize();
        if (qint64(size.width()) * size.height() > mostPixels) {
            return -1;
        }
        const QImage whole = decodeImage(file.path(), longestSide);
        if (whole.isNull() || std::max(whole.width(), whole.height()) > longestSide) {
            std::abort();
        }
        const QRectF part(size.width() * 0.3, size.height() * 0.2, size.width() * 0.5, size.height() * 0.9);
        if (decodeImageRegion(file.path(), part, {16, 24}).size() != QSize(16, 24)) {
            std::abort();
        }
    } catch (const ImageError &) {
    }
    return 0;
}
