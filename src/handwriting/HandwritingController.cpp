#include "handwriting/HandwritingController.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>

#include "language/AppLanguage.h"

namespace tarnovel {

namespace {

/// Drawings of so many points are drawn anew in a few milliseconds; larger ones would hold up the hand.
constexpr size_t quickPoints = 4000;

} // namespace

HandwritingController::HandwritingController(EditorModel &model, Clock &clock, QSize referenceSize,
                                             double focusY)
    : m_referenceSize(referenceSize),
      m_viewport(referenceSize, focusY),
      m_preview(clock, referenceSize),
      m_save(model)
{
    connect(&m_preview, &EffectPreview::changed, this, &HandwritingController::previewChanged);
    connect(&m_viewRender, &InkViewRender::ready, this, [this](const QImage &dry) {
        m_surface.sharpen(dry);
        if (m_path) {
            m_surface.write(m_stroke, *m_path);
        }
        Q_EMIT inkChanged(ink().rect());
    });
    connect(&m_save, &SignatureSave::finished, this, &HandwritingController::saveFinished);
}

void HandwritingController::setTool(HandwritingTool tool)
{
    endStroke();
    m_tool = tool;
    tell(ToolChanged);
}

void HandwritingController::setColor(const Ink &color)
{
    endStroke();
    m_finish.color = color;
    tell(ToolChanged);
    if (finish() == HandwritingFinish::glitter) {
        refreshPreview(EffectPreview::Moment::AfterAPause);
    }
}

void HandwritingController::setWidth(double width)
{
    endStroke();
    m_width = std::isfinite(width) ? std::clamp(width, leastWidth, mostWidth) : m_width;
    tell(ToolChanged);
}

void HandwritingController::setFinish(HandwritingFinish finish)
{
    endStroke();
    m_finish.finish = finish;
    m_surface.setRainbow(rainbowPage());
    m_above.setRainbow(rainbowPage());
    Q_EMIT inkChanged(ink().rect());
    refreshPreview(EffectPreview::Moment::AtOnce);
    tell(ToolChanged);
}

void HandwritingController::setMoving(bool moving)
{
    endStroke();
    m_moving = moving;
    tell(ToolChanged);
}

void HandwritingController::penDown(const InkSample &sample, PenEnd end)
{
    if (m_moving || saving() || penIsDown()) {
        return;
    }
    const std::optional<InkPen> pen = end == PenEnd::Tip ? penOf(m_tool) : std::nullopt;
    if (!pen) {
        m_page.beginErasing();
        m_eraserAt = sample.position;
        eraseTo(sample.position);
        return;
    }
    m_stroke = {*pen, color(), m_width, m_viewport.zoom(), {}};
    m_path.emplace(m_stroke);
    penMove(sample);
}

void HandwritingController::penMove(const InkSample &sample)
{
    if (m_eraserAt) {
        eraseTo(sample.position);
    }
    if (!m_path) {
        return;
    }
    m_stroke.samples.append(sample);
    m_path->append(sample);
    if (const QRect pixels = write(); !pixels.isEmpty()) {
        Q_EMIT inkChanged(pixels);
    }
}

QRect HandwritingController::write()
{
    const QRect pixels = m_surface.write(m_stroke, *m_path);
    return preview().isNull() ? pixels : pixels | m_above.write(m_stroke, *m_path);
}

void HandwritingController::penUp(const InkSample &sample)
{
    penMove(sample);
    endStroke();
}

void HandwritingController::penCancel()
{
    if (std::exchange(m_eraserAt, std::nullopt)) {
        drawingChanged(m_page.takeErasingBack());
    }
    if (m_path) {
        m_path.reset();
        Q_EMIT inkChanged(m_surface.abandon() | m_above.abandon());
    }
}

void HandwritingController::eraseTo(QPointF position)
{
    const double radius = toolDiameter(HandwritingTool::Eraser, m_width) / 2;
    const QRectF region = m_page.erase(*m_eraserAt, position, radius);
    m_eraserAt = position;
    drawingChanged(region);
}

void HandwritingController::endStroke()
{
    m_eraserAt.reset();
    if (!m_path) {
        return;
    }
    if (m_path->isEmpty()) {
        penCancel();
        return;
    }
    m_path->finish();
    const auto stroke = std::make_shared<const DryStroke>(std::exchange(m_stroke, {}), m_path->path());
    if (!InkRenderer::marks(*stroke, m_referenceSize)) {
        penCancel(); // written beside the page, where nothing is kept
        return;
    }
    m_path.reset();
    m_page.add(stroke);
    QRect pixels = m_surface.dry(*stroke);
    if (!preview().isNull()) {
        pixels |= m_above.dry(*stroke);
    }
    Q_EMIT inkChanged(pixels);
    sharpenLater();
    refreshPreview(EffectPreview::Moment::AfterAPause);
    tell(HistoryChanged);
}

QByteArray HandwritingController::draft(const QUuid &photo)
{
    endStroke();
    if (isEmpty()) {
        return {};
    }
    InkDraft draft{photo, finish(), {}};
    for (const auto &stroke : drawing()) {
        draft.strokes.append(stroke->stroke);
    }
    return writeInkDraft(draft);
}

void HandwritingController::resume(const InkDraft &draft)
{
    QRectF region;
    for (const InkStroke &stroke : draft.strokes) {
        region |= m_page.add(std::make_shared<const DryStroke>(stroke));
    }
    setFinish(draft.finish);
    drawingChanged(region);
    tell(HistoryChanged);
}

void HandwritingController::undo()
{
    endStroke();
    drawingChanged(m_page.undo());
}

void HandwritingController::redo()
{
    endStroke();
    drawingChanged(m_page.redo());
}

void HandwritingController::clear()
{
    endStroke();
    drawingChanged(m_page.clear());
}

void HandwritingController::drawingChanged(const QRectF &region)
{
    if (region.isNull()) {
        return;
    }
    if (!preview().isNull()) {
        m_above.redraw(region, notPreviewed());
    }
    if (const QRect pixels = m_surface.redraw(region, drawing()); !pixels.isEmpty()) {
        Q_EMIT inkChanged(pixels);
    }
    sharpenLater();
    refreshPreview(EffectPreview::Moment::AfterAPause);
    tell(HistoryChanged);
}

void HandwritingController::layOut(QSizeF view, double devicePixelRatio, double margin)
{
    m_devicePixelRatio = devicePixelRatio;
    m_viewport.layOut(view, margin);
    viewChanged();
}

void HandwritingController::zoomTo(double zoom, QPointF anchor)
{
    m_viewport.zoomTo(zoom, anchor);
    viewChanged();
}

void HandwritingController::pan(QPointF by)
{
    m_viewport.pan(by);
    viewChanged();
}

void HandwritingController::viewChanged()
{
    const QSizeF pixels = m_viewport.view() * m_devicePixelRatio;
    const InkView view{
        {static_cast<int>(std::ceil(pixels.width())), static_cast<int>(std::ceil(pixels.height()))},
        (m_viewport.offset() * m_devicePixelRatio).toPoint(),
        m_viewport.zoom() * m_devicePixelRatio};
    if (view == m_surface.view() || view.pixels.isEmpty()) {
        return;
    }
    const bool moved = view.scale == m_surface.view().scale && !m_surface.isStretched();
    if (moved || isQuicklyDrawn()) {
        m_viewRender.cancel();
        m_surface.setView(view, drawing());
    } else {
        m_surface.stretchTo(view);
        sharpenLater();
    }
    if (!preview().isNull()) {
        m_above.setView(view, notPreviewed());
    }
    if (m_path) {
        write();
    }
    Q_EMIT inkChanged(ink().rect());
    tell(ViewportChanged);
}

void HandwritingController::previewChanged()
{
    m_above = {};
    if (!preview().isNull()) {
        m_above.setRainbow(rainbowPage());
        m_above.setView(m_surface.view(), notPreviewed());
        if (m_path) {
            m_above.write(m_stroke, *m_path);
        }
    }
    tell(PreviewChanged);
}

InkDrawing HandwritingController::notPreviewed() const
{
    const InkDrawing &shown = m_preview.drawing();
    const std::unordered_set<std::shared_ptr<const DryStroke>> there(shown.begin(), shown.end());
    InkDrawing rest = drawing();
    rest.removeIf([&there](const auto &stroke) { return there.contains(stroke); });
    return rest;
}

std::optional<QSizeF> HandwritingController::rainbowPage() const
{
    return finish() == HandwritingFinish::rainbow ? std::optional(m_referenceSize) : std::nullopt;
}

bool HandwritingController::isQuicklyDrawn() const
{
    size_t points = 0;
    for (const auto &stroke : drawing()) {
        points += stroke->path.points.size();
    }
    return points <= quickPoints;
}

void HandwritingController::sharpenLater()
{
    if (m_surface.isStretched()) {
        m_viewRender.request(drawing(), m_surface.view());
    }
}

void HandwritingController::refreshPreview(EffectPreview::Moment moment)
{
    m_preview.refresh(drawing(), m_finish, moment);
}

bool HandwritingController::save()
{
    endStroke();
    if (isEmpty() || saving()) {
        return false;
    }
    m_save.start(
        [drawing = drawing(), style = m_finish, size = m_referenceSize](const std::stop_token &stop) {
            // Without a finish each stroke keeps the colour that it was written in.
            return style.finish == HandwritingFinish::color
                       ? InkRenderer::render(drawing, QRectF({0, 0}, size), 1, stop)
                       : finishedImage(drawing, style, size, 1, stop);
        });
    tell(SavingChanged);
    return true;
}

void HandwritingController::saveFinished(bool done)
{
    tell(SavingChanged);
    if (done) {
        Q_EMIT saved();
    } else {
        Q_EMIT saveFailed(localized(
            {"无法保存手写内容。", "Could not save handwriting.", "Impossible d’enregistrer l’écriture."}));
    }
}

} // namespace tarnovel
