#pragma once

#include <array>
#include <optional>
#include <stop_token>

#include <QColor>
#include <QImage>
#include <QString>

#include "handwriting/InkRenderer.h"

class QPainter;

namespace tarnovel {

/// What the strokes of a drawing are made of.
enum class HandwritingFinish { color, rainbow, glitter };

inline constexpr std::array handwritingFinishes = {HandwritingFinish::color, HandwritingFinish::rainbow,
                                                   HandwritingFinish::glitter};

/// "color", "rainbow", "glitter".
QString handwritingFinishName(HandwritingFinish finish);
std::optional<HandwritingFinish> handwritingFinishFromName(const QString &name);
/// In the current language.
QString handwritingFinishTitle(HandwritingFinish finish);

/// The rainbow's colours, evenly spaced from the bottom left corner of the page to the top right one.
const std::array<QColor, 7> &rainbowColors();

/// Fills what is drawn already with the rainbow of a page of this size, in the painter's coordinates.
void tintRainbow(QPainter &painter, QSizeF page);

/// One of the glitter's dots; lengths are pixels of the finished image.
struct Sparkle {
    QPointF centre;
    double diameter = 0;
    double opacity = 1;
    bool star = false;
};
constexpr int sparkleCount = 1100;
/// `scale` is in pixels per reference unit.
Sparkle sparkle(int index, QSizeF imageSize, double scale);

/// How a drawing is finished.
struct FinishStyle {
    HandwritingFinish finish = HandwritingFinish::color;
    /// For the colour and under the glitter.
    Ink color = softBlack;
    bool operator==(const FinishStyle &) const = default;
};

/// The drawing with its finish on a transparent page, `scale` pixels per reference unit; null when there are
/// no strokes. A preview at another scale looks like it. Throws OperationCancelled.
QImage finishedImage(const InkDrawing &drawing, const FinishStyle &style, QSizeF referenceSize, double scale,
                     const std::stop_token &stop = {});

} // namespace tarnovel
