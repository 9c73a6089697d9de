#pragma once

#include <QString>

#include "model/FrameSettings.h"

/// Changes of single fields of a style by name.
namespace tarnovel::cli::StyleEdit {

/// Changes the field that "PATH=VALUE" names: JSON keys joined by dots, a layer named by its id
/// ("layers.title.size"). VALUE is JSON, or a string where it is none. Film options are made with their
/// defaults when absent. Throws a UsageError for an unknown field or layer and for a value of the wrong type.
void set(FrameSettings &settings, const QString &assignment);

/// Gives the layer that "ID=TEXT" names that text and shows it. Throws a UsageError for an unknown layer.
void setText(FrameSettings &settings, const QString &assignment);

} // namespace tarnovel::cli::StyleEdit
