#include "model/Session.h"

#include "base/Json.h"
#include "base/Uuid.h"
#include "model/FrameSettingsJson.h"
#include "model/LibraryPaths.h"

namespace tarnovel {

namespace {

/// No file system takes a file name as long as this.
constexpr qsizetype longestName = 1'000;

QUuid uuidFrom(const JsonReader &reader)
{
    const auto uuid = uuidFromText(reader.text());
    if (!uuid) {
        reader.fail("expected a UUID");
    }
    return *uuid;
}

/// All of a photo but its settings.
PhotoItem unframedPhotoFrom(const JsonReader &reader)
{
    PhotoItem photo;
    photo.id = uuidFrom(reader.member("id"));
    photo.file = reader.member("file").text();
    photo.name = reader.member("name").text(longestName);
    photo.width = reader.member("width").number();
    photo.height = reader.member("height").number();
    return photo;
}

PhotoItem photoFrom(const JsonReader &reader)
{
    PhotoItem photo = unframedPhotoFrom(reader);
    photo.settings = frameSettingsFromJson(reader.member("settings"));
    return photo;
}

SavedPreset presetFrom(const JsonReader &reader)
{
    SavedPreset preset;
    preset.id = uuidFrom(reader.member("id"));
    preset.name = reader.member("name").text(longestName);
    preset.settings = frameSettingsFromJson(reader.member("settings"));
    preset.lastUsed = reader.optionalNumber("lastUsed");
    return preset;
}

std::optional<double> numberOrNone(const JsonReader &reader, const char *key)
{
    const auto member = reader.optionalMember(key);
    return member && member->value().is_number() ? std::optional(member->number()) : std::nullopt;
}

/// The elements of an array member; none where there is no such thing.
std::vector<JsonReader> elementsOf(const Json &object, const char *key)
{
    const auto found = object.is_object() ? object.find(key) : object.end();
    return found == object.end() || !found->is_array() ? std::vector<JsonReader>()
                                                       : JsonReader(*found).elements();
}

} // namespace

void dropForeignFiles(FrameSettings &settings)
{
    const auto check = [](std::optional<QString> &file) {
        if (file && !LibraryPaths::isBareName(*file)) {
            file.reset();
        }
    };
    check(settings.backgroundFile);
    check(settings.handwritingFile);
    for (TextLayer &layer : settings.layers) {
        check(layer.imageFile);
    }
}

std::set<QString> Session::referencedFiles() const
{
    std::set<QString> files;
    for (const PhotoItem &photo : photos) {
        files.insert(photo.file);
        files.merge(photo.settings.referencedFiles());
    }
    for (const SavedPreset &preset : presets) {
        files.merge(preset.settings.referencedFiles());
    }
    if (lastStyle) {
        files.merge(lastStyle->referencedFiles());
    }
    return files;
}

SalvagedSession salvageSession(const Json &document)
{
    SalvagedSession salvaged;
    const auto settingsOf = [&salvaged](const JsonReader &reader) {
        const auto settings = reader.optionalMember("settings");
        bool whole = settings.has_value();
        FrameSettings read = settings ? salvageFrameSettings(*settings, whole) : FrameSettings();
        dropForeignFiles(read);
        read.normalize();
        salvaged.changed += whole ? 0 : 1;
        return read;
    };
    for (const JsonReader &reader : elementsOf(document, "photos")) {
        try {
            PhotoItem photo = unframedPhotoFrom(reader);
            photo.settings = settingsOf(reader);
            salvaged.session.photos.append(photo);
        } catch (const JsonError &) {
            ++salvaged.lostPhotos;
        }
    }
    for (const JsonReader &reader : elementsOf(document, "presets")) {
        try {
            salvaged.session.presets.append({uuidFrom(reader.member("id")),
                                             reader.member("name").text(longestName), settingsOf(reader),
                                             numberOrNone(reader, "lastUsed")});
        } catch (const JsonError &) {
            ++salvaged.lostPresets;
        }
    }
    try {
        const JsonReader reader(document);
        if (const auto style = reader.optionalMember("lastStyle")) {
            bool whole = true;
            salvaged.session.lastStyle = salvageFrameSettings(*style, whole);
            dropForeignFiles(*salvaged.session.lastStyle);
            salvaged.session.lastStyle->normalize();
        }
        if (const auto selected = reader.optionalMember("selected")) {
            salvaged.session.selected = uuidFrom(*selected);
        }
    } catch (const JsonError &) {
        salvaged.session.selected.reset();
    }
    return salvaged;
}

QByteArray writeSession(const Session &session)
{
    Json document;
    document["photos"] = Json::array();
    for (const PhotoItem &photo : session.photos) {
        Json object;
        object["id"] = jsonText(uuidText(photo.id));
        object["file"] = jsonText(photo.file);
        object["name"] = jsonText(photo.name);
        object["width"] = photo.width;
        object["height"] = photo.height;
        object["settings"] = toJson(photo.settings);
        document["photos"].push_back(std::move(object));
    }
    if (session.selected) {
        document["selected"] = jsonText(uuidText(*session.selected));
    }
    document["presets"] = Json::array();
    for (const SavedPreset &preset : session.presets) {
        Json object;
        object["id"] = jsonText(uuidText(preset.id));
        object["name"] = jsonText(preset.name);
        object["settings"] = toJson(preset.settings);
        if (preset.lastUsed) {
            object["lastUsed"] = *preset.lastUsed;
        }
        document["presets"].push_back(std::move(object));
    }
    if (session.lastStyle) {
        document["lastStyle"] = toJson(*session.lastStyle);
    }
    return writeJson(document);
}

Session readSession(const QByteArray &document)
{
    const Json json = parseJson(document);
    const JsonReader reader(json);
    Session session;
    for (const JsonReader &photo : reader.member("photos").elements()) {
        session.photos.append(photoFrom(photo));
    }
    if (const auto selected = reader.optionalMember("selected")) {
        session.selected = uuidFrom(*selected);
    }
    for (const JsonReader &preset : reader.member("presets").elements()) {
        session.presets.append(presetFrom(preset));
    }
    if (const auto style = reader.optionalMember("lastStyle")) {
        session.lastStyle = frameSettingsFromJson(*style);
    }
    return session;
}

} // namespace tarnovel
