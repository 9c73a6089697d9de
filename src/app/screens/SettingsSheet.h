#pragma once

#include "app/Appearance.h"
#include "app/EditorContext.h"

namespace tarnovel::app {

class Overlay;

/// Opens the settings beside the guide. `languageChanged` is called when the user has chosen another
/// language.
Overlay *showSettings(QWidget *window, const EditorContext &context, Appearance &appearance,
                      std::function<void()> languageChanged);

} // namespace tarnovel::app
