#include "cli/StyleFields.h"

#include <algorithm>

#include "cli/Console.h"
#include "cli/ListCommands.h"
#include "film/FilmOptions.h"
#include "model/FrameSettingsJson.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

using Type = StyleField::Type;

const QString layerStep = u"layers."_s;
const QString anyLayer = u"layers.ID."_s;

/// The value at a dotted path of a record; null where there is none.
Json valueAt(const Json &record, const QString &path)
{
    const Json *place = &record;
    for (const QString &step : path.split(u'.')) {
        const auto found = place->find(step.toStdString());
        if (found == place->end()) {
            return nullptr;
        }
        place = &*found;
    }
    return *place;
}

QStringList filmFormats()
{
    QStringList names;
    for (const FilmFormat format : tarnovel::filmFormats) {
        names.append(filmFormatName(format));
    }
    return names;
}

std::vector<StyleField> canvasFields()
{
    return {
        {u"preset"_s, Type::Choice, {}, {}, canvasPresetNames()},
        {u"customWidth"_s, Type::Number},
        {u"customHeight"_s, Type::Number},
        {u"scale"_s, Type::Number, 0.1, 1},
        {u"x"_s, Type::Number},
        {u"y"_s, Type::Number},
        {u"lockX"_s, Type::Boolean},
        {u"lockY"_s, Type::Boolean},
        {u"background"_s, Type::Choice, {}, {}, backdropNames()},
        {u"color"_s, Type::Color},
        {u"secondColor"_s, Type::Color},
        {u"backgroundFile"_s, Type::Text, {}, {}, {}, true},
        {u"style"_s, Type::Choice, {}, {}, frameStyleNames()},
        {u"border"_s, Type::Number, 0},
        {u"borderColor"_s, Type::Color},
    };
}

std::vector<StyleField> filmFields()
{
    return {
        {u"film.stock"_s, Type::Text},
        {u"film.format"_s, Type::Choice, {}, {}, filmFormats()},
        {u"film.perforations"_s, Type::Boolean},
        {u"film.light"_s, Type::Boolean},
        {u"film.showsNumber"_s, Type::Boolean},
        {u"film.number"_s, Type::Integer},
        {u"film.topLabel"_s, Type::Text, {}, {}, {}, true},
        {u"film.bottomLabel"_s, Type::Text, {}, {}, {}, true},
    };
}

std::vector<StyleField> signatureFields()
{
    return {
        {u"templateID"_s, Type::Text, {}, {}, {}, true},
        {u"handwritingFile"_s, Type::Text, {}, {}, {}, true},
        {u"handwritingAspect"_s, Type::Number, 0.1, {}, {}, true},
        {u"handwritingX"_s, Type::Number, {}, {}, {}, true},
        {u"handwritingY"_s, Type::Number, {}, {}, {}, true},
        {u"handwritingWidth"_s, Type::Number, {}, {}, {}, true},
    };
}

std::vector<StyleField> layerFields()
{
    std::vector<StyleField> fields = {
        {u"id"_s, Type::Text},
        {u"text"_s, Type::Text},
        {u"visible"_s, Type::Boolean},
        {u"x"_s, Type::Number},
        {u"y"_s, Type::Number},
        {u"imageFile"_s, Type::Text, {}, {}, {}, true},
        {u"imageAspect"_s, Type::Number, {}, {}, {}, true},
        {u"size"_s, Type::Number},
        {u"ink"_s, Type::Color},
        {u"rotation"_s, Type::Number, {}, {}, {}, true},
        {u"fontStyle"_s, Type::Text, {}, {}, {}, true},
    };
    // What a layer holds unless its place says otherwise.
    const Json layer = toJson(FrameSettings())["layers"].front();
    for (StyleField &field : fields) {
        const bool differs = QStringList{u"id"_s, u"y"_s, u"size"_s}.contains(field.path);
        field.byDefault = differs ? Json() : valueAt(layer, field.path);
        field.path = anyLayer + field.path;
    }
    return fields;
}

/// A colour's parts can be set alone.
void append(std::vector<StyleField> &fields, const std::vector<StyleField> &more)
{
    for (const StyleField &field : more) {
        fields.push_back(field);
        if (field.type == Type::Color) {
            for (const char *part : {"r", "g", "b"}) {
                StyleField component{field.path + u'.' + QString::fromLatin1(part), Type::Number, 0, 1};
                if (field.byDefault.is_object()) {
                    component.byDefault = field.byDefault[part];
                }
                fields.push_back(component);
            }
        }
    }
}

std::vector<StyleField> allFields()
{
    FrameSettings settings;
    settings.film = FilmOptions();
    const Json record = toJson(settings);
    std::vector<StyleField> fields;
    for (std::vector<StyleField> group : {canvasFields(), filmFields(), signatureFields()}) {
        for (StyleField &field : group) {
            field.byDefault = valueAt(record, field.path);
        }
        append(fields, group);
    }
    append(fields, layerFields());
    return fields;
}

QString range(const StyleField &field)
{
    if (!field.choices.isEmpty()) {
        return field.choices.join(u'|');
    }
    if (!field.least && !field.most) {
        return {};
    }
    return (field.least ? QString::number(*field.least) : QString()) + u'…' +
           (field.most ? QString::number(*field.most) : QString());
}

} // namespace

QString StyleField::typeName() const
{
    switch (type) {
    case Type::Text:
        return u"text"_s;
    case Type::Number:
        return u"number"_s;
    case Type::Integer:
        return u"integer"_s;
    case Type::Boolean:
        return u"boolean"_s;
    case Type::Choice:
        return u"choice"_s;
    case Type::Color:
        return u"colour"_s;
    }
    return {};
}

const std::vector<StyleField> &styleFields()
{
    static const std::vector<StyleField> fields = allFields();
    return fields;
}

const StyleField *styleFieldAt(const QString &path)
{
    QString known = path;
    if (path.startsWith(layerStep)) {
        const qsizetype end = path.indexOf(u'.', layerStep.size());
        known = end < 0 ? path : anyLayer + path.mid(end + 1);
    }
    const auto found = std::ranges::find(styleFields(), known, &StyleField::path);
    return found == styleFields().end() ? nullptr : &*found;
}

int runFields(bool json)
{
    QList<QStringList> rows;
    for (const StyleField &field : styleFields()) {
        if (json) {
            Json line{{"path", jsonText(field.path)}, {"type", jsonText(field.typeName())}};
            line["optional"] = field.optional;
            line["default"] = field.byDefault;
            if (field.least) {
                line["minimum"] = *field.least;
            }
            if (field.most) {
                line["maximum"] = *field.most;
            }
            if (!field.choices.isEmpty()) {
                line["choices"] = Json::array();
                for (const QString &choice : field.choices) {
                    line["choices"].push_back(jsonText(choice));
                }
            }
            if (!Console::print(QString::fromUtf8(writeJson(line)))) {
                return 1;
            }
        } else {
            rows.append(
                {field.path, field.typeName(), range(field),
                 field.byDefault.is_null() ? QString() : QString::fromUtf8(writeJson(field.byDefault))});
        }
    }
    return printColumns(rows);
}

} // namespace tarnovel::cli
