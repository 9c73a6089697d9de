#include "render/FrameGeometry.h"

#include <algorithm>
#include <cmath>

#include "model/FrameSettings.h"

namespace tarnovel::FrameGeometry {

namespace {

constexpr double shortEdgeOfFeeds = 1080;
constexpr double largestMargin = 0.04;

} // namespace

double held(double value, double low, double high)
{
    return std::max(std::min(value, high), low);
}

QSizeF canvas(double ratio, double longEdge)
{
    const double r = std::isfinite(ratio) ? FrameSettings::heldRatio(ratio) : 1;
    const double edge = std::isfinite(longEdge) ? std::max(longEdge, 1.0) : 720;
    return r >= 1 ? QSizeF(edge, std::round(edge / r)) : QSizeF(std::round(edge * r), edge);
}

QSizeF freeCanvas(double ratio, QSizeF source, ShortEdge shortEdge)
{
    double r = std::isfinite(ratio) && ratio > 0 ? ratio : 1;
    double edge = shortEdgeOfFeeds;
    if (shortEdge == ShortEdge::PhotosOwn) {
        edge = std::clamp(std::min(source.width(), source.height()), 1.0, shortEdgeOfFeeds);
    } else {
        r = FrameSettings::heldRatio(r);
    }
    return r < 1 ? QSizeF(edge, std::round(edge / r)) : QSizeF(std::round(edge * r), edge);
}

QRectF photoRect(QSizeF source, QSizeF canvas, const Placement &placement)
{
    const double width = canvas.width();
    const double height = canvas.height();
    if (!(source.width() > 0) || !(source.height() > 0) || !(width > 0) || !(height > 0)) {
        return {};
    }
    const double margin = held(placement.borderPx, 0, largestMargin * std::min(width, height));
    const double scale = std::clamp(placement.scale, 0.1, 1.0);
    const double boxWidth = std::max(scale * width - 2 * margin, 1.0);
    const double boxHeight = std::max(scale * height - 2 * margin, 1.0);
    const double fit = std::min(boxWidth / source.width(), boxHeight / source.height());
    const QSizeF photo = source * fit;
    const double slackX = std::max(0.0, (width - photo.width()) / 2 - margin);
    const double slackY = std::max(0.0, (height - photo.height()) / 2 - margin);
    const double offsetX = placement.lockX ? 0 : std::clamp(width * placement.x, -slackX, slackX);
    const double offsetY = placement.lockY ? 0 : std::clamp(height * placement.y, -slackY, slackY);
    return {width / 2 + offsetX - photo.width() / 2, height / 2 + offsetY - photo.height() / 2, photo.width(),
            photo.height()};
}

double snap(double value, double threshold)
{
    return std::abs(value) < threshold ? 0 : value;
}

} // namespace tarnovel::FrameGeometry
