#pragma once

#include <QColor>
#include <QList>
#include <QRectF>
#include <QSizeF>
#include <QString>

class QPainter;

namespace tarnovel {

/// What the edge of a film-strip collage says.
struct FilmEdge {
    /// A catalogue row's name, or any film name.
    QString stock = QStringLiteral("Kodak Portra 400");
    /// Empty prints the stock's own marking.
    QString topText;
    /// The number of the left-most frame.
    int startNumber = 1;
    bool showsNumbers = true;
    bool operator==(const FilmEdge &) const = default;
};

/// The rebate of a 35 mm strip round frames that lie side by side.
namespace FilmStripDecor {

/// The dark film base.
QColor base();

/// Draws perforations, markings, numbers and arrows over a strip of this size; `frames` are the cells in any
/// order, which are numbered from left to right.
void draw(QPainter &painter, QSizeF size, const QList<QRectF> &frames, const FilmEdge &edge);

} // namespace FilmStripDecor

} // namespace tarnovel
