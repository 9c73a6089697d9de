#include "handwriting/EffectPreview.h"

#include "base/Cancellation.h"
#include "base/Log.h"

namespace tarnovel {

namespace {

/// A burst of changes within this time is drawn once.
constexpr std::chrono::milliseconds pause(38);

constexpr double previewScale = 0.5;

} // namespace

EffectPreview::EffectPreview(Clock &clock, QSizeF referenceSize)
    : m_clock(clock), m_referenceSize(referenceSize)
{
    m_thread.setMaxThreadCount(1);
}

EffectPreview::~EffectPreview()
{
    m_stop.request_stop();
    m_thread.waitForDone();
}

void EffectPreview::refresh(const InkDrawing &drawing, const FinishStyle &style, Moment moment)
{
    m_pause.reset();
    m_stop.request_stop();
    m_stop = {};
    if (style.finish == HandwritingFinish::color) {
        show({}, {});
    } else if (moment == Moment::AtOnce) {
        render(drawing, style);
    } else {
        m_pause = m_clock.after(pause, [this, drawing, style] { render(drawing, style); });
    }
}

void EffectPreview::render(const InkDrawing &drawing, const FinishStyle &style)
{
    m_thread.start([this, drawing, style, size = m_referenceSize, stop = m_stop.get_token()] {
        QImage image;
        try {
            throwIfCancelled(stop);
            image = finishedImage(drawing, style, size, previewScale, stop);
        } catch (const OperationCancelled &) {
            return;
        } catch (const std::bad_alloc &) {
            qCWarning(logHandwriting) << "not enough memory for a picture of the ink";
            return; // the older picture stays
        }
        QMetaObject::invokeMethod(
            this,
            [this, image, drawing, stop] {
                if (!stop.stop_requested()) {
                    show(image, drawing);
                }
            },
            Qt::QueuedConnection);
    });
}

void EffectPreview::show(const QImage &image, const InkDrawing &drawing)
{
    if (image.isNull() && m_image.isNull()) {
        return;
    }
    m_image = image;
    m_drawing = drawing;
    Q_EMIT changed();
}

} // namespace tarnovel
