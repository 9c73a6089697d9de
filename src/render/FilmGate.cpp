#include "render/FilmGate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <QPainter>

#include "render/DevicePatch.h"

namespace tarnovel {

namespace {

/// How far the gate's edge strays to either side, in millimetres.
constexpr double wobbleMm = 0.018;
constexpr int pointsPerSide = 48;

/// The whole device pixels that lie inside every outline that strays by `wobble`.
QRect pixelsInside(const QRectF &gate, double wobble)
{
    const QRectF safe = gate.adjusted(wobble, wobble, -wobble, -wobble);
    const QPoint first(static_cast<int>(std::ceil(safe.left())), static_cast<int>(std::ceil(safe.top())));
    const QSize size(static_cast<int>(std::floor(safe.right())) - first.x(),
                     static_cast<int>(std::floor(safe.bottom())) - first.y());
    return {first, size.expandedTo({0, 0})};
}

/// The gate's outline in device pixels, as the place of each side's edge along the pixels it crosses.
class GateEdges {
public:
    /// `outline` is a path of gate(), of a rectangle that stands straight on the device.
    explicit GateEdges(const QPainterPath &outline, const QRect &area)
        : m_area(area),
          m_top(edge(outline, 0, area.left(), area.width(), Along::X)),
          m_right(edge(outline, 1, area.top(), area.height(), Along::Y)),
          m_bottom(edge(outline, 2, area.left(), area.width(), Along::X)),
          m_left(edge(outline, 3, area.top(), area.height(), Along::Y))
    {
    }

    /// Leaves of a premultiplied patch what lies inside the outline. The edges stray by so little along a
    /// side that a pixel is cut straight.
    void cut(DevicePatch &patch) const
    {
        for (int row = 0; row < patch.image.height(); ++row) {
            auto *pixels = reinterpret_cast<QRgb *>(patch.image.scanLine(row));
            const auto y = static_cast<float>(patch.at.y() + row);
            const auto alongY = static_cast<std::size_t>(patch.at.y() + row - m_area.top());
            for (int column = 0; column < patch.image.width(); ++column) {
                const auto x = static_cast<float>(patch.at.x() + column);
                const auto alongX = static_cast<std::size_t>(patch.at.x() + column - m_area.left());
                const float covered =
                    std::clamp(y + 1 - m_top[alongX], 0.F, 1.F) * std::clamp(m_bottom[alongX] - y, 0.F, 1.F) *
                    std::clamp(x + 1 - m_left[alongY], 0.F, 1.F) * std::clamp(m_right[alongY] - x, 0.F, 1.F);
                if (covered < 1) {
                    pixels[column] = faded(pixels[column], qRound(covered * 256));
                }
            }
        }
    }

private:
    enum class Along { X, Y };

    static QRgb faded(QRgb pixel, int of256)
    {
        const auto component = [of256](int value) { return (value * of256 + 128) / 256; };
        return qRgba(component(qRed(pixel)), component(qGreen(pixel)), component(qBlue(pixel)),
                     component(qAlpha(pixel)));
    }

    /// The edge of one side at the middle of each of `count` pixels.
    static std::vector<float> edge(const QPainterPath &outline, int side, int first, int count, Along along)
    {
        std::vector<QPointF> knots;
        for (int i = side * pointsPerSide; i <= (side + 1) * pointsPerSide; ++i) {
            const QPointF knot = outline.elementAt(i);
            knots.push_back(along == Along::X ? knot : QPointF(knot.y(), knot.x()));
        }
        std::sort(knots.begin(), knots.end(), [](QPointF a, QPointF b) { return a.x() < b.x(); });
        std::vector<float> values;
        values.reserve(static_cast<std::size_t>(count));
        std::size_t next = 1;
        for (int i = 0; i < count; ++i) {
            const double at = first + i + 0.5;
            while (next + 1 < knots.size() && knots[next].x() < at) {
                ++next;
            }
            const QPointF &from = knots[next - 1];
            const QPointF &to = knots[next];
            const double part = std::clamp((at - from.x()) / (to.x() - from.x()), 0.0, 1.0);
            values.push_back(static_cast<float>(from.y() + (to.y() - from.y()) * part));
        }
        return values;
    }

