#include "cli/StyleEdit.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <QStringList>

#include "base/Json.h"
#include "cli/Console.h"
#include "language/AppLanguage.h"
#include "model/FrameSettingsJson.h"

using namespace Qt::StringLiterals;

namespace tarnovel::StyleEdit {

namespace {

/// Keys that a record may lack.
constexpr std::array<std::string_view, 14> optionalKeys = {
    "backgroundFile", "film",         "templateID",       "handwritingFile", "handwritingAspect",
    "handwritingX",   "handwritingY", "handwritingWidth", "imageFile",       "imageAspect",
    "rotation",       "fontStyle",    "topLabel",         "bottomLabel"};

UsageError unknownField(const QString &path)
{
    return {localized({"没有这个字段：", "There is no field ", "Champ inconnu : "}) + path};
}

UsageError unknownLayer(const QString &id)
{
    return {localized({"没有这个图层：", "There is no layer ", "Calque inconnu : "}) + id};
}

struct Assignment {
    QString name;
    QString value;
};

Assignment parted(const QString &assignment, const QString &option)
{
    const qsizetype equals = assignment.indexOf(u'=');
    if (equals <= 0) {
        throw UsageError{
            localized({"应写成 名称=值：", "Write NAME=VALUE after ", "Écrivez NOM=VALEUR après "}) + option +
            u' ' + assignment};
    }
    return {assignment.left(equals), assignment.mid(equals + 1)};
}

/// A record with every key that it may hold, so that unknown ones can be told from absent ones.
Json complete(const FrameSettings &settings)
{
    Json record = toJson(settings);
    const auto fill = [](Json &object, std::initializer_list<const char *> keys) {
        for (const char *key : keys) {
            if (!object.contains(key)) {
                object[key] = nullptr;
            }
        }
    };
    fill(record, {"backgroundFile", "film", "templateID", "handwritingFile", "handwritingAspect",
                  "handwritingX", "handwritingY", "handwritingWidth"});
    for (Json &layer : record["layers"]) {
        fill(layer, {"imageFile", "imageAspect", "rotation", "fontStyle"});
    }
    if (!record["film"].is_null()) {
        fill(record["film"], {"topLabel", "bottomLabel"});
    }
    return record;
}

Json &layerWithId(Json &layers, const QString &id)
{
    const auto found = std::ranges::find_if(
        layers, [id = id.toStdString()](const Json &layer) { return layer["id"] == id; });
    if (found == layers.end()) {
        throw unknownLayer(id);
    }
    return *found;
}

Json &field(Json &record, const QString &path)
{
    Json *place = &record;
    for (const QString &step : path.split(u'.')) {
        if (place->is_array()) {
            place = &layerWithId(*place, step);
        } else if (place->is_object() && place->contains(step.toStdString())) {
            place = &(*place)[step.toStdString()];
        } else {
            throw unknownField(path);
        }
    }
    return *place;
}

Json valueFrom(const QString &text)
{
    try {
        return parseJson(text.toUtf8());
    } catch (const JsonError &) {
        return jsonText(text);
    }
}

} // namespace

void set(FrameSettings &settings, const QString &assignment)
{
    const auto [path, value] = parted(assignment, u"--set"_s);
    FrameSettings changed = settings;
    if (path.startsWith(u"film."_s) && !changed.film) {
        changed.film = FilmOptions();
    }
    Json record = complete(changed);
    Json &place = field(record, path);
    place = valueFrom(value);
    const QString key = path.section(u'.', -1);
    const bool mayBeAbsent = std::ranges::find(optionalKeys, key.toStdString()) != optionalKeys.end();
    if (place.is_null() && !mayBeAbsent) {
        throw UsageError{
            localized({"此字段不能为空：", "This field needs a value: ", "Ce champ exige une valeur : "}) +
            path};
    }
    try {
        settings = frameSettingsFromJson(JsonReader(record));
    } catch (const JsonError &error) {
        throw UsageError{localized({"值的类型不对：", "Wrong kind of value: ", "Valeur du mauvais type : "}) +
                         assignment + u" ("_s + QString::fromStdString(error.reason()) + u')'};
    }
}

void setText(FrameSettings &settings, const QString &assignment)
{
    const auto [id, text] = parted(assignment, u"--text"_s);
    TextLayer *layer = settings.layer(id);
    if (!layer) {
        throw unknownLayer(id);
    }
    layer->text = text;
    layer->visible = true;
}

} // namespace tarnovel::StyleEdit
