#pragma once

#include <optional>

#include <QFont>
#include <QString>

/// The faces of frame texts. Each role names its Latin and its Chinese family, or fallback would mix fonts in
/// a word.
namespace tarnovel::Fonts {

/// The face for a layer's font style: "serif", "rounded", "mono" or "handwritten"; the system face for
/// anything else. Hinting is off, so that advances are proportional to the size. `pixelSize` is in whole
/// pixels, as Qt takes it.
QFont face(const std::optional<QString> &fontStyle, QFont::Weight weight, int pixelSize);

} // namespace tarnovel::Fonts
