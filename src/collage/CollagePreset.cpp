#include "collage/CollagePreset.h"

#include <algorithm>
#include <utility>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr auto horizontal = CollageAxis::Horizontal;
constexpr auto vertical = CollageAxis::Vertical;

/// A frame of 35 mm film and the room to the next: 38 mm along a film that is 35 mm wide.
constexpr double framePitch = 38.0 / 35.0;
constexpr int longestStrip = 6;

CollagePreset preset(const char *id, const Text &title, int count, double aspect, const CollageNode &node)
{
    CollagePreset made;
    made.id = QString::fromLatin1(id);
    made.title = localized(title);
    made.count = count;
    made.aspect = aspect;
    made.node = node;
    return made;
}

CollagePreset spaced(CollagePreset made, double gap, double margin)
{
    made.extraGap = gap;
    made.extraMargin = margin;
    return made;
}

CollageNode leaf(int slot)
{
    return CollageNode::leaf(slot);
}

QList<CollagePreset> forTwo()
{
    const CollageNode beside = CollageNode::split(horizontal, 0.5, leaf(0), leaf(1));
    return {preset("h2", {"左右", "Side by side", "Côte à côte"}, 2, 1, beside),
            preset("v2", {"上下", "Stacked", "Superposé"}, 2, 0.8,
                   CollageNode::split(vertical, 0.5, leaf(0), leaf(1))),
            spaced(preset("book", {"书页对开", "Open book", "Livre ouvert"}, 2, 1.4, beside), 0.07, 0.075)};
}

QList<CollagePreset> forThree()
{
    const auto large = [](CollageAxis axis, double ratio, double second) {
        const CollageAxis across = axis == horizontal ? vertical : horizontal;
        return CollageNode::split(axis, ratio, leaf(0), CollageNode::split(across, second, leaf(1), leaf(2)));
    };
    return {
        preset("h3", {"三联横", "Triptych", "Triptyque"}, 3, 1.25, CollageNode::chain(horizontal, 0, 3)),
        preset("v3", {"三联竖", "Three stacked", "Trois empilées"}, 3, 0.75,
               CollageNode::chain(vertical, 0, 3)),
        preset("big-left", {"一大两小", "One + two", "Un + deux"}, 3, 1, large(horizontal, 0.62, 0.5)),
        preset("big-top", {"上大下小", "Hero + two", "Grande + deux"}, 3, 0.8, large(vertical, 0.62, 0.5)),
        spaced(preset("gallery", {"画廊挂墙", "Gallery wall", "Mur de galerie"}, 3, 1,
                      large(horizontal, 0.56, 0.45)),
               0.06, 0.1)};
}

QList<CollagePreset> forFour()
{
    return {preset("g4", {"田字", "Four", "Quatre"}, 4, 1, CollageNode::gridRows(0, 2, 2)),
            preset("big3", {"一大三小", "One + three", "Un + trois"}, 4, 1,
                   CollageNode::split(horizontal, 0.66, leaf(0), CollageNode::chain(vertical, 1, 3))),
            spaced(preset("label", {"展签", "Exhibit", "Cartel"}, 4, 0.8,
                          CollageNode::split(vertical, 0.72, leaf(0), CollageNode::chain(horizontal, 1, 3))),
                   0.02, 0.06)};
}

CollagePreset grid(int count)
{
    const QList<int> rows = CollagePreset::balancedRows(count);
    const double longest = *std::ranges::max_element(rows);
    return preset("grid", {"宫格", "Grid", "Grille"}, count, longest / static_cast<double>(rows.size()),
                  CollagePreset::rowsNode(rows, 0));
}

} // namespace

QList<int> CollagePreset::balancedRows(int count)
{
    Q_ASSERT(count > 0);
    const int rows = (count + 2) / 3;
    QList<int> cells(rows, count / rows);
    for (int extra = 0; extra < count % rows; ++extra) {
        ++cells[rows - 1 - extra];
    }
    return cells;
}

