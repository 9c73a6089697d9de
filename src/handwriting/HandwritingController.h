#pragma once

#include <optional>

#include <QObject>

#include "handwriting/EffectPreview.h"
#include "handwriting/HandwritingTool.h"
#include "handwriting/HandwritingViewport.h"
#include "handwriting/InkDraft.h"
#include "handwriting/InkPage.h"
#include "handwriting/InkSurface.h"
#include "handwriting/InkViewRender.h"
#include "handwriting/SignatureSave.h"

namespace tarnovel {

/// One session of the handwriting studio: tools, strokes, what the screen shows of them, and saving. A screen
/// draws, in this order and clipped to `viewport().referenceRect()`: the reference, `preview()` over it,
/// `ink()` over the whole view. It lives on the interface thread.
class HandwritingController : public QObject {
    Q_OBJECT

public:
    static constexpr double leastWidth = 1;
    static constexpr double mostWidth = 24;

    enum Change {
        ToolChanged = 1,
        HistoryChanged = 2,
        ViewportChanged = 4,
        PreviewChanged = 8,
        SavingChanged = 16,
    };
    Q_DECLARE_FLAGS(Changes, Change)

    /// Which end of the pen is on the page; the end of a turned tablet pen erases whatever the tool.
    enum class PenEnd { Tip, Eraser };

    /// `referenceSize` in pixels; `focusY` (0…1) is the height to show first.
    HandwritingController(EditorModel &model, Clock &clock, QSize referenceSize, double focusY);

    HandwritingTool tool() const { return m_tool; }
    const Ink &color() const { return m_finish.color; }
    /// In reference units.
    double width() const { return m_width; }
    HandwritingFinish finish() const { return m_finish.finish; }
    /// One finger moves the page rather than drawing on it.
    bool moving() const { return m_moving; }
    /// Across the tool's mark on screen, in logical pixels.
    double cursorDiameter() const { return toolDiameter(m_tool, m_width) * m_viewport.zoom(); }

    void setTool(HandwritingTool tool);
    void setColor(const Ink &color);
    /// Held to 1…24.
    void setWidth(double width);
    void setFinish(HandwritingFinish finish);
    /// A stroke that is being written ends.
    void setMoving(bool moving);

    /// The pointer in reference coordinates; `viewport()` converts. Nothing happens while the page is moved
    /// or saved, and a report out of turn is ignored.
    void penDown(const InkSample &sample, PenEnd end = PenEnd::Tip);
    void penMove(const InkSample &sample);
    void penUp(const InkSample &sample);
    /// The stroke was none after all: a second finger has come down. What it erased is back.
    void penCancel();
    bool penIsDown() const { return m_path || m_eraserAt; }

    const InkDrawing &drawing() const { return m_page.drawing(); }
    bool isEmpty() const { return m_page.isEmpty(); }
    bool canUndo() const { return m_page.canUndo(); }
    bool canRedo() const { return m_page.canRedo(); }
    void undo();
    void redo();
    void clear();

    const HandwritingViewport &viewport() const { return m_viewport; }
    /// The size of the screen's view in logical pixels, the device pixels in one of them, and the room that a
    /// page that is shown whole leaves around itself.
    void layOut(QSizeF view, double devicePixelRatio, double margin = 0);
    void zoomTo(double zoom, QPointF anchor);
    void pan(QPointF by);

    /// The strokes in device pixels, for the whole view; those that `preview()` shows already are left out,
    /// or translucent ink would lie there twice.
    const QImage &ink() const { return preview().isNull() ? m_surface.image() : m_above.image(); }
    /// Strokes with their finish, to be stretched over the whole reference; null for none.
    const QImage &preview() const { return m_preview.image(); }

    /// The strokes as a document from which `resume` goes on; empty for an empty page. A stroke that is being
    /// written ends.
    QByteArray draft(const QUuid &photo);
    /// Puts the strokes and the finish of a draft on the page.
    void resume(const InkDraft &draft);

    /// Writes the signature into the library and gives it to the current photo, as one undo step. False, with
    /// nothing done, for an empty page or while it is being saved.
    bool save();
    bool saving() const { return m_save.running(); }

Q_SIGNALS:
    void changed(tarnovel::HandwritingController::Changes changes);
    /// Device pixels of `ink` that look different now.
    void inkChanged(const QRect &pixels);
    /// The signature is the photo's.
    void saved();
    /// With what to tell the user; nothing has changed.
    void saveFailed(const QString &message);

private:
    void eraseTo(QPointF position);
    void endStroke();
    void drawingChanged(const QRectF &region);
    void viewChanged();
    void previewChanged();
    InkDrawing notPreviewed() const;
    std::optional<QSizeF> rainbowPage() const;
    QRect write();
    bool isQuicklyDrawn() const;
    void sharpenLater();
    void refreshPreview(EffectPreview::Moment moment);
    void saveFinished(bool done);
    void tell(Changes changes) { Q_EMIT changed(changes); }

    const QSizeF m_referenceSize;
    HandwritingTool m_tool = HandwritingTool::Signature;
    FinishStyle m_finish;
    double m_width = 6;
    bool m_moving = false;
    InkPage m_page;
    /// The stroke that is being written.
    InkStroke m_stroke;
    std::optional<InkPathBuilder> m_path;
    std::optional<QPointF> m_eraserAt;
    HandwritingViewport m_viewport;
    double m_devicePixelRatio = 1;
    InkSurface m_surface;
    /// What lies above the preview, while there is one.
    InkSurface m_above;
    InkViewRender m_viewRender;
    EffectPreview m_preview;
    SignatureSave m_save;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(HandwritingController::Changes)

} // namespace tarnovel
