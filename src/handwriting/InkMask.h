#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

#include "handwriting/InkPath.h"

namespace tarnovel {

/// How much of each device pixel one stroke covers, for a rectangle of whole device pixels. The stroke covers
/// a pixel as much as the heaviest of its pieces does, so crossing itself adds nothing, and pieces may come
/// in any order. A pixel's value does not depend on the rectangle.
class InkMask {
public:
    InkMask() = default;
    /// Blank.
    explicit InkMask(const QRect &area);

    const QRect &area() const { return m_area; }
    /// Device pixels lie at reference coordinates times `scale`.
    void add(const InkPoint &from, const InkPoint &to, const Nib &nib, double scale);
    /// The points from `first` on, with the piece that leads to the first of them.
    void add(const InkPath &path, double scale);
    void add(const std::vector<InkPoint> &points, size_t first, size_t end, const Nib &nib, double scale);
    void clear(const QRect &area);
    /// A copy of a part of it, or of as much of the part as there is.
    InkMask part(const QRect &area) const;

    /// 0…255, from the left edge of the area on.
    uchar *row(int y) { return m_bytes.scanLine(y - m_area.y()); }
    const uchar *row(int y) const { return m_bytes.constScanLine(y - m_area.y()); }

private:
    struct Piece;
    void fill(const Piece &piece);

    QRect m_area;
    QImage m_bytes;
};

/// The device pixels that a rectangle in reference coordinates touches, with the soft rim of what it bounds.
QRect devicePixels(const QRectF &reference, double scale);

/// Lays one stroke's ink over `target` (premultiplied), whose first pixel is the device pixel `origin`,
/// within `clip` in device pixels.
void layInk(QImage &target, QPoint origin, const InkMask &mask, const QRect &clip, const InkStroke &stroke,
            double scale);

} // namespace tarnovel
