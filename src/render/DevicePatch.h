#pragma once

#include <array>

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QPoint>
#include <QRectF>
#include <QTransform>

class QPainter;

namespace tarnovel {

/// A small picture for whole device pixels. A shape with many edges is made as a patch where its coverage can
/// be worked out directly: filling its path takes QPainter ten times as long, and stroking it forty times.
struct DevicePatch {
    QPoint at;
    /// Premultiplied; null when there is nothing to draw.
    QImage image;

    /// Blends the patch in at its device pixels, whatever the painter's transform.
    void draw(QPainter &painter) const;
};

/// Whether device pixels stand straight in the painter's coordinates.
bool isUpright(const QTransform &transform);

/// A picture in its rectangle. One that has been made for just these pixels is copied to the nearest of them.
void drawPicture(QPainter &painter, const QRectF &rect, const QImage &picture);

/// The four bands of `outer` around `inner`, which lies in it: above, below, left and right.
std::array<QRectF, 4> bandsAround(const QRectF &inner, const QRectF &outer);

/// The device pixels that `device` touches and the painter can reach.
QRect reachablePixels(const QPainter &painter, const QRectF &device);

/// A filled rounded rectangle with a rim centred on its edge. Lengths are device pixels.
struct RimmedRect {
    QRectF rect;
    double radius = 0;
    QColor fill;
    QColor rim;
    double rimWidth = 0;
};
void drawRimmedRect(QPainter &painter, const RimmedRect &shape);

/// A rectangle in device pixels; one thinner than a pixel shows as faintly as it covers it.
DevicePatch boxPatch(const QPainter &painter, const QRectF &box, const QColor &color);

/// `path`, in device pixels and non-zero winding, in one colour whose opacity follows the coverage as two
/// layers of it over each other would: `print` over a glow of the same shape.
DevicePatch glowingPatch(const QPainter &painter, const QPainterPath &path, const QColor &print,
                         double glowAlpha);

} // namespace tarnovel
