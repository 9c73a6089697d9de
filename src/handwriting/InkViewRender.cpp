#include "handwriting/InkViewRender.h"

namespace tarnovel {

void InkViewRender::request(const InkDrawing &drawing, const InkView &view)
{
    m_worker.runLatest(
        [drawing, view](const std::stop_token &stop) {
            const QRectF rect(QPointF(view.origin) / view.scale, QSizeF(view.pixels) / view.scale);
            return InkRenderer::withinMemory(
                [&] { return InkRenderer::render(drawing, rect, view.scale, stop); });
        },
        [this](const std::optional<QImage> &image) {
            // Without one the stretched view stays.
            if (image) {
                Q_EMIT ready(*image);
            }
        });
}

} // namespace tarnovel
