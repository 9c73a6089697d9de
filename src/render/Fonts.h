#pragma once

#include <functional>
#include <optional>

#include <QFont>
#include <QString>
#include <QStringList>

/// The faces of frame texts. Each role names its Latin and its Chinese family, or fallback would mix fonts in
/// a word.
namespace tarnovel::Fonts {

/// Where type is set for: the system face has a cut of its own for large sizes, with finer details and less
/// room between the letters.
enum class Cut { Text, Display };

/// The face for a layer's font style: "serif", "rounded", "mono" or "handwritten"; the system face for
/// anything else. Hinting is off, so that advances are proportional to the size. `pixelSize` is in whole
/// pixels, as Qt takes it. A family that is not installed is replaced by a generic one of its kind, and one
/// warning of the run names the package that brings it.
QFont face(const std::optional<QString> &fontStyle, QFont::Weight weight, int pixelSize, Cut cut = Cut::Text);

/// The family of colour pictures, for texts that have emoji. Where it is not installed, one warning of the
/// run names its package.
QString emojiFamily();

/// What a role's face is made of where only some families are installed.
struct Choice {
    /// The role's installed families in their order, then a generic one for those that are missing.
    QStringList families;
    /// The packages of the missing ones.
    QStringList missingPackages;
};
Choice choose(const QString &fontStyle, Cut cut, QFont::Weight weight,
              const std::function<bool(const QString &)> &isThere);

} // namespace tarnovel::Fonts
