#pragma once

#include <optional>

#include <QByteArray>

#include "imaging/CaptureMetadata.h"
#include "imaging/RegularFile.h"

namespace tarnovel {

/// A raw file as the camera itself shows it.
struct RawPhoto {
    /// The largest JPEG file in it.
    QByteArray picture;
    CaptureMetadata metadata;
    /// EXIF orientation of picture and photo, 1…8.
    int orientation = 1;
    /// The camera was set to Adobe RGB; a picture that says something of its own comes before this.
    bool isAdobeRgb = false;
};

/// Reads the headers and the picture of a raw file (NEF, CR2, CR3, ARW, DNG, RAF, ORF, RW2 and those made
/// like them), and leaves what the sensor saw alone; none for any other file. Throws an ImageError:
/// SmallPreview where no picture in it is 1,600 pixels long, Damaged where the headers cannot be read.
std::optional<RawPhoto> readRawPhoto(const RegularFile &file);

} // namespace tarnovel
