#pragma once

#include <vector>

#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QString>

#include "film/FilmOptions.h"

class QColor;
class QPainter;

namespace tarnovel {

/// One text exposed on the rebate. Millimetres of film, x along it.
struct FilmEdgeText {
    QString text;
    /// The top left of the text's row.
    QPointF at;
    /// Font size, and the height of the row: capitals stand in its middle.
    double sizeMm = 1;
    /// A wider text is shrunk as a whole until it is this wide, and stays in the middle of its row.
    double widestMm = 1;
    /// Taller ink shrinks the text in the same way until it stays between these two, across the film.
    double stripTop = -1e6;
    double stripBottom = 1e6;
};

/// What is printed along the edges of one frame.
///
/// Decisions, as real rolls look:
/// - Without frame numbers go the numbers, the counters, the arrows, and the "1A" that 35 mm film carries by
///   itself between two numbers. The marking stays, and so does a text that the user typed.
/// - Kodak and Eastman 120 film does not count the frames of one camera: its edges carry a ruler of sixteen
///   steps from 41 and one of twelve from 1, good for any frame size. The sixteen stand beside the marking,
///   the twelve on the opposite edge. Every other maker's 120 film shows the plain frame number in both
///   places.
/// - 35 mm film points an arrow at each half frame; 120 film only has one on a light base, on the lower edge.
struct FilmEdgePrint {
    std::vector<FilmEdgeText> texts;
    /// Solid triangles.
    std::vector<QPolygonF> arrows;

    static FilmEdgePrint print(const FilmOptions &options);

    /// The text of the lower edge when the user typed none: "1A" on 35 mm, "120" on roll film.
    static QString automaticBottomLabel(const FilmOptions &options);
};

/// The first 40 characters as a reader counts them. Line breaks and tabs become blanks; what would turn the
/// text around and accents beyond reading are left out.
QString edgeLabel(const QString &text);

/// The rectangle that a text's advance takes on the film, in millimetres.
QRectF edgeTextRect(const FilmEdgeText &text);

/// Draws texts and arrows in a painter whose unit is the millimetre of film.
void drawFilmEdge(QPainter &painter, const FilmEdgePrint &edge, const QColor &print);

} // namespace tarnovel
