#pragma once

#include <optional>

#include <QImage>

#include "handwriting/InkMask.h"
#include "handwriting/InkRenderer.h"

namespace tarnovel {

/// The part of the page that the screen shows, in device pixels; these lie at reference coordinates times
/// `scale`.
struct InkView {
    QSize pixels = {0, 0};
    /// The device pixel at the top left.
    QPoint origin;
    double scale = 1;
    bool operator==(const InkView &) const = default;
};

/// The ink on the screen: what is dry is kept as an image, and a stroke that is being written costs as much
/// as the few pixels that its newest sample changes. Rectangles that come back are in pixels of `image`.
class InkSurface {
public:
    /// Moving at the same scale draws only what comes into view. A stroke that is being written has to be
    /// written again.
    void setView(const InkView &view, const InkDrawing &drawing);
    /// Shows what is there already where the view has it, stretched as need be, until `sharpen`.
    void stretchTo(const InkView &view);
    /// `dry` shows the strokes that are dry now in the present view.
    void sharpen(const QImage &dry);
    const InkView &view() const { return m_view; }
    bool isStretched() const { return m_stretched; }

    /// Shows all ink as the rainbow of a page of this size, or in its own colours.
    void setRainbow(const std::optional<QSizeF> &page);

    /// Premultiplied; its first pixel is the view's origin.
    const QImage &image() const { return m_image; }

    /// The dry strokes have changed within a rectangle in reference coordinates.
    QRect redraw(const QRectF &region, const InkDrawing &drawing);
    /// The stroke that is being written has grown. Only its look is read from `stroke`.
    QRect write(const InkStroke &stroke, const InkPathBuilder &path);
    /// The stroke that was being written is dry now, the last of the drawing.
    QRect dry(const DryStroke &stroke);
    /// The stroke that was being written is no more.
    QRect abandon();

private:
    QRect area() const { return {m_view.origin, m_view.pixels}; }
    QRect inImage(const QRect &device) const { return device.translated(-m_view.origin); }
    void paintDry(const QRect &device, const InkDrawing &drawing);
    void show(const QRect &device);
    void tint(const QRect &pixels);
    void forgetLive();
    void take(const InkView &view);
    void keepForStretching();

    InkView m_view;
    std::optional<QSizeF> m_rainbow;
    QImage m_dry;
    /// What is stretched: repeated stretching would blur it and cut it off.
    QImage m_source;
    InkView m_sourceView;
    bool m_stretched = false;
    QImage m_image;
    /// Of the stroke that is being written: the settled part, and how many points of it lie there.
    InkMask m_live;
    size_t m_liveSettled = 0;
    /// Device pixels of the part that is not settled, and of all of it.
    QRect m_liveTail;
    QRect m_liveBounds;
};

} // namespace tarnovel
