#include "model/FrameSettingsJson.h"

#include <array>
#include <utility>

namespace tarnovel {

namespace {

/// Far above what a frame holds, and quickly read and laid out.
constexpr size_t mostLayers = 1'000;
constexpr qsizetype longestText = 100'000;

template<typename Case, std::size_t Count>
using CaseNames = std::array<std::pair<Case, const char *>, Count>;

constexpr CaseNames<CanvasPreset, 6> presetCases = {{{CanvasPreset::red, "red"},
                                                     {CanvasPreset::instagram, "instagram"},
                                                     {CanvasPreset::square, "square"},
                                                     {CanvasPreset::story, "story"},
                                                     {CanvasPreset::original, "original"},
                                                     {CanvasPreset::custom, "custom"}}};
constexpr CaseNames<Backdrop, 4> backdropCases = {{{Backdrop::solid, "solid"},
                                                   {Backdrop::gradient, "gradient"},
                                                   {Backdrop::blur, "blur"},
                                                   {Backdrop::image, "image"}}};
constexpr CaseNames<FrameStyle, 4> styleCases = {{{FrameStyle::simple, "simple"},
                                                  {FrameStyle::instant, "instant"},
                                                  {FrameStyle::film, "film"},
                                                  {FrameStyle::cinema, "cinema"}}};

template<typename Case, std::size_t Count>
const char *nameOf(Case value, const CaseNames<Case, Count> &names)
{
    for (const auto &[each, name] : names) {
        if (each == value) {
            return name;
        }
    }
    return "";
}

template<typename Case, std::size_t Count>
QStringList listed(const CaseNames<Case, Count> &names)
{
    QStringList list;
    for (const auto &[each, name] : names) {
        list.append(QLatin1StringView(name));
    }
    return list;
}

template<typename Case, std::size_t Count>
Case caseFrom(const JsonReader &reader, const CaseNames<Case, Count> &names)
{
    const QString text = reader.text();
    std::string known;
    for (const auto &[value, name] : names) {
        if (text == QLatin1StringView(name)) {
            return value;
        }
        known += (known.empty() ? "" : ", ") + std::string(name);
    }
    reader.fail("expected one of " + known);
}

void put(Json &object, const char *key, const std::optional<double> &value)
{
    if (value) {
        object[key] = *value;
    }
}

void put(Json &object, const char *key, const std::optional<QString> &value)
{
    if (value) {
        object[key] = jsonText(*value);
    }
}

Json toJson(const Ink &ink)
{
    return Json{{"r", ink.r}, {"g", ink.g}, {"b", ink.b}};
}

Json toJson(const TextLayer &layer)
{
    Json object;
    object["id"] = jsonText(layer.id);
    object["text"] = jsonText(layer.text);
    object["visible"] = layer.visible;
    object["x"] = layer.x;
    object["y"] = layer.y;
    put(object, "imageFile", layer.imageFile);
    put(object, "imageAspect", layer.imageAspect);
    object["size"] = layer.size;
    object["ink"] = toJson(layer.ink);
    put(object, "rotation", layer.rotation);
    put(object, "fontStyle", layer.fontStyle);
    return object;
}

Ink inkFrom(const JsonReader &reader)
{
    return {reader.member("r").number(), reader.member("g").number(), reader.member("b").number()};
}

TextLayer layerFrom(const JsonReader &reader)
{
    TextLayer layer;
    layer.id = reader.member("id").text();
    layer.text = reader.member("text").text(longestText);
    layer.visible = reader.member("visible").boolean();
    layer.x = reader.member("x").number();
    layer.y = reader.member("y").number();
    layer.imageFile = reader.optionalText("imageFile");
    layer.imageAspect = reader.optionalNumber("imageAspect");
    layer.size = reader.member("size").number();
    layer.ink = inkFrom(reader.member("ink"));
    layer.rotation = reader.optionalNumber("rotation");
    layer.fontStyle = reader.optionalText("fontStyle");
    return layer;
}

FilmOptions filmFrom(const JsonReader &reader)
{
    FilmOptions film;
    film.stock = reader.member("stock").text();
    if (const auto format = reader.optionalMember("format")) {
        const auto known = filmFormatFromName(format->text());
        if (!known) {
            format->fail("expected one of mm35, medium645, medium66, medium67, medium69");
        }
        film.format = *known;
    }
    film.perforations = reader.member("perforations").boolean();
    film.light = reader.member("light").boolean();
    film.showsNumber = reader.member("showsNumber").boolean();
    film.number = reader.member("number").integer();
    film.topLabel = reader.optionalText("topLabel");
    film.bottomLabel = reader.optionalText("bottomLabel");
    return film;
}

} // namespace

QStringList canvasPresetNames()
{
    return listed(presetCases);
}

QStringList backdropNames()
{
    return listed(backdropCases);
}

QStringList frameStyleNames()
{
    return listed(styleCases);
}

Json toJson(const FilmOptions &options)
{
    Json object;
    object["stock"] = jsonText(options.stock);
    object["format"] = jsonText(filmFormatName(options.format));
    object["perforations"] = options.perforations;
    object["light"] = options.light;
    object["showsNumber"] = options.showsNumber;
    object["number"] = options.number;
    put(object, "topLabel", options.topLabel);
    put(object, "bottomLabel", options.bottomLabel);
    return object;
}

Json toJson(const FrameSettings &settings)
{
    Json object;
    object["preset"] = nameOf(settings.preset, presetCases);
    object["customWidth"] = settings.customWidth;
    object["customHeight"] = settings.customHeight;
    object["scale"] = settings.scale;
    object["x"] = settings.x;
    object["y"] = settings.y;
    object["lockX"] = settings.lockX;
    object["lockY"] = settings.lockY;
    object["background"] = nameOf(settings.background, backdropCases);
    object["color"] = toJson(settings.color);
    object["secondColor"] = toJson(settings.secondColor);
    put(object, "backgroundFile", settings.backgroundFile);
    object["style"] = nameOf(settings.style, styleCases);
    object["border"] = settings.border;
    object["borderColor"] = toJson(settings.borderColor);
    if (settings.film) {
        object["film"] = toJson(*settings.film);
    }
    put(object, "templateID", settings.templateID);
    put(object, "handwritingFile", settings.handwritingFile);
    put(object, "handwritingAspect", settings.handwritingAspect);
    put(object, "handwritingX", settings.handwritingX);
    put(object, "handwritingY", settings.handwritingY);
    put(object, "handwritingWidth", settings.handwritingWidth);
    object["layers"] = Json::array();
    for (const TextLayer &layer : settings.layers) {
        object["layers"].push_back(toJson(layer));
    }
    return object;
}

FrameSettings frameSettingsFromJson(const JsonReader &reader)
{
    FrameSettings settings;
    settings.preset = caseFrom(reader.member("preset"), presetCases);
    settings.customWidth = reader.member("customWidth").number();
    settings.customHeight = reader.member("customHeight").number();
    settings.scale = reader.member("scale").number();
    settings.x = reader.member("x").number();
    settings.y = reader.member("y").number();
    settings.lockX = reader.member("lockX").boolean();
    settings.lockY = reader.member("lockY").boolean();
    settings.background = caseFrom(reader.member("background"), backdropCases);
    settings.color = inkFrom(reader.member("color"));
    settings.secondColor = inkFrom(reader.member("secondColor"));
    settings.backgroundFile = reader.optionalText("backgroundFile");
    settings.style = caseFrom(reader.member("style"), styleCases);
    settings.border = reader.member("border").number();
    settings.borderColor = inkFrom(reader.member("borderColor"));
    if (const auto film = reader.optionalMember("film")) {
        settings.film = filmFrom(*film);
    }
    settings.templateID = reader.optionalText("templateID");
    settings.handwritingFile = reader.optionalText("handwritingFile");
    settings.handwritingAspect = reader.optionalNumber("handwritingAspect");
    settings.handwritingX = reader.optionalNumber("handwritingX");
    settings.handwritingY = reader.optionalNumber("handwritingY");
    settings.handwritingWidth = reader.optionalNumber("handwritingWidth");
    settings.layers.clear();
    const JsonReader layers = reader.member("layers");
    const std::vector<JsonReader> elements = layers.elements();
    if (elements.size() > mostLayers) {
        layers.fail("more than 1000 layers");
    }
    for (const JsonReader &layer : elements) {
        settings.layers.append(layerFrom(layer));
    }
    return settings;
}

namespace {

bool isReadable(const Json &settings)
{
    try {
        frameSettingsFromJson(JsonReader(settings));
        return true;
    } catch (const JsonError &) {
        return false;
    }
}

/// The layers that can be read.
Json readableLayers(const Json &layers)
{
    Json readable = Json::array();
    if (!layers.is_array()) {
        return readable;
    }
    for (const Json &layer : layers) {
        try {
            layerFrom(JsonReader(layer));
            readable.push_back(layer);
        } catch (const JsonError &) {
            continue; // what is left of the others counts
        }
        if (readable.size() == mostLayers) {
            break;
        }
    }
    return readable;
}

} // namespace

FrameSettings salvageFrameSettings(const JsonReader &reader, bool &whole)
{
    const Json &stored = reader.value();
    if (isReadable(stored)) {
        return frameSettingsFromJson(reader);
    }
    whole = false;
    Json known = toJson(FrameSettings());
    known.erase("templateID");
    if (!stored.is_object()) {
        return frameSettingsFromJson(JsonReader(known));
    }
    for (const auto &member : stored.items()) {
        Json tried = known;
        tried[member.key()] = member.value();
        if (isReadable(tried)) {
            known = std::move(tried);
        } else if (member.key() == "layers") {
            known["layers"] = readableLayers(member.value());
        }
    }
    return frameSettingsFromJson(JsonReader(known));
}

} // namespace tarnovel
