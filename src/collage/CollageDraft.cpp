#include "collage/CollageDraft.h"

#include <algorithm>

#include "base/Json.h"
#include "base/Uuid.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

/// The ratios of the splits, from the root down, the first child before the second.
void writeRatios(const CollageNode &node, Json &ratios)
{
    if (node.axis) {
        ratios.push_back(node.ratio);
        for (const CollageNode &child : node.children) {
            writeRatios(child, ratios);
        }
    }
}

void readRatios(CollageNode &node, const std::vector<JsonReader> &ratios, size_t &next)
{
    if (node.axis && next < ratios.size()) {
        node.ratio = std::clamp(ratios[next++].number(), 0.0, 1.0);
        for (CollageNode &child : node.children) {
            readRatios(child, ratios, next);
        }
    }
}

template<typename Value>
Value known(const JsonReader &reader, std::optional<Value> (*fromName)(const QString &))
{
    const std::optional<Value> value = fromName(reader.text());
    if (!value) {
        reader.fail("unknown");
    }
    return *value;
}

CollageCell cellFrom(const JsonReader &reader, QHash<QUuid, QString> &files)
{
    CollageCell cell;
    const std::optional<QUuid> photo = uuidFromText(reader.member("photo").text());
    if (!photo) {
        reader.member("photo").fail("expected a UUID");
    }
    cell.photo = *photo;
    if (const auto file = reader.optionalText("file")) {
        files.insert(*photo, *file);
    }
    cell.offset = {reader.member("x").number(), reader.member("y").number()};
    cell.zoom = reader.member("zoom").number();
    cell.frame = known(reader.member("frame"), cellFrameFromName);
    return cell;
}

} // namespace

QByteArray writeCollageDraft(const CollageDraft &draft)
{
    const CollageDesign &design = draft.design;
    Json document;
    document["layout"] = jsonText(design.preset.id);
    document["ratios"] = Json::array();
    writeRatios(design.node, document["ratios"]);
    document["cells"] = Json::array();
    for (const CollageCell &cell : design.cells) {
        Json object;
        object["photo"] = jsonText(uuidText(cell.photo));
        if (draft.files.contains(cell.photo)) {
            object["file"] = jsonText(draft.files.value(cell.photo));
        }
        object["x"] = cell.offset.width();
        object["y"] = cell.offset.height();
        object["zoom"] = cell.zoom;
        object["frame"] = jsonText(cellFrameName(cell.frame));
        document["cells"].push_back(std::move(object));
    }
    document["aspect"] = jsonText(collageAspectName(design.aspect));
    document["gap"] = design.gap;
    document["margin"] = design.margin;
    document["radius"] = design.radius;
    document["background"] = jsonText(design.background.name());
    document["film"] = Json{{"stock", jsonText(design.filmEdge.stock)},
                            {"topText", jsonText(design.filmEdge.topText)},
                            {"startNumber", design.filmEdge.startNumber},
                            {"showsNumbers", design.filmEdge.showsNumbers}};
    return writeJson(document);
}

CollageDraft readCollageDraft(const QByteArray &document)
{
    const Json json = parseJson(document);
    const JsonReader reader(json);
    CollageDraft draft;
    CollageDesign &design = draft.design;
    for (const JsonReader &cell : reader.member("cells").elements()) {
        design.cells.append(cellFrom(cell, draft.files));
    }
    const JsonReader layout = reader.member("layout");
    const QList<CollagePreset> presets = CollagePreset::all(static_cast<int>(design.cells.size()));
    const auto preset = std::ranges::find(presets, layout.text(), &CollagePreset::id);
    if (preset == presets.end()) {
        layout.fail("no such layout");
    }
    design.preset = *preset;
    design.node = preset->node;
    size_t next = 0;
    readRatios(design.node, reader.member("ratios").elements(), next);
    design.aspect = known(reader.member("aspect"), collageAspectFromName);
    design.gap = reader.member("gap").number();
    design.margin = reader.member("margin").number();
    design.radius = reader.member("radius").number();
    design.background = QColor(reader.member("background").text());
    if (!design.background.isValid()) {
        reader.member("background").fail("expected a colour");
    }
    const JsonReader film = reader.member("film");
    design.filmEdge = {film.member("stock").text(), film.member("topText").text(1'000),
                       film.member("startNumber").integer(), film.member("showsNumbers").boolean()};
    return draft;
}

} // namespace tarnovel
