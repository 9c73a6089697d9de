#include "handwriting/InkRenderer.h"

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
