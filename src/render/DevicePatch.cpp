#include "render/DevicePatch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <QPaintEngine>
#include <QPainter>

namespace tarnovel {

namespace {

/// `color`, not premultiplied, at an opacity of its own.
QRgb premultiplied(const QColor &color, double alpha)
{
    const auto component = [alpha](float part) { return static_cast<int>(std::lround(255 * part * alpha)); };
    return qRgba(component(color.redF()), component(color.greenF()), component(color.blueF()),
                 static_cast<int>(std::lround(255 * alpha)));
}

/// How much of a pixel lies inside an edge at this signed distance from its middle, outside positive.
float coverage(float distance)
{
    return std::clamp(0.5F - distance, 0.F, 1.F);
}

/// Works out single pixels of a rounded rectangle with a rim.
class RimmedPixels {
public:
    explicit RimmedPixels(const RimmedRect &shape)
        : m_centreX(static_cast<float>(shape.rect.center().x())),
          m_centreY(static_cast<float>(shape.rect.center().y())),
          m_radius(static_cast<float>(shape.radius)),
          m_straightX(static_cast<float>(shape.rect.width() / 2) - m_radius),
          m_straightY(static_cast<float>(shape.rect.height() / 2) - m_radius),
          m_halfRim(static_cast<float>(shape.rimWidth / 2)),
          m_rimAlpha(shape.rim.alphaF()),
          m_fill(components(shape.fill)),
          m_rim(components(shape.rim)),
          m_opaqueFill(premultiplied(shape.fill, 1))
    {
    }

    /// The rim over the fill in a pixel this far beyond the straight parts of the edges, as the colour and
    /// opacity of both together.
    QRgb at(float beyondX, float beyondY) const
    {
        const float inside = std::sqrt(beyondX * beyondX + beyondY * beyondY) - m_radius;
        const float rim = (coverage(inside - m_halfRim) - coverage(inside + m_halfRim)) * m_rimAlpha;
        const float fill = coverage(inside) * (1 - rim);
        const auto component = [fill, rim](float under, float over) {
            return qRound(over * rim + under * fill);
        };
        return qRgba(component(m_fill[0], m_rim[0]), component(m_fill[1], m_rim[1]),
                     component(m_fill[2], m_rim[2]), component(255, 255));
    }

    DevicePatch patch(const QRect &area) const
    {
        DevicePatch made{area.topLeft(), QImage(area.size(), QImage::Format_ARGB32_Premultiplied)};
        float above = 0;
        for (int row = 0; row < area.height(); ++row) {
            const float beyondY = std::max(
                std::abs(static_cast<float>(area.top() + row) + 0.5F - m_centreY) - m_straightY, 0.F);
            auto *pixels = reinterpret_cast<QRgb *>(made.image.scanLine(row));
            if (row > 0 && beyondY == 0 && above == 0) {
                // Between the corners every row is the same.
                std::copy_n(reinterpret_cast<const QRgb *>(made.image.constScanLine(row - 1)), area.width(),
                            pixels);
            } else {
                setRow(pixels, area, beyondY);
            }
            above = beyondY;
        }
        return made;
    }

private:
    /// Half the chord of a circle at this distance from its middle; less than nothing beyond it.
    static float chord(float radius, float distance)
    {
        return radius > distance ? std::sqrt(radius * radius - distance * distance) : -radius;
    }

    /// Only the pixels on the edge are worked out: farther out is nothing, farther in is nothing but fill.
    void setRow(QRgb *pixels, const QRect &area, float beyondY) const
    {
        const auto column = [this, &area](float fromCentre) {
            const float first = std::ceil(m_centreX + fromCentre - 0.5F) - static_cast<float>(area.left());
            return static_cast<int>(std::clamp(first, 0.F, static_cast<float>(area.width())));
        };
        const float outer = m_straightX + chord(m_radius + m_halfRim + 0.5F, beyondY);
        const float inner = m_straightX + chord(m_radius - m_halfRim - 0.5F, beyondY);
        const bool filled = m_radius - m_halfRim - 0.5F > beyondY && inner > 0;
        const std::array ends{0,
                              column(-outer),
                              filled ? column(-inner) : column(outer),
                              filled ? column(inner) : column(outer),
                              column(outer),
                              area.width()};
        std::fill(pixels + ends[0], pixels + ends[1], 0);
        setEdge(pixels, area, {ends[1], ends[2]}, beyondY);
        std::fill(pixels + ends[2], pixels + ends[3], m_opaqueFill);
        setEdge(pixels, area, {ends[3], ends[4]}, beyondY);
        std::fill(pixels + ends[4], pixels + ends[5], 0);
    }

    void setEdge(QRgb *pixels, const QRect &area, std::pair<int, int> columns, float beyondY) const
    {
        const QRgb between = at(0, beyondY);
        for (int i = columns.first; i < columns.second; ++i) {
            const float middle = static_cast<float>(area.left() + i) + 0.5F;
            const float beyondX = std::abs(middle - m_centreX) - m_straightX;
            pixels[i] = beyondX > 0 ? at(beyondX, beyondY) : between;
        }
    }

    static std::array<float, 3> components(const QColor &color)
    {
        return {255 * color.redF(), 255 * color.greenF(), 255 * color.blueF()};
    }

