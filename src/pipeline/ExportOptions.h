#pragma once

#include <QSize>

#include "model/Session.h"

namespace tarnovel {

/// What an export makes of a photo.
struct ExportOptions {
    static constexpr int shortestLongEdge = 720;
    static constexpr int longestLongEdge = 8192;

    /// The long edge is the photo's own.
    bool fullResolution = false;
    /// Otherwise the canvas's long edge in pixels, held to those; 1080 stands for a short edge of 1080.
    int longEdge = 4096;
    bool png = false;
    /// Size limit of a JPEG in megabytes of 1,000,000 bytes; none when not positive.
    double maxMB = 0;
    bool operator==(const ExportOptions &) const = default;
};

/// The pixels of the exported picture. Throws PipelineFailure(TooLarge) above 24,000,000 pixels or an edge of
/// 12,000.
QSize outputCanvas(const PhotoItem &item, const ExportOptions &options);

} // namespace tarnovel
