#pragma once

#include <array>
#include <optional>

#include <QSizeF>
#include <QString>

#include "collage/CollageNode.h"

namespace tarnovel {

/// A ready-made layout for a number of photos.
struct CollagePreset {
    QString id;
    /// In the language of the moment at which the list was made.
    QString title;
    int count = 0;
    /// Width ÷ height of the collage when no other is chosen.
    double aspect = 1;
    CollageNode node;
    /// The cells are frames of one film strip.
    bool film = false;
    /// Added to the user's gap and outer margin, as fractions of the shorter side.
    double extraGap = 0;
    double extraMargin = 0;
    bool operator==(const CollagePreset &) const = default;

    /// The layouts on offer for `count` photos, in order.
    static QList<CollagePreset> all(int count);
    /// The one that suits these photos, by which of them are wider than tall.
    static CollagePreset best(const QList<QSizeF> &photos);

    /// Rows of equal height with these numbers of cells, which number the slots from `from` on. Not for an
    /// empty list.
    static CollageNode rowsNode(const QList<int> &rows, int from);
    /// `count` cells, at least 1, in rows of three at most; the lower rows take what does not divide evenly.
    static QList<int> balancedRows(int count);
};

/// The collage's shape as the user chooses it.
enum class CollageAspect { preset, square, portrait45, portrait34, story };

constexpr std::array<CollageAspect, 5> collageAspects = {CollageAspect::preset, CollageAspect::square,
                                                         CollageAspect::portrait45, CollageAspect::portrait34,
                                                         CollageAspect::story};

/// Width ÷ height.
double aspectValue(CollageAspect aspect, const CollagePreset &preset);
QString collageAspectName(CollageAspect aspect);
std::optional<CollageAspect> collageAspectFromName(const QString &name);

} // namespace tarnovel
