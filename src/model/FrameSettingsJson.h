#pragma once

#include "base/Json.h"
#include "model/FrameSettings.h"

namespace tarnovel {

/// Keys are the field names in their order, enumerations their case names; absent optionals are left out.
Json toJson(const FrameSettings &settings);
Json toJson(const FilmOptions &options);

/// Reads strictly: a missing required key, a wrong type or an unknown case name is a JsonError with its path.
/// Unknown keys are passed over. The record is not normalized.
FrameSettings frameSettingsFromJson(const JsonReader &reader);

/// Every field that can be read, the others with their defaults; then `whole` becomes false.
FrameSettings salvageFrameSettings(const JsonReader &reader, bool &whole);

/// The names that records give to the cases, in order.
QStringList canvasPresetNames();
QStringList backdropNames();
QStringList frameStyleNames();

} // namespace tarnovel
