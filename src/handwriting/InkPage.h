#pragma once

#include <QRectF>

#include "editor/UndoSteps.h"
#include "handwriting/InkRenderer.h"

namespace tarnovel {

/// The strokes of a drawing and its own history. Each operation returns the rectangle, in reference
/// coordinates, in which the drawing looks different now; a null one when nothing has changed.
class InkPage {
public:
    const InkDrawing &drawing() const { return m_drawing; }
    bool isEmpty() const { return m_drawing.isEmpty(); }
    bool canUndo() const { return m_history.canUndo(); }
    bool canRedo() const { return m_history.canRedo(); }

    QRectF add(std::shared_ptr<const DryStroke> stroke);
    QRectF clear();
    QRectF undo();
    QRectF redo();

    /// What is erased until the next call is one step.
    void beginErasing() { m_erasing = false; }
    /// Takes away every stroke that a round eraser of this radius touches on its way.
    QRectF erase(QPointF from, QPointF to, double radius);
    /// What was erased since `beginErasing` was not meant: drawing and history are as they were then.
    QRectF takeErasingBack();

private:
    QRectF replace(const InkDrawing &drawing);

    InkDrawing m_drawing;
    UndoSteps<InkDrawing> m_history;
    bool m_erasing = false;
    /// As they were before the erasing.
    InkDrawing m_drawingBefore;
    UndoSteps<InkDrawing> m_historyBefore;
};

/// Whether a disc of this radius that goes from one place straight to the other touches the path.
bool touches(const InkPath &path, QPointF from, QPointF to, double radius);

} // namespace tarnovel
