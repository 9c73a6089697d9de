#pragma once

#include <QColor>
#include <QPointF>
#include <QPolygonF>
#include <QSizeF>

class QPainter;

namespace tarnovel {

/// What single frames and whole strips of film share: its colours, its perforations and the arrow of the edge
/// print. Lengths are millimetres of film.
namespace FilmMarks {

/// Kodak Standard (KS) perforations of 35 mm film, ISO 1007: size, pitch, and distance from the film's edge.
constexpr QSizeF holeMm(1.981, 2.794);
constexpr double pitchMm = 4.75;
constexpr double holeInsetMm = 1.85;

QColor baseColor(bool light);
/// Of texts and arrows exposed on the rebate.
QColor printColor(bool light);

/// A perforation with its top left corner there, in a painter whose unit is the millimetre. Through a light
/// base it would hardly be seen: there it stands in the shade of the film's thickness.
void drawHole(QPainter &painter, QPointF corner, bool light);

/// The small solid triangle that points along the film.
QPolygonF arrow(double backX, double middleY);

} // namespace FilmMarks

} // namespace tarnovel
