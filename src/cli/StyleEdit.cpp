#include "cli/StyleEdit.h"

#include <algorithm>

#include <QStringList>

#include "base/Json.h"
#include "cli/Console.h"
#include "cli/StyleFields.h"
#include "language/AppLanguage.h"
#include "model/FrameSettingsJson.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli::StyleEdit {

namespace {

UsageError unknownField(const QString &path)
{
    return {localized({"没有这个字段：", "There is no field ", "Champ inconnu : "}) + path};
}

UsageError unknownLayer(const QString &id)
{
    return {localized({"没有这个图层：", "There is no layer ", "Calque inconnu : "}) + id};
}

/// Enough of an argument to recognise it.
QString shortened(const QString &argument)
{
    constexpr qsizetype enough = 80;
    return argument.size() <= enough ? argument : argument.left(enough) + u'…';
}

struct Assignment {
    QString name;
    QString value;
};

Assignment parted(const QString &assignment, const Text &pattern)
{
    const qsizetype equals = assignment.indexOf(u'=');
    if (equals <= 0) {
        throw UsageError{localized(pattern) + shortened(assignment)};
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

/// Whether every key of `given`, at any depth, is one that the record has at that place.
bool knows(const Json &known, const Json &given)
{
    if (given.is_object()) {
        return std::ranges::all_of(given.items(), [&known](const auto &member) {
            return known.contains(member.key()) && knows(known[member.key()], member.value());
        });
    }
    if (given.is_array()) {
        for (size_t i = 0; i < given.size(); ++i) {
            if (!knows(known[i], given[i])) {
                return false;
            }
        }
    }
    return true;
}

/// JSON, or else a text. What is set to be a text is one, whatever else it looks like.
Json valueFrom(const QString &path, const QString &text)
{
    try {
        const Json value = parseJson(text.toUtf8());
        const StyleField *field = styleFieldAt(path);
        const bool isText = field && field->type == StyleField::Type::Text;
        const bool fits = value.is_string() || (value.is_null() && field && field->optional);
        return isText && !fits ? jsonText(text) : value;
    } catch (const JsonError &) {
        return jsonText(text);
    }
}

} // namespace

void set(FrameSettings &settings, const QString &assignment)
{
    const auto [path, value] = parted(
        assignment, {"--set 应写成 字段=值：", "--set takes PATH=VALUE: ", "--set prend CHAMP=VALEUR : "});
    FrameSettings changed = settings;
    if (path.startsWith(u"film."_s) && !changed.film) {
        changed.film = FilmOptions();
    }
    Json record = complete(changed);
    Json &place = field(record, path);
    place = valueFrom(path, value);
    const Json given = place;
    try {
        settings = frameSettingsFromJson(JsonReader(record));
    } catch (const JsonError &error) {
        throw UsageError{localized({"值的类型不对：", "Wrong kind of value: ", "Valeur du mauvais type : "}) +
                         shortened(assignment) + u" ("_s + QString::fromStdString(error.reason()) + u')'};
    }
    Json known = complete(settings);
    if (!knows(field(known, path), given)) {
        throw UsageError{localized({"值里有未知的字段：",
                                    "Unknown field in the value: ", "Champ inconnu dans la valeur : "}) +
                         shortened(assignment)};
    }
}

void setText(FrameSettings &settings, const QString &assignment)
{
    const auto [id, text] = parted(
        assignment, {"--text 应写成 图层=文字：", "--text takes ID=TEXT: ", "--text prend CALQUE=TEXTE : "});
    TextLayer *layer = settings.layer(id);
    if (!layer) {
        throw unknownLayer(id);
    }
    layer->text = text;
    layer->visible = true;
}

} // namespace tarnovel::cli::StyleEdit
