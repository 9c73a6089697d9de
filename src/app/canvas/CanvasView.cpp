#include "app/canvas/CanvasView.h"

#include <algorithm>

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QTransform>

#include "app/canvas/CanvasMarks.h"
#include "app/kit/Accessible.h"
#include "app/kit/Focus.h"
#include "app/kit/Icons.h"
#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"
#include "editor/EditorRules.h"
#include "render/CompositionRenderer.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSizeF roomyMargins(112, 112);
constexpr QSizeF tightMargins(96, 72);
/// On a stage narrower or lower than this the margins are the tight ones.
constexpr QSize tightStage(800, 600);

} // namespace

CanvasView::CanvasView(const PhotosContext &context, EditorState &state, Clock &clock, QWidget *parent)
    : QWidget(parent), m_context(context), m_state(state), m_gestures(context.model), m_images(clock)
{
    setAccessibleRole(*this, QAccessible::Graphic);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setProperty("paintsFocus", true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    grabGesture(Qt::PinchGesture);
    connect(&context.model, &EditorModel::changed, this, &CanvasView::modelChanged);
    connect(&m_images, &CanvasImages::changed, this, &CanvasView::redraw);
    connect(&state, &EditorState::layerChanged, this, [this] {
        showState();
        update();
    });
    connect(&state, &EditorState::pickingChanged, this,
            [this] { setCursor(m_state.colorTaker() ? Qt::CrossCursor : Qt::ArrowCursor); });
    showState();
}

void CanvasView::modelChanged(EditorModel::Changes changes)
{
    // Undo selects its photo, which mostly is the one at hand: its layer stays chosen.
    if (changes & EditorModel::SelectionChanged && m_photo != m_context.model.selected()) {
        m_photo = m_context.model.selected();
        endGesture();
        m_state.selectLayer({});
        m_live.clear();
    }
    if (changes & (EditorModel::SelectionChanged | EditorModel::SettingsChanged |
                   EditorModel::PreviewsChanged | EditorModel::PhotosChanged)) {
        const std::optional<QString> &layer = m_state.selectedLayer();
        const PhotoItem *photo = m_context.model.current();
        if (layer && !(photo && photo->settings.layer(*layer))) {
            m_state.selectLayer({});
        }
        // A step of the hand mostly touches a part; what it touches beside the picture is the model's to
        // tell.
        changes == EditorModel::SettingsChanged ? redrawChanged() : redraw();
        showState();
    }
}

void CanvasView::showState()
{
    const PhotoItem *photo = m_context.model.current();
    const std::optional<QString> &layer = m_state.selectedLayer();
    const TextLayer *text = photo && layer ? photo->settings.layer(*layer) : nullptr;
    const QString name = localized({"画面", "Picture", "Image"});
    const QString empty = localized({"，空", ", empty", ", vide"});
    const QString words = !text                           ? QString()
                          : Placeholders::isWanted(*text) ? layerTitle(*text) + empty
                                                          : text->text;
    const QString label = text ? name + u", "_s + words : photo ? name + u", "_s + photo->name : name;
    if (label != accessibleName()) {
        setAccessibleName(label);
    }
}

void CanvasView::redraw()
{
    m_live.clear();
    update();
}

void CanvasView::redrawChanged()
{
    const PhotoItem *photo = m_context.model.current();
    const QRectF frame = frameRect();
    const auto isWanted = [](const TextLayer &layer) { return Placeholders::isWanted(layer); };
    if (!photo || frame != m_groundFrame || std::ranges::any_of(photo->settings.layers, isWanted)) {
        update();
        return;
    }
    QRect touched = onWidget(m_live.outdated(*photo, frameDevicePixels())) | marksRect() | m_marks;
    if (shownGuides() != m_guides) {
        touched |= CanvasMarks::guideRegion(frame).boundingRect();
    }
    // One rectangle: a clip of many makes every painting slow.
    update(touched);
}

QRect CanvasView::marksRect() const
{
    const std::optional<QRectF> box = layerBox();
    return box ? layerTransform(*box)
                     .mapRect(CanvasMarks::selectionBounds(*box))
                     .toAlignedRect()
                     .adjusted(-1, -1, 1, 1)
               : QRect();
}

std::optional<CentreSnap> CanvasView::shownGuides() const
{
    return m_gestures.guidesVisible() ? std::optional(m_gestures.snap()) : std::nullopt;
}

QRectF CanvasView::frameRect() const
{
    const PhotoItem *photo = m_context.model.current();
    if (!photo) {
        return {};
    }
    const QSizeF margins =
        width() < tightStage.width() || height() < tightStage.height() ? tightMargins : roomyMargins;
    const double device = devicePixelRatioF();
    const QSizeF room = (QSizeF(size()) - margins).expandedTo({40, 40});
    const QSize pixels = Thumbnails::canvasIn((room * device).toSize(), *photo);
    const QPoint at(qRound((width() * device - pixels.width()) / 2.0),
                    qRound((height() * device - pixels.height()) / 2.0));
    return {QPointF(at) / device, QSizeF(pixels) / device};
}

QSize CanvasView::frameDevicePixels() const
{
    return (frameRect().size() * devicePixelRatioF()).toSize();
}

QRect CanvasView::drawFrame()
{
    const PhotoItem *photo = m_context.model.current();
    const QSize pixels = frameDevicePixels();
    return onWidget(m_live.draw(*photo, pixels, m_images.images(*photo, pixels, m_context.model.previews())));
}

QRect CanvasView::onWidget(const QRect &pixels) const
{
    const double device = devicePixelRatioF();
    const QRectF part(QPointF(pixels.topLeft()) / device, QSizeF(pixels.size()) / device);
    return pixels.isEmpty() ? QRect() : part.translated(frameRect().topLeft()).toAlignedRect();
}

void CanvasView::drawGround(const QRectF &frame)
{
    const double device = devicePixelRatioF();
    if (!m_ground.isNull() && m_groundFrame == frame && m_groundTheme == &theme() &&
        m_ground.size() == size() * device) {
        return;
    }
    m_ground = QPixmap(size() * device);
    m_ground.setDevicePixelRatio(device);
    m_ground.fill(theme().canvas);
    QPainter painter(&m_ground);
    drawShadow(painter, frame, 0, Elevation::Frame);
    m_groundFrame = frame;
    m_groundTheme = &theme();
}

void CanvasView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const QRectF frame = frameRect();
    if (frame.isEmpty()) {
        painter.fillRect(event->rect(), theme().canvas);
        return;
    }
    if (!QRegion(drawFrame()).subtracted(event->region()).isEmpty()) {
        update(); // new pictures have come in between
    }
    drawGround(frame);
    const double device = devicePixelRatioF();
    for (const QRect &part : event->region()) {
        if (!frame.contains(part)) {
            painter.drawPixmap(QRectF(part), m_ground,
                               QRectF(QPointF(part.topLeft()) * device, QSizeF(part.size()) * device));
        }
    }
    painter.drawImage(frame, m_live.image());
    const double pixel = 1 / devicePixelRatioF();
    Paint::outline(painter, frame.adjusted(-pixel, -pixel, pixel, pixel), 0, theme().rim, pixel);
    if (m_context.model.previews().photo.isNull()) {
        paintLoading(painter, frame);
    }
    if (const QList<FramePicture> &missing = m_context.model.previews().missing; !missing.isEmpty()) {
        CanvasMarks::paintNotice(painter, frame, missingPicture(missing.first()));
    }
    CanvasMarks::paintPlaceholders(painter, m_context.model.current()->settings, frame, m_live.image(),
                                   CanvasMarks::Naming::Full);
    paintGuides(painter, frame);
    paintSelection(painter, frame);
    m_marks = marksRect();
    m_guides = shownGuides();
    if (hasFocus() && keyboardFocusVisible() && !m_state.selectedLayer()) {
        Paint::outline(painter, frame.adjusted(-6, -6, 6, 6), 4, theme().accent, 2);
    }
}

