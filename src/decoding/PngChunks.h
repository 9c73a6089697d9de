#pragma once

#include <stop_token>

#include <QByteArray>

#include "decoding/ImageFile.h"

namespace tarnovel {

/// What stands in the chunks of a PNG file beside its picture.
struct PngChunks {
    /// The EXIF block, a TIFF header and its directories; empty when there is none.
    QByteArray exif;
    /// A PNG file of the header and the texts alone, for a parser that inflates them; empty where a text is
    /// over 64 KiB, which may inflate to a thousand times as much, or all together are over 4 MiB.
    QByteArray texts;
};

/// Reads chunk headers, and the content of the chunks that it is about.
PngChunks readPngChunks(const ImageFile &file);

/// Throws an ImageError for a file with a chunk besides the pixels that is larger than any picture's.
void checkPngChunkSizes(const ImageFile &file);

/// Reads the whole file, a piece at a time. Throws an ImageError (Damaged) unless there is picture data, an
/// end chunk, and a right checksum in every chunk that the picture needs; and OperationCancelled.
void checkPngData(const ImageFile &file, const std::stop_token &stop);

} // namespace tarnovel
