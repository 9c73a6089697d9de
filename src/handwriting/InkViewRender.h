#pragma once

#include <stop_token>

#include <QImage>
#include <QObject>
#include <QThreadPool>

#include "handwriting/InkRenderer.h"
#include "handwriting/InkSurface.h"

namespace tarnovel {

/// Renders the dry strokes of a view on a thread of its own, for drawings that would hold up the interface. A
/// newer request cancels the older one.
class InkViewRender : public QObject {
    Q_OBJECT

public:
    InkViewRender();
    ~InkViewRender() override;

    void request(const InkDrawing &drawing, const InkView &view);
    /// What was asked for is not wanted any more.
    void cancel() { m_stop.request_stop(); }

Q_SIGNALS:
    void ready(const QImage &dry);

private:
    std::stop_source m_stop;
    QThreadPool m_thread;
};

} // namespace tarnovel