void CanvasView::paintLoading(QPainter &painter, const QRectF &frame)
{
    const PhotoItem *photo = m_context.model.current();
    if (!m_context.thumbnails.unreadable(photo->file)) {
        return;
    }
    constexpr int size = 20;
    Icons::draw(painter, "warn", frame.center() - QPointF(size / 2.0, size / 2.0), size,
                Theme::light().danger);
}

void CanvasView::paintGuides(QPainter &painter, const QRectF &frame) const
{
    if (m_gestures.guidesVisible()) {
        CanvasMarks::paintGuides(painter, frame, m_gestures.snap());
    }
}

std::optional<QRectF> CanvasView::layerBox() const
{
    const PhotoItem *photo = m_context.model.current();
    const std::optional<QString> &id = m_state.selectedLayer();
    const TextLayer *layer = photo && id ? photo->settings.layer(*id) : nullptr;
    const QRectF frame = frameRect();
    if (!layer || !layer->visible || frame.isEmpty()) {
        return {};
    }
    return CompositionRenderer::textRect(Placeholders::shown(*layer, frame.size()), frame.size())
        .translated(frame.topLeft());
}

QTransform CanvasView::layerTransform(const QRectF &box) const
{
    const TextLayer &layer = *m_context.model.current()->settings.layer(*m_state.selectedLayer());
    QTransform turned;
    turned.translate(box.center().x(), box.center().y());
    turned.rotate(layer.rotation.value_or(0));
    turned.translate(-box.center().x(), -box.center().y());
    return turned;
}

void CanvasView::paintSelection(QPainter &painter, const QRectF &) const
{
    if (const std::optional<QRectF> box = layerBox()) {
        painter.save();
        painter.setTransform(layerTransform(*box), true);
        CanvasMarks::paintSelection(painter, *box, hasFocus() && keyboardFocusVisible());
        painter.restore();
    }
}

void CanvasView::resizeEvent(QResizeEvent *event)
{
    redraw();
    QWidget::resizeEvent(event);
}

void CanvasView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        showState();
    }
    QWidget::changeEvent(event);
}

void CanvasView::focusInEvent(QFocusEvent *event)
{
    update();
    QWidget::focusInEvent(event);
}

void CanvasView::focusOutEvent(QFocusEvent *event)
{
    update();
    QWidget::focusOutEvent(event);
}

} // namespace tarnovel::app
