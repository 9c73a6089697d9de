#pragma once

#include <map>
#include <optional>

#include <QColor>
#include <QList>
#include <QSize>

#include "collage/CollageCell.h"
#include "collage/CollageGeometry.h"
#include "collage/CollagePreset.h"
#include "collage/FilmStripDecor.h"

class QPainter;

namespace tarnovel {

/// Everything that decides how a collage looks, at any size.
struct CollageDesign {
    CollagePreset preset;
    /// The preset's tree, with the ratios that the user dragged.
    CollageNode node;
    QList<CollageCell> cells;
    CollageAspect aspect = CollageAspect::preset;
    /// Fractions of the shorter side, which the preset's extras are added to.
    double gap = 0.02;
    double margin = 0.03;
    double radius = 0;
    QColor background = Qt::white;
    FilmEdge filmEdge;

    /// The preset with plain cells for these photos.
    static CollageDesign of(const CollagePreset &preset, const QList<QUuid> &photos);
    bool operator==(const CollageDesign &) const = default;
};

/// A collage's lengths at one size, in pixels.
struct CollagePlan {
    QSize size;
    QRectF inner;
    double gapPx = 0;
    double radiusPx = 0;
    CollageLayout layout;

    /// The long edge comes back exactly; the short one is cut to whole pixels.
    static CollagePlan of(const CollageDesign &design, int longEdge);
};

/// Draws collages: the board, the layouts' thumbnails and the result are the same function at different
/// sizes.
namespace CollageRenderer {

/// `photoSizes` tells each slot's upright photo size, `images` what has been decoded of it. A slot without an
/// image keeps its paper or the background.
void draw(QPainter &painter, const CollageDesign &design, const CollagePlan &plan,
          const std::map<int, QSizeF> &photoSizes, const std::map<int, PhotoImage> &images);

} // namespace CollageRenderer

} // namespace tarnovel
