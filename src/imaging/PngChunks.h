#pragma once

#include <stop_token>

#include <QByteArray>

#include "imaging/ImageFile.h"

namespace tarnovel {

/// What stands in the chunks of a PNG file beside its picture.
struct PngChunks {
    /// The EXIF block, a TIFF header and its directories; empty when there is none.
    QByteArray exif;
    /// Whether every text and profile is small enough (64 KiB, which inflate to at most a thousand times as
    /// much) for a parser that inflates them, and no other chunk but the pixels is over 16 MiB.
    bool textIsSmall = true;
};

/// Reads chunk headers, and the content of the EXIF chunk alone.
PngChunks readPngChunks(const ImageFile &file);

/// Throws an ImageError for a file with a chunk besides the pixels that is larger than any picture's.
void checkPngChunkSizes(const ImageFile &file);

/// Reads the whole file, a piece at a time. Throws an ImageError (Damaged) unless there is picture data, an
/// end chunk, and a right checksum in every chunk that the picture needs; and OperationCancelled.
void checkPngData(const ImageFile &file, const std::stop_token &stop);

} // namespace tarnovel
