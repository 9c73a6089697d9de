#include "imaging/PngChunks.h"

#include <QtEndian>

namespace tarnovel {
namespace {

constexpr quint32 largestExif = 16 << 20;
constexpr quint32 largestText = 64 << 10;
// A file of 400 megapixels in pieces of 8 KiB has fewer; one made of empty chunks is given up here.
constexpr int mostChunks = 200'000;

} // namespace

PngChunks readPngChunks(const ImageFile &file)
{
    PngChunks found;
    qint64 at = 8;
    for (int i = 0; i < mostChunks; ++i) {
        const QByteArray head = file.read(at, 8);
        if (head.size() < 8) {
            return found;
        }
        const auto length = qFromBigEndian<quint32>(head.constData());
        const QByteArray type = head.mid(4);
        if (type == "eXIf" && length <= largestExif) {
            found.exif = file.read(at + 8, length);
            return found;
        }
        const bool text = type == "zTXt" || type == "iTXt" || type == "iCCP" || type == "tEXt";
        found.textIsSmall = found.textIsSmall && !(text && length > largestText);
        at += 12 + qint64(length);
    }
    found.textIsSmall = false;
    return found;
}

} // namespace tarnovel