CollageNode CollagePreset::rowsNode(const QList<int> &rows, int from)
{
    Q_ASSERT(!rows.isEmpty());
    CollageNode row = CollageNode::chain(horizontal, from, rows.first());
    if (rows.size() == 1) {
        return row;
    }
    return CollageNode::split(vertical, 1.0 / static_cast<double>(rows.size()), row,
                              rowsNode(rows.sliced(1), from + rows.first()));
}

QList<CollagePreset> CollagePreset::all(int count)
{
    QList<CollagePreset> list;
    if (count == 2) {
        list = forTwo();
    } else if (count == 3) {
        list = forThree();
    } else if (count == 4) {
        list = forFour();
    } else if (count >= 1) {
        list = {grid(count)};
    }
    if (count == 6) {
        list.append(preset("g6", {"六宫格", "Six", "Six"}, 6, 0.75, CollageNode::gridRows(0, 2, 3)));
    }
    if (count >= 4) {
        list.append(preset("row", {"横向拼接", "Row", "En ligne"}, count, count * 0.75,
                           CollageNode::chain(horizontal, 0, count)));
        list.append(preset("column", {"纵向拼接", "Column", "En colonne"}, count, 1 / (count * 0.75),
                           CollageNode::chain(vertical, 0, count)));
    }
    if (count >= 1 && count <= longestStrip) {
        list.append(preset("filmstrip", {"胶片长条", "Film strip", "Bande film"}, count, count * framePitch,
                           CollageNode::chain(horizontal, 0, count)));
        list.last().film = true;
    }
    return list;
}

CollagePreset CollagePreset::best(const QList<QSizeF> &photos)
{
    const auto isLandscape = [](QSizeF photo) { return photo.width() > photo.height(); };
    const auto landscapes = std::ranges::count_if(photos, isLandscape);
    QString id = u"grid"_s;
    if (photos.size() == 2) {
        id = landscapes == 2 ? u"v2"_s : u"h2"_s;
    } else if (photos.size() == 3) {
        const QString mixed = isLandscape(photos.first()) ? u"big-top"_s : u"big-left"_s;
        id = landscapes == 3 ? u"v3"_s : landscapes == 0 ? u"h3"_s : mixed;
    } else if (photos.size() == 4) {
        id = u"g4"_s;
    }
    const QList<CollagePreset> presets = all(static_cast<int>(photos.size()));
    const auto found = std::ranges::find(presets, id, &CollagePreset::id);
    return found == presets.end() ? presets.value(0) : *found;
}

namespace {

constexpr std::array<std::pair<CollageAspect, const char *>, 5> aspectNames = {
    {{CollageAspect::preset, "preset"},
     {CollageAspect::square, "square"},
     {CollageAspect::portrait45, "portrait45"},
     {CollageAspect::portrait34, "portrait34"},
     {CollageAspect::story, "story"}}};

} // namespace

double aspectValue(CollageAspect aspect, const CollagePreset &preset)
{
    switch (aspect) {
    case CollageAspect::preset:
        return preset.aspect;
    case CollageAspect::square:
        return 1;
    case CollageAspect::portrait45:
        return 0.8;
    case CollageAspect::portrait34:
        return 0.75;
    case CollageAspect::story:
        return 0.5625;
    }
    return 1;
}

QString collageAspectName(CollageAspect aspect)
{
    return QString::fromLatin1(
        std::ranges::find(aspectNames, aspect, &std::pair<CollageAspect, const char *>::first)->second);
}

std::optional<CollageAspect> collageAspectFromName(const QString &name)
{
    const auto found = std::ranges::find_if(
        aspectNames, [&name](const auto &each) { return name == QLatin1StringView(each.second); });
    return found == aspectNames.end() ? std::nullopt : std::optional(found->first);
}

} // namespace tarnovel
