#include "handwriting/InkViewRender.h"

#include <new>
#include <optional>

#include "base/Log.h"

namespace tarnovel {

void InkViewRender::request(const InkDrawing &drawing, const InkView &view)
{
    m_worker.runLatest(
        [drawing, view](const std::stop_token &stop) -> std::optional<QImage> {
            try {
                const QRectF rect(QPointF(view.origin) / view.scale, QSizeF(view.pixels) / view.scale);
                return InkRenderer::render(drawing, rect, view.scale, stop);
            } catch (const std::bad_alloc &) {
                qCWarning(logHandwriting) << "not enough memory for a picture of the ink";
                return {};
            }
        },
        [this](const std::optional<QImage> &image) {
            // Without one the stretched view stays.
            if (image) {
                Q_EMIT ready(*image);
            }
        });
}

} // namespace tarnovel
