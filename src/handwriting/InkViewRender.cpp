#include "handwriting/InkViewRender.h"

#include <new>

#include "base/Cancellation.h"
#include "base/Log.h"

namespace tarnovel {

InkViewRender::InkViewRender()
{
    m_thread.setMaxThreadCount(1);
}

InkViewRender::~InkViewRender()
{
    m_stop.request_stop();
    m_thread.waitForDone();
}

void InkViewRender::request(const InkDrawing &drawing, const InkView &view)
{
    m_stop.request_stop();
    m_stop = {};
    m_thread.start([this, drawing, view, stop = m_stop.get_token()] {
        QImage image;
        try {
            throwIfCancelled(stop);
            const QRectF rect(QPointF(view.origin) / view.scale, QSizeF(view.pixels) / view.scale);
            image = InkRenderer::render(drawing, rect, view.scale, stop);
        } catch (const OperationCancelled &) {
            return;
        } catch (const std::bad_alloc &) {
            qCWarning(logHandwriting) << "not enough memory for a picture of the ink";
            return; // the stretched view stays
        }
        QMetaObject::invokeMethod(
            this,
            [this, image, stop] {
                if (!stop.stop_requested()) {
                    Q_EMIT ready(image);
                }
            },
            Qt::QueuedConnection);
    });
}

} // namespace tarnovel
