#pragma once

#include <optional>

#include <QString>

namespace tarnovel {

/// What the camera wrote about a photo, as stored: nothing is trimmed or formatted. Values that are not
/// finite numbers are absent; text that is not UTF-8 is read as Latin-1, and is cut at 1,000 characters.
struct CaptureMetadata {
    QString make;
    QString model;
    QString lens;
    std::optional<double> focalLengthMm;
    std::optional<double> fNumber;
    std::optional<double> exposureSeconds;
    std::optional<qint64> iso;
    /// "yyyy:MM:dd HH:mm:ss" in a well-formed file.
    QString originalDate;
};

} // namespace tarnovel
