#include "collage/FilmStripDecor.h"

#include <algorithm>

#include <QPainter>

#include "film/FilmStockCatalog.h"
#include "render/FilmEdgePrint.h"
#include "render/FilmMarks.h"

namespace tarnovel::FilmStripDecor {

namespace {

/// The strip's height stands for the width of 35 mm film.
constexpr double filmWidthMm = 35;
/// The first perforations' left edges.
constexpr double firstHoleMm = 1.4;
/// A shorter piece has no perforations: not even one hole would be whole.
constexpr double shortestPerforatedMm = 3.381;

void drawPerforations(QPainter &painter, double lengthMm)
{
    if (lengthMm <= shortestPerforatedMm) {
        return;
    }
    for (double x = firstHoleMm; x + FilmMarks::holeMm.width() < lengthMm; x += FilmMarks::pitchMm) {
        FilmMarks::drawHole(painter, {x, FilmMarks::holeInsetMm}, false);
        FilmMarks::drawHole(painter, {x, filmWidthMm - FilmMarks::holeInsetMm - FilmMarks::holeMm.height()},
                            false);
    }
}

/// A text that stays between the strip's edge and the perforations beside it.
FilmEdgeText edgeText(const QString &text, QPointF at, double sizeMm, double widestMm)
{
    const bool upper = at.y() < filmWidthMm / 2;
    FilmEdgeText made;
    made.text = text;
    made.at = at;
    made.sizeMm = sizeMm;
    made.widestMm = widestMm;
    made.stripTop = upper ? 0 : filmWidthMm - FilmMarks::holeInsetMm;
    made.stripBottom = upper ? FilmMarks::holeInsetMm : filmWidthMm;
    return made;
}

FilmEdgePrint framePrint(const FilmEdge &edge, double x, int frameNumber)
{
    const QString number = QString::number(frameNumber);
    const QString marking = edgeLabel(FilmStockCatalog::printableLabel(edge.stock, edge.topText));
    FilmEdgePrint print;
    print.arrows.push_back(FilmMarks::arrow(x + 4.12, 0.82));
    print.texts.push_back(edgeText(marking, {x + 5.6, 0.2}, 1.1, 29));
    if (edge.showsNumbers) {
        print.texts.push_back(edgeText(number, {x + 0.3, 0.18}, 1.25, 3.2));
        print.texts.push_back(edgeText(number, {x + 2.2, 33.6}, 1.1, 3.2));
        print.arrows.push_back(FilmMarks::arrow(x + 19.4, 34.22));
        print.texts.push_back(edgeText(number + u'A', {x + 20.2, 33.6}, 1.1, 5));
    }
    return print;
}

} // namespace

QColor base()
{
    return FilmMarks::baseColor(false);
}

void draw(QPainter &painter, QSizeF size, const QList<QRectF> &frames, const FilmEdge &edge)
{
    const double unit = size.height() / filmWidthMm;
    if (!(unit > 0)) {
        return;
    }
    QList<double> lefts;
    for (const QRectF &frame : frames) {
        lefts.append(frame.x() / unit);
    }
    std::ranges::sort(lefts);
    painter.save();
    painter.scale(unit, unit);
    drawPerforations(painter, size.width() / unit);
    for (int index = 0; const double left : lefts) {
        drawFilmEdge(painter, framePrint(edge, left, edge.startNumber + index), FilmMarks::printColor(false));
        ++index;
    }
    painter.restore();
}

} // namespace tarnovel::FilmStripDecor
