// Every decoder: a picture is read whole and in part, or refused with an ImageError.

#include "MemoryFile.h"
#include "codecs/Codecs.h"
#include "decoding/PhotoFile.h"
#include "imaging/ImageError.h"

using namespace tarnovel;

namespace {

constexpr int longestSide = 64;
// Larger pictures take longer, and find nothing else.
constexpr qint64 mostPixels = 4'000'000;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    useCodecs();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count)
{
    const fuzz::MemoryFile file(bytes, count);
    try {
        PhotoFile photo{RegularFile(file.path())};
        const QSize size = photo.header().uprightSize();
        if (qint64(size.width()) * size.height() > mostPixels) {
            return -1;
        }
        const QRectF part(size.width() * 0.3, size.height() * 0.2, size.width() * 0.5, size.height() * 0.9);
        const QList<PicturePart> parts = {PicturePart::whole(size, longestSide), {part, {16, 24}}};
        const QList<QImage> images = photo.decode(parts);
        if (images.size() != 2 || images[0].size() != parts[0].size || images[1].size() != parts[1].size) {
            std::abort();
        }
    } catch (const ImageError &) {
    }
    return 0;
}
