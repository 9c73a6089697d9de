#include "collage/CollageRenderer.h"

#include <algorithm>
#include <cmath>

#include <QPainter>
#include <QPainterPath>

namespace tarnovel {

CollageDesign CollageDesign::of(const CollagePreset &preset, const QList<QUuid> &photos)
{
    CollageDesign design;
    design.preset = preset;
    design.node = preset.node;
    for (const QUuid &photo : photos) {
        design.cells.append({photo});
    }
    return design;
}

CollagePlan CollagePlan::of(const CollageDesign &design, int longEdge)
{
    const double ratio = std::max(aspectValue(design.aspect, design.preset), 0.2);
    CollagePlan plan;
    plan.size = ratio < 1 ? QSize(static_cast<int>(longEdge * ratio), longEdge)
                          : QSize(longEdge, static_cast<int>(longEdge / ratio));
    const double shorter = std::min(plan.size.width(), plan.size.height());
    if (design.preset.film) {
        // The output's height is the film's 35 mm; the frames take the 24 mm between the perforations.
        const double unit = plan.size.height() / 35.0;
        plan.inner = {unit, 5.5 * unit, plan.size.width() - 2 * unit, 24 * unit};
        plan.gapPx = 2 * unit;
    } else {
        const double margin = shorter * (design.margin + design.preset.extraMargin);
        plan.inner = QRectF({}, QSizeF(plan.size)).adjusted(margin, margin, -margin, -margin);
        plan.gapPx = shorter * (design.gap + design.preset.extraGap);
        plan.radiusPx = shorter * design.radius;
    }
    plan.layout = CollageGeometry::layout(design.node, plan.inner, plan.gapPx);
    return plan;
}

namespace CollageRenderer {

namespace {

void drawInnerLine(QPainter &painter, const QRectF &window, const QRectF &cell)
{
    // Both lengths come from the cell's width, so that the line is as thick on all sides of one cell.
    const double away = std::max(0.006 * cell.width(), 1.0);
    QPen pen(QColor::fromRgbF(0.15F, 0.15F, 0.15F), std::max(0.004 * cell.width(), 1.0));
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(window.adjusted(-away, -away, away, away));
}

void drawCell(QPainter &painter, const CollageCell &cell, const QRectF &rect, double radius, QSizeF photoSize,
              const PhotoImage *photo)
{
    painter.save();
    if (radius > 0) {
        QPainterPath rounded;
        rounded.addRoundedRect(rect, radius, radius);
        painter.setClipPath(rounded, Qt::IntersectClip);
    }
    if (const auto paper = cellPaper(cell.frame)) {
        const QTransform device = painter.deviceTransform();
        painter.fillRect(
            device.inverted().mapRect(QRectF(CompositionRenderer::devicePixels(device.mapRect(rect)))),
            *paper);
    }
    if (photo) {
        CompositionRenderer::drawPhoto(painter, *photo, cellPlacement(cell, photoSize, rect));
    }
    if (cell.frame == CellFrame::inner) {
        painter.setClipRect(rect, Qt::IntersectClip);
        drawInnerLine(painter, cellPhotoRect(cell.frame, rect), rect);
    }
    painter.restore();
}

} // namespace

void draw(QPainter &painter, const CollageDesign &design, const CollagePlan &plan,
          const std::map<int, QSizeF> &photoSizes, const std::map<int, PhotoImage> &images)
{
    const QRectF whole({}, QSizeF(plan.size));
    painter.save();
    painter.setClipRect(whole, Qt::IntersectClip);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.fillRect(whole, design.preset.film ? FilmStripDecor::base() : design.background);
    QList<QRectF> frames;
    for (const auto &[slot, rect] : plan.layout.cells) {
        if (slot >= design.cells.size()) {
            continue;
        }
        frames.append(rect);
        const auto size = photoSizes.find(slot);
        const auto image = images.find(slot);
        const bool known = size != photoSizes.end() && image != images.end();
        drawCell(painter, design.cells.at(slot), rect, plan.radiusPx, known ? size->second : QSizeF(),
                 known ? &image->second : nullptr);
    }
    if (design.preset.film) {
        FilmStripDecor::draw(painter, plan.size, frames, design.filmEdge);
    }
    painter.restore();
}

} // namespace CollageRenderer

} // namespace tarnovel
