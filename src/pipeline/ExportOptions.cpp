#include "pipeline/ExportOptions.h"

#include <algorithm>

#include "pipeline/PipelineError.h"
#include "render/FrameGeometry.h"

namespace tarnovel {

namespace {

constexpr int shortEdgeChoice = 1080;

/// About 96 MB of canvas.
constexpr double mostPixels = 24'000'000;
constexpr double longestCanvas = 12'000;

QSizeF wantedCanvas(const PhotoItem &item, const ExportOptions &options)
{
    const double ratio = item.settings.ratio(item.size());
    if (options.fullResolution) {
        return FrameGeometry::canvas(ratio, std::trunc(std::max(item.width, item.height)));
    }
    const int edge =
        std::clamp(options.longEdge, ExportOptions::shortestLongEdge, ExportOptions::longestLongEdge);
    if (edge == shortEdgeChoice) {
        const auto shortEdge = item.settings.preset == CanvasPreset::original
                                   ? FrameGeometry::ShortEdge::PhotosOwn
                                   : FrameGeometry::ShortEdge::Fixed1080;
        return FrameGeometry::freeCanvas(ratio, item.size(), shortEdge);
    }
    return FrameGeometry::canvas(ratio, edge);
}

} // namespace

QSize outputCanvas(const PhotoItem &item, const ExportOptions &options)
{
    const QSizeF canvas = wantedCanvas(item, options);
    if (canvas.width() * canvas.height() > mostPixels ||
        std::max(canvas.width(), canvas.height()) > longestCanvas) {
        throw PipelineFailure(PipelineError::TooLarge);
    }
    // A very narrow ratio may round an edge to nothing.
    return canvas.toSize().expandedTo({1, 1});
}

} // namespace tarnovel
