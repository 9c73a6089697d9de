#pragma once

#include <QRectF>
#include <QSizeF>

/// The output canvas and the photo's place on it, in pixels; the origin is the top left corner.
namespace tarnovel::FrameGeometry {

/// `value` held to at most `high`, then to at least `low`; the lower bound wins when the two cross.
double held(double value, double low, double high);

/// The canvas for a fixed long edge, in whole pixels. `ratio` is width ÷ height, held to 0.2…5; an infinite
/// or undefined ratio counts as 1, such a long edge as 720. The long edge comes back exactly as given.
QSizeF canvas(double ratio, double longEdge);

enum class ShortEdge {
    /// 1080 pixels, with the ratio held to 0.2…5.
    Fixed1080,
    /// The photo's own, at most 1080, with the ratio as it is.
    PhotosOwn,
};

/// The canvas for a fixed short edge, in whole pixels. A ratio that is not positive and finite counts as 1.
QSizeF freeCanvas(double ratio, QSizeF source, ShortEdge shortEdge);

/// What places the photo on the canvas.
struct Placement {
    /// The photo's box as a fraction of the canvas; held to 0.1…1.
    double scale = 1;
    /// Offsets of the centre as fractions of the canvas; the photo goes until its margin touches the canvas's
    /// edge.
    double x = 0;
    double y = 0;
    bool lockX = false;
    bool lockY = false;
    /// Room for the border on every side, in pixels; never more than 4 % of the canvas's short edge.
    double borderPx = 0;
};

/// The photo fitted into its box without cropping. Empty at the origin when a side of photo or canvas is not
/// positive.
QRectF photoRect(QSizeF source, QSizeF canvas, const Placement &placement);

/// 0 when `value` is nearer to 0 than `threshold`, else the value itself.
double snap(double value, double threshold);

} // namespace tarnovel::FrameGeometry
