#include "handwriting/InkMask.h"

#include <algorithm>
#include <cmath>

#include "handwriting/PaperGrain.h"

namespace tarnovel {

namespace {

/// Opacity of one layer of marker ink.
constexpr double markerOpacity = 0.5;

int multiplied(int a, int b)
{
    const int product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

} // namespace

/// A straight piece in device pixels, with what its nib makes of distances: in the nib's own space, turned
/// and stretched, the nib is a circle.
struct InkMask::Piece {
    float ax = 0;
    float ay = 0;
    float bx = 0;
    float by = 0;
    float fromRadius = 0;
    float toRadius = 0;
    float fromFlow = 1;
    float toFlow = 1;
    float cosine = 1;
    float sine = 0;
    float stretch = 1;
    float softness = 0;
};

InkMask::InkMask(const QRect &area) : m_area(area), m_bytes(area.size(), QImage::Format_Grayscale8)
{
    m_bytes.fill(0);
}

void InkMask::clear(const QRect &area)
{
    const QRect part = area & m_area;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        std::fill_n(row(y) + part.x() - m_area.x(), part.width(), uchar(0));
    }
}

InkMask InkMask::part(const QRect &area) const
{
    InkMask copy(area & m_area);
    for (int y = copy.m_area.top(); y <= copy.m_area.bottom(); ++y) {
        std::copy_n(row(y) + copy.m_area.x() - m_area.x(), copy.m_area.width(), copy.row(y));
    }
    return copy;
}

void InkMask::add(const InkPath &path, double scale)
{
    add(path.points, 0, path.points.size(), path.nib, scale);
}

void InkMask::add(const std::vector<InkPoint> &points, size_t first, size_t end, const Nib &nib, double scale)
{
    if (first < end && end == 1) {
        add(points[0], points[0], nib, scale);
    }
    for (size_t i = std::max<size_t>(first, 1); i < end; ++i) {
        add(points[i - 1], points[i], nib, scale);
    }
}

void InkMask::add(const InkPoint &from, const InkPoint &to, const Nib &nib, double scale)
{
    if (!devicePixels(swept(from, to), scale).intersects(m_area)) {
        return;
    }
    Piece piece;
    piece.cosine = static_cast<float>(std::cos(nib.angle));
    piece.sine = static_cast<float>(std::sin(nib.angle));
    piece.stretch = static_cast<float>(1 / nib.aspect);
    piece.softness = static_cast<float>(nib.softness);
    // A slanted piece fills little of its bounding box: it goes in short lengths.
    const QPointF way = (to.position - from.position) * scale;
    const double length = std::hypot(way.x(), way.y());
    const double step = std::max(12.0, 2 * scale * std::max(from.radius, to.radius));
    const int count = std::max(1, static_cast<int>(std::ceil(length / step)));
    const auto at = [count](double a, double b, int i) {
        return static_cast<float>(a + (b - a) * i / count);
    };
    for (int i = 0; i < count; ++i) {
        const QPointF a = from.position * scale;
        const QPointF b = to.position * scale;
        piece.ax = at(a.x(), b.x(), i);
        piece.ay = at(a.y(), b.y(), i);
        piece.bx = at(a.x(), b.x(), i + 1);
        piece.by = at(a.y(), b.y(), i + 1);
        piece.fromRadius = at(from.radius * scale, to.radius * scale, i);
        piece.toRadius = at(from.radius * scale, to.radius * scale, i + 1);
        piece.fromFlow = at(from.flow, to.flow, i);
        piece.toFlow = at(from.flow, to.flow, i + 1);
        fill(piece);
    }
}

void InkMask::fill(const Piece &piece)
{
    const float radius = std::max(piece.fromRadius, piece.toRadius);
    const float flat = 1 / piece.stretch;
    const float reachX = radius * std::hypot(piece.cosine, flat * piece.sine) + 1;
    const float reachY = radius * std::hypot(piece.sine, flat * piece.cosine) + 1;
    const int left =
        std::max(m_area.left(), static_cast<int>(std::floor(std::min(piece.ax, piece.bx) - reachX)));
    const int right =
        std::min(m_area.right(), static_cast<int>(std::ceil(std::max(piece.ax, piece.bx) + reachX)));
    const int top =
        std::max(m_area.top(), static_cast<int>(std::floor(std::min(piece.ay, piece.by) - reachY)));
    const int bottom =
        std::min(m_area.bottom(), static_cast<int>(std::ceil(std::max(piece.ay, piece.by) + reachY)));

    const float wayX = piece.cosine * (piece.bx - piece.ax) + piece.sine * (piece.by - piece.ay);
    const float wayY =
        (piece.cosine * (piece.by - piece.ay) - piece.sine * (piece.bx - piece.ax)) * piece.stretch;
    const float squared = wayX * wayX + wayY * wayY;
    const float inverse = squared > 0 ? 1 / squared : 0;
    const float widening = piece.toRadius - piece.fromRadius;
    const float rim = 0.5F * piece.stretch;
    const float beyond = (radius + rim) * (radius + rim);
    const float slenderest = std::min(piece.fromRadius, piece.toRadius) - rim;
    const float within = piece.softness > 0 || slenderest <= 0 ? -1 : slenderest * slenderest;

    for (int y = top; y <= bottom; ++y) {
        uchar *pixels = row(y) - m_area.x();
        const float dy = static_cast<float>(y) + 0.5F - piece.ay;
        for (int x = left; x <= right; ++x) {
            if (pixels[x] == 255) {
                continue;
            }
            const float dx = static_cast<float>(x) + 0.5F - piece.ax;
            const float px = piece.cosine * dx + piece.sine * dy;
            const float py = (piece.cosine * dy - piece.sine * dx) * piece.stretch;
            const float t = std::clamp((px * wayX + py * wayY) * inverse, 0.F, 1.F);
            const float qx = px - t * wayX;
            const float qy = py - t * wayY;
            const float nearness = qx * qx + qy * qy;
            if (nearness >= beyond) {
                continue;
            }
            const float flow = piece.fromFlow + t * (piece.toFlow - piece.fromFlow);
            float cover = flow;
            if (nearness > within) {
                // The nearest point's direction tells how many pixels a unit of the nib's space is there.
                const float apart = std::max(std::sqrt(nearness), 1e-6F);
                const float nx = nearness > 1e-9F ? qx / apart : -wayY * std::sqrt(inverse);
                const float ny = (nearness > 1e-9F ? qy / apart : wayX * std::sqrt(inverse)) * piece.stretch;
                const float perPixel = std::max(std::sqrt(nx * nx + ny * ny), 1.F);
                const float here = piece.fromRadius + t * widening;
                const float edge = std::clamp((here - apart) / perPixel + 0.5F, 0.F, 1.F);
                const float off = std::min(apart / std::max(here, 1e-6F), 1.F);
                cover *= std::min(edge, 2 * here / perPixel) * (1 - piece.softness * off * off);
            }
            pixels[x] = std::max(pixels[x], static_cast<uchar>(std::min(256 * cover, 255.F)));
        }
    }
}

QRect devicePixels(const QRectF &reference, double scale)
{
    if (reference.isNull()) {
        return {};
    }
    const QRectF device(reference.x() * scale, reference.y() * scale, reference.width() * scale,
                        reference.height() * scale);
    return device.toAlignedRect().adjusted(-1, -1, 1, 1);
}

void layInk(QImage &target, QPoint origin, const InkMask &mask, const QRect &clip, const InkStroke &stroke,
            double scale)
{
    const QRect part = clip & mask.area() & QRect(origin, target.size());
    const int red = static_cast<int>(std::lround(stroke.color.r * 255));
    const int green = static_cast<int>(std::lround(stroke.color.g * 255));
    const int blue = static_cast<int>(std::lround(stroke.color.b * 255));
    const int opacity = stroke.pen == InkPen::marker ? static_cast<int>(markerOpacity * 255) : 255;
    const PaperGrain &grain = PaperGrain::shared();
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const uchar *covers = mask.row(y) - mask.area().x();
        auto *pixels = reinterpret_cast<QRgb *>(target.scanLine(y - origin.y())) - origin.x();
        for (int x = part.left(); x <= part.right(); ++x) {
            if (covers[x] == 0) {
                continue;
            }
            int alpha = multiplied(covers[x], opacity);
            if (stroke.pen == InkPen::pencil) {
                alpha = grain.graphite(covers[x], (x + 0.5) / scale, (y + 0.5) / scale);
            }
            const int rest = 255 - alpha;
            const QRgb under = pixels[x];
            pixels[x] = qRgba(multiplied(red, alpha) + multiplied(qRed(under), rest),
                              multiplied(green, alpha) + multiplied(qGreen(under), rest),
                              multiplied(blue, alpha) + multiplied(qBlue(under), rest),
                              alpha + multiplied(qAlpha(under), rest));
        }
    }
}

} // namespace tarnovel
