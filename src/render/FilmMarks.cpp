#include "render/FilmMarks.h"

#include <cmath>

#include <QPainter>

#include "render/DevicePatch.h"

namespace tarnovel::FilmMarks {

namespace {

constexpr double holeRadiusMm = 0.51;
constexpr double holeRimMm = 0.035;

/// How far the shade around a hole in a light base reaches.
constexpr double holeShadeMm = 0.06;

/// The arrow's length and half height; 35 mm and 120 film share the mark.
constexpr double arrowLengthMm = 0.48;
constexpr double arrowHalfHeightMm = 0.312;

QColor grey(float value, float alpha = 1)
{
    return QColor::fromRgbF(value, value, value, alpha);
}

} // namespace

QColor baseColor(bool light)
{
    return light ? grey(0.92F) : QColor::fromRgbF(0.026F, 0.024F, 0.022F);
}

QColor printColor(bool light)
{
    return light ? grey(0.16F) : QColor::fromRgbF(0.77F, 0.65F, 0.38F, 0.92F);
}

void drawHole(QPainter &painter, QPointF corner, bool light)
{
    const QTransform transform = painter.deviceTransform();
    const double pixelsPerMm = std::sqrt(std::abs(transform.determinant()));
    if (light) {
        const QRectF shade =
            QRectF(corner, holeMm).adjusted(-holeShadeMm, -holeShadeMm, holeShadeMm, holeShadeMm);
        drawRimmedRect(painter, {transform.mapRect(shade), (holeRadiusMm + holeShadeMm) * pixelsPerMm,
                                 grey(0.68F), grey(0.68F), 0});
    }
    drawRimmedRect(painter, {transform.mapRect(QRectF(corner, holeMm)), holeRadiusMm * pixelsPerMm,
                             grey(0.99F), grey(0.72F, 0.25F), holeRimMm * pixelsPerMm});
}

QPolygonF arrow(double backX, double middleY)
{
    return {{{backX, middleY - arrowHalfHeightMm},
             {backX + arrowLengthMm, middleY},
             {backX, middleY + arrowHalfHeightMm}}};
}

} // namespace tarnovel::FilmMarks
