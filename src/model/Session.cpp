#include "model/Session.h"

#include "base/Json.h"
#include "base/Uuid.h"
#include "model/FrameSettingsJson.h"

namespace tarnovel {

namespace {

QUuid uuidFrom(const JsonReader &reader)
{
    const auto uuid = uuidFromText(reader.text());
    if (!uuid) {
        reader.fail("expected a UUID");
    }
    return *uuid;
}

PhotoItem photoFrom(const JsonReader &reader)
{
    PhotoItem photo;
    photo.id = uuidFrom(reader.member("id"));
    photo.file = reader.member("file").text();
    photo.name = reader.member("name").text();
    photo.width = reader.member("width").number();
    photo.height = reader.member("height").number();
    photo.settings = frameSettingsFromJson(reader.member("settings"));
    return photo;
}

SavedPreset presetFrom(const JsonReader &reader)
{
    SavedPreset preset;
    preset.id = uuidFrom(reader.member("id"));
    preset.name = reader.member("name").text();
    preset.settings = frameSettingsFromJson(reader.member("settings"));
    preset.lastUsed = reader.optionalNumber("lastUsed");
    return preset;
}

} // namespace

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
