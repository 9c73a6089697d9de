#include "handwriting/InkSurface.h"

#include <algorithm>
#include <cstring>

#include <QPainter>
#include <QRegion>

#include "handwriting/HandwritingFinish.h"

namespace tarnovel {

namespace {

constexpr size_t pixelBytes = sizeof(QRgb);

QImage blank(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// Both images have the same format; the rectangle lies in both after its move.
void copyPixels(QImage &to, QPoint at, const QImage &from, const QRect &part)
{
    for (int y = 0; y < part.height(); ++y) {
        std::memcpy(to.scanLine(at.y() + y) + static_cast<size_t>(at.x()) * pixelBytes,
                    from.constScanLine(part.y() + y) + static_cast<size_t>(part.x()) * pixelBytes,
                    static_cast<size_t>(part.width()) * pixelBytes);
    }
}

/// The device pixels of the pieces that lead to the points from `first` on, up to `end`.
QRect piecePixels(const std::vector<InkPoint> &points, size_t first, size_t end, double scale)
{
    QRectF bounds;
    for (size_t i = first; i < end; ++i) {
        bounds |= swept(points[i == 0 ? 0 : i - 1], points[i]);
    }
    return devicePixels(bounds, scale);
}

} // namespace

void InkSurface::setView(const InkView &view, const InkDrawing &drawing)
{
    const InkView old = m_view;
    const bool sharp = !std::exchange(m_stretched, false);
    const QImage before = m_dry;
    take(view);
    m_source = {};
    QRect kept;
    if (old.scale == view.scale && sharp) {
        kept = QRect(old.origin, old.pixels) & area();
    }
    if (!kept.isEmpty()) {
        copyPixels(m_dry, inImage(kept).topLeft(), before, kept.translated(-old.origin));
    }
    for (const QRect &fresh : QRegion(area()) - kept) {
        paintDry(fresh, drawing);
    }
    show(area());
}

void InkSurface::take(const InkView &view)
{
    m_view = view;
    forgetLive();
    m_dry = blank(view.pixels);
    m_image = m_dry;
    m_live = InkMask(area());
}

void InkSurface::keepForStretching()
{
    if (m_stretched) {
        m_source = m_dry;
        m_sourceView = m_view;
    }
}

void InkSurface::stretchTo(const InkView &view)
{
    if (!std::exchange(m_stretched, true)) {
        keepForStretching();
    }
    take(view);
    QPainter painter(&m_dry);
    painter.translate(-view.origin);
    painter.scale(view.scale / m_sourceView.scale, view.scale / m_sourceView.scale);
    painter.drawImage(m_sourceView.origin, m_source);
    painter.end();
    show(area());
}

void InkSurface::sharpen(const QImage &dry)
{
    m_stretched = false;
    m_source = {};
    m_dry = dry;
    m_liveSettled = 0;
    m_live.clear(m_liveBounds);
    show(area());
}

void InkSurface::setRainbow(const std::optional<QSizeF> &page)
{
    m_rainbow = page;
    show(area());
}

void InkSurface::paintDry(const QRect &device, const InkDrawing &drawing)
{
    const QRect part = device & area();
    const QRect pixels = inImage(part);
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        std::memset(m_dry.scanLine(y) + static_cast<size_t>(pixels.x()) * pixelBytes, 0,
                    static_cast<size_t>(pixels.width()) * pixelBytes);
    }
    for (const auto &stroke : drawing) {
        InkRenderer::draw(m_dry, m_view.origin, m_view.scale, *stroke, part);
    }
}

void InkSurface::show(const QRect &device)
{
    const QRect pixels = inImage(device & area());
    if (!pixels.isEmpty()) {
        copyPixels(m_image, pixels.topLeft(), m_dry, pixels);
        tint(pixels);
    }
}

void InkSurface::tint(const QRect &pixels)
{
    if (!m_rainbow) {
        return;
    }
    QPainter painter(&m_image);
    painter.setClipRect(pixels);
    painter.translate(-m_view.origin);
    painter.scale(m_view.scale, m_view.scale);
    tintRainbow(painter, *m_rainbow);
}

QRect InkSurface::redraw(const QRectF &region, const InkDrawing &drawing)
{
    const QRect changed = devicePixels(region, m_view.scale) & area();
    if (!changed.isEmpty()) {
        paintDry(changed, drawing);
        keepForStretching();
        show(changed);
    }
    return inImage(changed);
}

QRect InkSurface::write(const InkStroke &stroke, const InkPathBuilder &path)
{
    const std::vector<InkPoint> &points = path.points();
    const Nib shape = nib(stroke.pen);
    const double scale = m_view.scale;
    const QRect settled = piecePixels(points, m_liveSettled, path.settled(), scale);
    m_live.add(points, m_liveSettled, path.settled(), shape, scale);
    m_liveSettled = path.settled();
    const QRect tail = piecePixels(points, m_liveSettled, points.size(), scale);
    const QRect changed = (m_liveTail | settled | tail) & area();
    m_liveTail = tail;
    m_liveBounds |= changed;
    if (changed.isEmpty()) {
        return {};
    }
    copyPixels(m_image, inImage(changed).topLeft(), m_dry, inImage(changed));
    InkMask wet = m_live.part(changed);
    wet.add(points, m_liveSettled, points.size(), shape, scale);
    layInk(m_image, m_view.origin, wet, changed, stroke, scale);
    tint(inImage(changed));
    return inImage(changed);
}

QRect InkSurface::dry(const DryStroke &stroke)
{
    const QRect changed = (devicePixels(stroke.path.bounds, m_view.scale) | m_liveBounds) & area();
    InkRenderer::draw(m_dry, m_view.origin, m_view.scale, stroke, changed);
    keepForStretching();
    forgetLive();
    show(changed);
    return inImage(changed);
}

QRect InkSurface::abandon()
{
    const QRect changed = m_liveBounds & area();
    forgetLive();
    show(changed);
    return inImage(changed);
}

void InkSurface::forgetLive()
{
    m_live.clear(m_liveBounds);
    m_liveSettled = 0;
    m_liveTail = {};
    m_liveBounds = {};
}

} // namespace tarnovel
