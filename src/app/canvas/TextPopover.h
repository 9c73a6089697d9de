#pragma once

#include "app/EditorContext.h"

namespace tarnovel::app {

class Overlay;

/// Opens the small editor of a text beside it on the picture.
Overlay *editTextOnCanvas(QWidget *window, const EditorContext &context, const QString &layerId,
                          QPoint inWindow);

} // namespace tarnovel::app
