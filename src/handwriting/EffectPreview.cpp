#include "handwriting/EffectPreview.h"

namespace tarnovel {

namespace {

/// A burst of changes within this time is drawn once.
constexpr std::chrono::milliseconds pause(38);

constexpr double previewScale = 0.5;

} // namespace

EffectPreview::EffectPreview(Clock &clock, QSizeF referenceSize)
    : m_clock(clock), m_referenceSize(referenceSize)
{
}

void EffectPreview::refresh(const InkDrawing &drawing, const FinishStyle &style, Moment moment)
{
    m_pause.reset();
    m_worker.abandon();
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
    m_worker.runLatest(
        [drawing, style, size = m_referenceSize](const std::stop_token &stop) {
            return InkRenderer::withinMemory(
                [&] { return finishedImage(drawing, style, size, previewScale, stop); });
        },
        [this, drawing](const std::optional<QImage> &image) {
            // Without one the older picture stays.
            if (image) {
                show(*image, drawing);
            }
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
