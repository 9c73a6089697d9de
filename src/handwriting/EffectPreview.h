#pragma once

#include <memory>

#include <QImage>
#include <QObject>

#include "base/Worker.h"
#include "editor/Clock.h"
#include "handwriting/HandwritingFinish.h"

namespace tarnovel {

/// The picture of the finish over the strokes on screen, at half the reference's size, made on a thread of
/// its own. A newer request cancels the older one, which then shows nothing; until the newer one is done, the
/// picture stays.
class EffectPreview : public QObject {
    Q_OBJECT

public:
    enum class Moment { AfterAPause, AtOnce };

    EffectPreview(Clock &clock, QSizeF referenceSize);

    void refresh(const InkDrawing &drawing, const FinishStyle &style, Moment moment);

    /// Lies over the whole reference. Null when the strokes on screen are the preview themselves.
    const QImage &image() const { return m_image; }
    /// The strokes that `image` shows.
    const InkDrawing &drawing() const { return m_drawing; }

Q_SIGNALS:
    void changed();

private:
    void render(const InkDrawing &drawing, const FinishStyle &style);
    void show(const QImage &image, const InkDrawing &drawing);

    Clock &m_clock;
    QSizeF m_referenceSize;
    QImage m_image;
    InkDrawing m_drawing;
    std::unique_ptr<PendingCall> m_pause;
    Worker m_worker;
};

} // namespace tarnovel
