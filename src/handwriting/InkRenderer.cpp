#include "handwriting/InkRenderer.h"

#include <algorithm>

#include "base/Cancellation.h"
#include "handwriting/InkMask.h"

namespace tarnovel::InkRenderer {

void draw(QImage &target, QPoint origin, double scale, const DryStroke &stroke, const QRect &clip)
{
    const QRect area = devicePixels(stroke.path.bounds, scale) & clip & QRect(origin, target.size());
    if (area.isEmpty()) {
        return;
    }
    InkMask mask(area);
    mask.add(stroke.path, scale);
    layInk(target, origin, mask, area, stroke.stroke, scale);
}

bool marks(const DryStroke &stroke, QSizeF page)
{
    const QRectF paper({0, 0}, page);
    if (std::ranges::any_of(stroke.path.points,
                            [&](const InkPoint &point) { return paper.contains(point.position); })) {
        return true;
    }
    // The nib may still reach in from beside the page, which its bounds alone do not tell of a slanted
    // course.
    const QRect area = devicePixels(stroke.path.bounds, 1) & QRect({0, 0}, page.toSize());
    if (area.isEmpty()) {
        return false;
    }
    InkMask mask(area);
    mask.add(stroke.path, 1);
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const uchar *covers = mask.row(y);
        if (std::any_of(covers, covers + area.width(), [](uchar cover) { return cover > 0; })) {
            return true;
        }
    }
    return false;
}

QImage render(const InkDrawing &drawing, const QRectF &rect, double scale, const std::stop_token &stop)
{
    const QRect device((rect.topLeft() * scale).toPoint(), (rect.size() * scale).toSize());
    QImage image(device.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    for (const auto &stroke : drawing) {
        throwIfCancelled(stop);
        draw(image, device.topLeft(), scale, *stroke, device);
    }
    return image;
}

} // namespace tarnovel::InkRenderer
