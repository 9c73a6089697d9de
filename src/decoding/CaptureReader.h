#pragma once

#include <optional>

#include <QByteArray>

#include "imaging/CaptureMetadata.h"
#include "imaging/ImageHeader.h"

namespace Exiv2 {
class ExifData;
}

namespace tarnovel {

/// Starts the parser, so that nothing of it has to be opened later. Done by itself at the first reading.
void prepareParser();

/// What an EXIF block says. Never throws: damage reads as what is missing.
CaptureMetadata captureMetadata(const QByteArray &exif);
/// The same of a block that has been parsed.
CaptureMetadata captureMetadata(const Exiv2::ExifData &data);

/// What a parser finds in a PNG, WebP, HEIC or AVIF file that is in memory; none where there is no metadata,
/// or the parser gives the file up.
std::optional<CaptureMetadata> captureMetadataByParser(PictureFormat format, const QByteArray &file);

} // namespace tarnovel
