#pragma once

#include <QImage>
#include <QObject>

#include "base/Worker.h"
#include "handwriting/InkRenderer.h"
#include "handwriting/InkSurface.h"

namespace tarnovel {

/// Renders the dry strokes of a view on a thread of its own, for drawings that would hold up the interface. A
/// newer request cancels the older one.
class InkViewRender : public QObject {
    Q_OBJECT

public:
    void request(const InkDrawing &drawing, const InkView &view);
    /// What was asked for is not wanted any more.
    void cancel() { m_worker.abandon(); }

Q_SIGNALS:
    void ready(const QImage &dry);

private:
    Worker m_worker;
};

} // namespace tarnovel