    float m_centreX, m_centreY, m_radius, m_straightX, m_straightY, m_halfRim, m_rimAlpha;
    std::array<float, 3> m_fill, m_rim;
    QRgb m_opaqueFill;
};

} // namespace

void DevicePatch::draw(QPainter &painter) const
{
    if (image.isNull()) {
        return;
    }
    painter.save();
    painter.setTransform(painter.deviceTransform().inverted() * painter.transform());
    painter.drawImage(at, image);
    painter.restore();
}

bool isUpright(const QTransform &transform)
{
    return transform.type() <= QTransform::TxScale;
}

void drawPicture(QPainter &painter, const QRectF &rect, const QImage &picture)
{
    const QTransform device = painter.deviceTransform();
    const QRectF pixels = device.mapRect(rect);
    const bool fits = isUpright(device) && std::abs(pixels.width() - picture.width()) < 1 &&
                      std::abs(pixels.height() - picture.height()) < 1;
    if (!fits) {
        painter.drawImage(rect, picture);
        return;
    }
    painter.save();
    painter.setTransform(device.inverted() * painter.transform());
    painter.drawImage(QPoint(qRound(pixels.left()), qRound(pixels.top())), picture);
    painter.restore();
}

std::array<QRectF, 4> bandsAround(const QRectF &inner, const QRectF &outer)
{
    return {QRectF(outer.topLeft(), QPointF(outer.right(), inner.top())),
            QRectF(QPointF(outer.left(), inner.bottom()), outer.bottomRight()),
            QRectF(QPointF(outer.left(), inner.top()), inner.bottomLeft()),
            QRectF(inner.topRight(), QPointF(outer.right(), inner.bottom()))};
}

QRect reachablePixels(const QPainter &painter, const QRectF &device)
{
    // The picture in the end painted on: a widget's own size is not in pixels, nor from its window's corner.
    const QPaintDevice *target = painter.paintEngine()->paintDevice();
    QRectF seen = device & QRectF(0, 0, target->width(), target->height());
    if (painter.hasClipping()) {
        seen &= painter.deviceTransform().mapRect(painter.clipBoundingRect());
    }
    return seen.isEmpty() ? QRect() : seen.toAlignedRect();
}

void drawRimmedRect(QPainter &painter, const RimmedRect &shape)
{
    const double reach = shape.rimWidth / 2 + 1;
    if (shape.radius < reach) {
        // Too small for its parts to be told apart.
        painter.save();
        painter.setTransform(painter.deviceTransform().inverted() * painter.transform());
        painter.setBrush(shape.fill);
        painter.setPen(QPen(shape.rim, shape.rimWidth));
        painter.drawRoundedRect(shape.rect, shape.radius, shape.radius);
        painter.restore();
        return;
    }
    const QRect area = shape.rect.adjusted(-reach, -reach, reach, reach).toAlignedRect();
    const int corner = static_cast<int>(std::ceil(2 * reach + shape.radius));
    const int edge = static_cast<int>(std::ceil(2 * reach));
    const RimmedPixels pixels(shape);
    if (area.width() <= 2 * edge || area.height() <= 2 * corner) {
        pixels.patch(area).draw(painter);
        return;
    }
    // Inside the edges there is nothing but fill.
    const QRect inside = area.adjusted(edge, corner, -edge, -corner);
    for (const QRectF &band : bandsAround(QRectF(inside), QRectF(area))) {
        pixels.patch(band.toRect()).draw(painter);
    }
    painter.save();
    painter.setTransform(painter.deviceTransform().inverted() * painter.transform());
    painter.fillRect(inside, shape.fill);
    painter.restore();
}

DevicePatch boxPatch(const QPainter &painter, const QRectF &box, const QColor &color)
{
    const QRect area = reachablePixels(painter, box);
    if (area.isEmpty()) {
        return {};
    }
    DevicePatch patch{area.topLeft(), QImage(area.size(), QImage::Format_ARGB32_Premultiplied)};
    for (int row = 0; row < area.height(); ++row) {
        const double top = area.top() + row;
        const double covered = std::min(box.bottom(), top + 1) - std::max(box.top(), top);
        auto *pixels = reinterpret_cast<QRgb *>(patch.image.scanLine(row));
        for (int column = 0; column < area.width(); ++column) {
            const double left = area.left() + column;
            const double part = covered * (std::min(box.right(), left + 1) - std::max(box.left(), left));
            pixels[column] = premultiplied(color, color.alphaF() * std::max(part, 0.0));
        }
    }
    return patch;
}

DevicePatch glowingPatch(const QPainter &painter, const QPainterPath &path, const QColor &print,
                         double glowAlpha)
{
    const QRect area = reachablePixels(painter, path.boundingRect().adjusted(-1, -1, 1, 1));
    if (area.isEmpty()) {
        return {};
    }
    DevicePatch patch{area.topLeft(), QImage(area.size(), QImage::Format_ARGB32_Premultiplied)};
    patch.image.fill(Qt::transparent);
    QPainter maskPainter(&patch.image);
    maskPainter.setRenderHint(QPainter::Antialiasing);
    maskPainter.translate(-area.topLeft());
    maskPainter.fillPath(path, Qt::black);
    maskPainter.end();

    std::array<QRgb, 256> layered{};
    for (std::size_t i = 0; i < layered.size(); ++i) {
        const double covered = static_cast<double>(i) / 255;
        const double own = covered * print.alphaF();
        layered.at(i) = premultiplied(print, 1 - (1 - own) * (1 - glowAlpha * own));
    }
    for (int row = 0; row < area.height(); ++row) {
        auto *pixels = reinterpret_cast<QRgb *>(patch.image.scanLine(row));
        for (int column = 0; column < area.width(); ++column) {
            if (pixels[column] != 0) {
                pixels[column] = layered[static_cast<std::size_t>(qAlpha(pixels[column]))];
            }
        }
    }
    return patch;
}

} // namespace tarnovel
