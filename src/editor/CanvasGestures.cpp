#include "editor/CanvasGestures.h"

#include <algorithm>
#include <cmath>

#include <QTransform>
#include <QUuid>

#include "editor/EditorModel.h"
#include "editor/EditorRules.h"
#include "render/CompositionRenderer.h"
#include "render/FrameGeometry.h"

namespace tarnovel {

namespace {

/// How near the centre pulls, as a fraction of the canvas.
constexpr double snapDistance = 0.012;
constexpr double nearestToEdge = 0.02;
constexpr double smallestTarget = 28;

/// What a gesture moves: a photo, or a layer of one.
QString target(const QUuid &photo, const QString &layerId = {})
{
    return photo.toString() + layerId;
}

/// Past half the canvas a photo does not move any more; what lay beyond would have to be dragged back unseen.
double heldInCanvas(double value)
{
    return std::clamp(value, -0.5, 0.5);
}

double heldPhoto(double value)
{
    return heldInCanvas(FrameGeometry::snap(value, snapDistance));
}

double heldText(double value)
{
    return std::clamp(value, nearestToEdge, 1 - nearestToEdge);
}

/// A translation in canvas units that means something.
bool isFinite(QPointF translation, QSizeF canvas)
{
    return canvas.width() > 0 && canvas.height() > 0 && std::isfinite(translation.x()) &&
           std::isfinite(translation.y());
}

} // namespace

bool CanvasGestures::over(bool begun, const QString &target) const
{
    return begun && m_target == target && m_model.steps() != m_stepsThen;
}

void CanvasGestures::begin(const QString &target)
{
    m_target = target;
    m_model.checkpoint();
    m_stepsThen = m_model.steps();
}

void CanvasGestures::dragPhoto(QPointF translation, QSizeF canvas)
{
    const PhotoItem *item = m_model.current();
    if (!item || !isFinite(translation, canvas)) {
        return;
    }
    if (over(m_dragStart.has_value(), target(item->id))) {
        return;
    }
    if (!m_dragStart || m_target != target(item->id)) {
        begin(target(item->id));
        m_dragStart = QPointF(item->settings.x, item->settings.y);
        m_guidesVisible = true;
    }
    FrameSettings settings = item->settings;
    // An axis that is kept centred does not move unseen, to jump when it is let go.
    if (!settings.lockX) {
        settings.x = heldPhoto(m_dragStart->x() + translation.x() / canvas.width());
    }
    if (!settings.lockY) {
        settings.y = heldPhoto(m_dragStart->y() + translation.y() / canvas.height());
    }
    m_snap = {settings.lockX || settings.x == 0, settings.lockY || settings.y == 0};
    m_model.update(settings);
}

void CanvasGestures::endPhotoDrag()
{
    m_dragStart.reset();
    m_guidesVisible = false;
}

void CanvasGestures::pinchPhoto(double magnification)
{
    const PhotoItem *item = m_model.current();
    if (!item || !std::isfinite(magnification)) {
        return;
    }
    if (over(m_pinchStart.has_value(), target(item->id))) {
        return;
    }
    if (!m_pinchStart || m_target != target(item->id)) {
        begin(target(item->id));
        m_pinchStart = item->settings.scale;
    }
    FrameSettings settings = item->settings;
    settings.scale = std::clamp(*m_pinchStart * magnification, 0.1, 1.0);
    m_model.update(settings);
}

void CanvasGestures::endPinch()
{
    m_pinchStart.reset();
}

void CanvasGestures::moveText(const QString &layerId, QPointF position)
{
    FrameSettings settings = m_model.current()->settings;
    TextLayer *layer = settings.layer(layerId);
    layer->x = position.x();
    layer->y = position.y();
    m_model.update(settings);
}

void CanvasGestures::dragText(const QString &layerId, QPointF translation, QSizeF canvas)
{
    const PhotoItem *item = m_model.current();
    const TextLayer *layer = item ? item->settings.layer(layerId) : nullptr;
    if (!layer || !isFinite(translation, canvas)) {
        return;
    }
    if (over(m_textStart.has_value(), target(item->id, layerId))) {
        return;
    }
    if (!m_textStart || m_target != target(item->id, layerId)) {
        begin(target(item->id, layerId));
        m_textStart = QPointF(layer->x, layer->y);
        m_guidesVisible = true;
    }
    const auto moved = [](double value) {
        return std::abs(value - 0.5) < snapDistance ? 0.5 : heldText(value);
    };
    const QPointF position(moved(m_textStart->x() + translation.x() / canvas.width()),
                           moved(m_textStart->y() + translation.y() / canvas.height()));
    m_snap = {position.x() == 0.5, position.y() == 0.5};
    moveText(layerId, position);
}

void CanvasGestures::endTextDrag()
{
    m_textStart.reset();
    m_guidesVisible = false;
}

void CanvasGestures::scaleText(const QString &layerId, double magnification)
{
    const PhotoItem *item = m_model.current();
    const TextLayer *layer = item ? item->settings.layer(layerId) : nullptr;
    if (!layer || !std::isfinite(magnification)) {
        return;
    }
    if (over(m_textSizeStart.has_value(), target(item->id, layerId))) {
        return;
    }
    if (!m_textSizeStart || m_target != target(item->id, layerId)) {
        begin(target(item->id, layerId));
        m_textSizeStart = layer->size;
    }
    FrameSettings settings = item->settings;
    settings.layer(layerId)->size =
        std::clamp(*m_textSizeStart * magnification, LayerLimits::smallest, LayerLimits::largest);
    m_model.update(settings);
}

void CanvasGestures::rotateText(const QString &layerId, double degrees)
{
    const PhotoItem *item = m_model.current();
    if (!item || !item->settings.layer(layerId) || !std::isfinite(degrees)) {
        return;
    }
    if (over(m_rotating, target(item->id, layerId))) {
        return;
    }
    if (!m_rotating || m_target != target(item->id, layerId)) {
        begin(target(item->id, layerId));
        m_rotating = true;
    }
    constexpr double rightAngle = 90;
    const double nearest = std::round(degrees / rightAngle) * rightAngle;
    const double held =
        std::abs(degrees - nearest) < LayerLimits::rotationSnap ? nearest : std::round(degrees);
    FrameSettings settings = item->settings;
    settings.layer(layerId)->rotation = std::remainder(held, 360);
    m_model.update(settings);
}

void CanvasGestures::nudge(const std::optional<QString> &layerId, QPointF fractions, Nudge kind)
{
    const PhotoItem *item = m_model.current();
    if (!item || !isFinite(fractions, {1, 1})) {
        return;
    }
    FrameSettings settings = item->settings;
    if (TextLayer *layer = layerId ? settings.layer(*layerId) : nullptr) {
        layer->x = heldText(layer->x + fractions.x());
        layer->y = heldText(layer->y + fractions.y());
    } else if (!layerId) {
        settings.x = settings.lockX ? settings.x : heldInCanvas(settings.x + fractions.x());
        settings.y = settings.lockY ? settings.y : heldInCanvas(settings.y + fractions.y());
    }
    if (settings == item->settings) {
        return;
    }
    if (kind == Nudge::Step || m_model.steps() != m_stepsThen) {
        m_model.checkpoint();
        m_stepsThen = m_model.steps();
    }
    m_model.update(settings);
}

std::optional<QString> CanvasGestures::layerAt(const FrameSettings &settings, QPointF position, QSizeF canvas)
{
    for (auto layer = settings.layers.crbegin(); layer != settings.layers.crend(); ++layer) {
        if (!layer->visible) {
            continue;
        }
        QRectF target = CompositionRenderer::textRect(Placeholders::shown(*layer, canvas), canvas);
        const double growX = std::max(0.0, smallestTarget - target.width()) / 2;
        const double growY = std::max(0.0, smallestTarget - target.height()) / 2;
        target.adjust(-growX, -growY, growX, growY);
        QTransform turned;
        turned.translate(target.center().x(), target.center().y());
        turned.rotate(-layer->rotation.value_or(0));
        turned.translate(-target.center().x(), -target.center().y());
        if (target.contains(turned.map(position))) {
            return layer->id;
        }
    }
    return std::nullopt;
}

} // namespace tarnovel
