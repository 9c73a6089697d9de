#pragma once

#include <optional>
#include <set>

#include <QList>
#include <QSizeF>
#include <QString>

#include "film/FilmOptions.h"

namespace tarnovel {

/// An opaque RGB colour, sRGB, each component 0…1.
struct Ink {
    double r = 0;
    double g = 0;
    double b = 0;
    bool operator==(const Ink &) const = default;
};

/// The ink of default texts and borders: a soft black.
constexpr Ink softBlack = {0.05, 0.05, 0.05};

enum class CanvasPreset { red, instagram, square, story, original, custom };
enum class Backdrop { solid, gradient, blur, image };
enum class FrameStyle { simple, instant, film, cinema };

/// The preset's name in the interface, with its ratio, in the current language.
QString canvasPresetTitle(CanvasPreset preset);

/// One text or logo over the frame.
struct TextLayer {
    /// Unique within its record. Camera texts, title, caption, date and logo have fixed ids.
    QString id;
    QString text;
    bool visible = false;
    /// The centre as a fraction of the canvas width and height.
    double x = 0.5;
    double y = 0.5;
    /// A logo's picture in the library folder; a layer that has one is a picture layer.
    std::optional<QString> imageFile;
    /// Width ÷ height of that picture.
    std::optional<double> imageAspect;
    /// Text height as a fraction of the canvas width.
    double size = 0.024;
    Ink ink = softBlack;
    /// Degrees, clockwise on screen; none is 0.
    std::optional<double> rotation;
    /// "serif", "rounded", "mono" or "handwritten"; anything else, or none, is the system face.
    std::optional<QString> fontStyle;
    bool operator==(const TextLayer &) const = default;
};

/// The layer that holds the logo, as records call it.
inline const QString logoLayer = QStringLiteral("watermark");

/// The seven layers of every record, in order: brand, model, exif, watermark, title, caption, date. All are
/// hidden.
const QList<TextLayer> &defaultLayers();

/// How one photo is framed. Positions and sizes are fractions of the canvas, so a record fits every output
/// size.
struct FrameSettings {
    CanvasPreset preset = CanvasPreset::red;
    double customWidth = 3;
    double customHeight = 4;
    /// The photo's box as a fraction of the canvas; held to 0.1…1 where it is used.
    double scale = 0.88;
    /// The photo centre's offset from the canvas centre, as fractions of its width and height.
    double x = 0;
    double y = 0;
    /// Keep the photo centred, whatever `x` (`y`) says.
    bool lockX = false;
    bool lockY = false;
    Backdrop background = Backdrop::solid;
    /// The background colour, and a gradient's first.
    Ink color = {1, 1, 1};
    Ink secondColor = {0.76, 0.79, 0.84};
    std::optional<QString> backgroundFile;
    FrameStyle style = FrameStyle::simple;
    /// Width of the photo's border as a fraction of the canvas's short edge.
    double border = 0.006;
    Ink borderColor = softBlack;
    std::optional<FilmOptions> film;
    /// The built-in template, or "preset-" and a saved style's UUID, that the record came from.
    std::optional<QString> templateID = QStringLiteral("plain");
    std::optional<QString> handwritingFile;
    /// Width ÷ height of the signature; none is the picture's own.
    std::optional<double> handwritingAspect;
    /// The signature's centre and width as fractions of the canvas; none are 0.5, 0.9 and 0.42.
    std::optional<double> handwritingX;
    std::optional<double> handwritingY;
    std::optional<double> handwritingWidth;
    /// Drawn in order, later ones on top.
    QList<TextLayer> layers = defaultLayers();
    bool operator==(const FrameSettings &) const = default;

    /// Appends the default layers that are missing, in their order; nothing else changes.
    void normalize();

    /// A chosen width ÷ height of a canvas, held to 0.2…5.
    static double heldRatio(double ratio);
    /// The canvas's width ÷ height for a photo of this pixel size: a custom ratio is held, a photo's
    /// own is not, and a film frame's is that of its piece of film.
    double ratio(QSizeF source) const;

    /// The files of the library folder that the record needs, also those of hidden layers.
    std::set<QString> referencedFiles() const;

    /// The layer with this id, or null.
    TextLayer *layer(const QString &id);
    const TextLayer *layer(const QString &id) const;
};

} // namespace tarnovel
