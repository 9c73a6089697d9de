#pragma once

#include <memory>
#include <new>
#include <optional>
#include <stop_token>

#include <QImage>
#include <QList>

#include "base/Log.h"
#include "handwriting/InkPath.h"

namespace tarnovel {

/// A finished stroke with the course that was derived from it.
struct DryStroke {
    explicit DryStroke(InkStroke written) : stroke(std::move(written)), path(InkPath::of(stroke)) {}
    /// `course` is the stroke's own.
    DryStroke(InkStroke written, InkPath course) : stroke(std::move(written)), path(std::move(course)) {}

    InkStroke stroke;
    InkPath path;
};

/// A drawing, the oldest stroke first. Strokes never change, so that copies share them across threads.
using InkDrawing = QList<std::shared_ptr<const DryStroke>>;

/// Draws strokes. Screen, preview and saved file all call `draw`; the same drawing gives the same bytes, in
/// whatever parts it is drawn.
namespace InkRenderer {

/// Lays a stroke over `target` (premultiplied), whose first pixel is the device pixel `origin`, within `clip`
/// in device pixels. Device pixels lie at reference coordinates times `scale`.
void draw(QImage &target, QPoint origin, double scale, const DryStroke &stroke, const QRect &clip);

/// Whether any of the stroke's ink falls on a page of this size.
bool marks(const DryStroke &stroke, QSizeF page);

/// The drawing on a transparent image of a rectangle in reference coordinates, whose corner is taken to the
/// nearest device pixel. Throws OperationCancelled between strokes.
QImage render(const InkDrawing &drawing, const QRectF &rect, double scale, const std::stop_token &stop = {});

/// The picture that `render()` makes; none where there is not enough memory for it.
template<typename Render>
std::optional<QImage> withinMemory(Render render)
{
    try {
        return render();
    } catch (const std::bad_alloc &) {
        qCWarning(logHandwriting) << "not enough memory for a picture of the ink";
        return {};
    }
}

} // namespace InkRenderer

} // namespace tarnovel
