#pragma once

#include <array>
#include <optional>

#include <QList>
#include <QString>

#include "model/FrameSettings.h"

namespace tarnovel {

/// A ready-made look. It keeps what the user typed and the logos, and replaces everything else.
enum class BuiltInTemplate {
    plain,
    full,
    caption,
    signature,
    sky,
    ground,
    side,
    gallery,
    gear,
    instant,
    film,
    tone,
    cinema,
    cinemaEN
};

namespace BuiltInTemplates {

/// In the order in which they are offered.
const QList<BuiltInTemplate> &all();

/// The case name; it is stored in the settings that the template makes.
QString id(BuiltInTemplate look);
std::optional<BuiltInTemplate> withId(const QString &id);

/// In the current language.
QString title(BuiltInTemplate look);

/// The template's settings for a photo whose style is `settings` and whose colours, most frequent first, are
/// `palette`.
FrameSettings make(BuiltInTemplate look, const FrameSettings &settings, const QList<Ink> &palette);

} // namespace BuiltInTemplates

} // namespace tarnovel
