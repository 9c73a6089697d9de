#pragma once

#include <array>
#include <optional>

#include <QList>
#include <QString>

#include "handwriting/InkStroke.h"

namespace tarnovel {

/// What the pointer does on the page; the order is that of the picker.
enum class HandwritingTool { Signature, Fountain, Pencil, Marker, Eraser };

inline constexpr std::array handwritingTools = {HandwritingTool::Signature, HandwritingTool::Fountain,
                                                HandwritingTool::Pencil, HandwritingTool::Marker,
                                                HandwritingTool::Eraser};

/// In the current language.
QString handwritingToolTitle(HandwritingTool tool);

/// The pen that the tool writes with; none for the eraser.
std::optional<InkPen> penOf(HandwritingTool tool);

/// Across the tool's mark or the eraser, in reference units: the size of its cursor.
double toolDiameter(HandwritingTool tool, double width);

/// A colour of the picker with its name in the current language.
struct InkSwatch {
    Ink color;
    QString name;
};

/// The ready colours of the picker, in its order; the place after the last is for a colour of the user's own.
QList<InkSwatch> inkSwatches();

/// What the eraser's user is told, in the current language.
QString eraserHint();
/// How to move about and write, in the current language.
QString handwritingGuide();

} // namespace tarnovel