    QRect m_area;
    std::vector<float> m_top, m_right, m_bottom, m_left;
};

} // namespace

QPainterPath filmGateOutline(const QRectF &rect, double unit)
{
    const std::array corners{rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()};
    QPainterPath path;
    for (int side = 0; side < 4; ++side) {
        const QPointF from = corners.at(static_cast<std::size_t>(side));
        const QPointF to = corners.at(static_cast<std::size_t>((side + 1) % 4));
        for (int j = 0; j < pointsPerSide; ++j) {
            const double push = std::sin(7 * side + 13 * j) * wobbleMm * unit;
            const QPointF across = side % 2 == 0 ? QPointF(0, push) : QPointF(push, 0);
            const QPointF point = from + (to - from) * j / pointsPerSide + across;
            side + j == 0 ? path.moveTo(point) : path.lineTo(point);
        }
    }
    path.closeSubpath();
    return path;
}

PhotoPlacement filmGatePlacement(const PhotoItem &item, const FilmLayout &layout)
{
    const QSizeF source(std::max(item.width, 1.0), std::max(item.height, 1.0));
    const double wobble = wobbleMm * layout.scale;
    return {CompositionRenderer::aspectFilled(source, layout.photoRect),
            layout.photoRect.adjusted(-wobble, -wobble, wobble, wobble)};
}

FilmGate::FilmGate(const QPainter &painter, const PhotoItem &item, const FilmLayout &layout,
                   const PhotoImage &photo)
    : m_photo(photo),
      m_placement(filmGatePlacement(item, layout)),
      m_outline(filmGateOutline(layout.photoRect, layout.scale)),
      m_transform(painter.deviceTransform()),
      m_upright(m_transform.type() <= QTransform::TxScale && m_transform.m11() > 0 && m_transform.m22() > 0)
{
    if (m_upright) {
        const double wobblePx = wobbleMm * layout.scale * std::max(m_transform.m11(), m_transform.m22());
        m_area = reachablePixels(painter, m_transform.mapRect(m_placement.shown));
        m_pixels = CompositionRenderer::alignedPixels(m_transform, photo, m_placement.whole);
        m_inside = pixelsInside(m_transform.mapRect(layout.photoRect), wobblePx) & m_area;
    }
}

QRect FilmGate::hidden() const
{
    const bool covers = m_pixels.contains(m_inside);
    return covers && !m_photo.image.hasAlphaChannel() ? m_inside : QRect();
}

/// The photo as far as the outline can stray. Where the photo just fills the gate it has nothing behind an
/// edge that strays outwards: its rim is stretched to there.
void FilmGate::fill(QPainter &painter) const
{
    const QRectF &whole = m_placement.whole;
    // All the pixels that the outline touches: it decides how much of each is seen.
    const QRectF reach =
        m_upright
            ? m_transform.inverted().mapRect(QRectF(m_transform.mapRect(m_placement.shown).toAlignedRect()))
            : m_placement.shown;
    if (!whole.contains(reach) && !m_photo.image.hasAlphaChannel()) {
        CompositionRenderer::drawPhoto(painter, m_photo,
                                       {CompositionRenderer::aspectFilled(whole.size(), reach), reach});
    }
    CompositionRenderer::drawPhoto(painter, m_photo, {whole, reach});
}

/// The photo's pixels one to one, the outermost repeated beyond it.
void FilmGate::copyPixels(DevicePatch &patch) const
{
    const QImage &image = m_photo.image;
    const QRgb opaque = image.format() == QImage::Format_RGB32 ? qRgba(0, 0, 0, 255) : 0;
    for (int row = 0; row < patch.image.height(); ++row) {
        const int y = std::clamp(patch.at.y() + row - m_pixels.top(), 0, image.height() - 1);
        const auto *source = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        auto *goal = reinterpret_cast<QRgb *>(patch.image.scanLine(row));
        for (int column = 0; column < patch.image.width(); ++column) {
            const int x = std::clamp(patch.at.x() + column - m_pixels.left(), 0, image.width() - 1);
            goal[column] = source[x] | opaque;
        }
    }
}

DevicePatch FilmGate::band(const QRect &area) const
{
    DevicePatch patch{area.topLeft(), QImage(area.size(), QImage::Format_ARGB32_Premultiplied)};
    const QImage::Format format = m_photo.image.format();
    if (!m_pixels.isEmpty() &&
        (format == QImage::Format_RGB32 || format == QImage::Format_ARGB32_Premultiplied)) {
        copyPixels(patch);
        return patch;
    }
    patch.image.fill(Qt::transparent);
    QPainter painter(&patch.image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setTransform(m_transform * QTransform::fromTranslate(-area.left(), -area.top()));
    fill(painter);
    return patch;
}

void FilmGate::draw(QPainter &painter) const
{
    if (m_photo.image.isNull()) {
        return;
    }
    if (!m_upright) {
        painter.save();
        painter.setClipPath(m_outline, Qt::IntersectClip);
        fill(painter);
        painter.restore();
        return;
    }
    if (m_area.isEmpty()) {
        return;
    }
    const QRectF inside = m_inside.isEmpty() ? QRectF(m_area.topLeft(), QSizeF(0, 0)) : QRectF(m_inside);
    CompositionRenderer::drawPhoto(painter, m_photo,
                                   {m_placement.whole, m_transform.inverted().mapRect(inside)});
    const GateEdges edges(m_transform.map(m_outline), m_area);
    for (const QRectF &area : bandsAround(inside, QRectF(m_area))) {
        if (!area.isEmpty()) {
            DevicePatch patch = band(area.toRect());
            edges.cut(patch);
            patch.draw(painter);
        }
    }
}

} // namespace tarnovel
