#pragma once

#include <array>
#include <optional>

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QStringList>

namespace tarnovel {

/// 35 mm film in 135 cartridges, and the four common frames on 120 roll film.
enum class FilmFormat { mm35, medium645, medium66, medium67, medium69 };

/// Every format, in the order of the picker.
inline constexpr std::array<FilmFormat, 5> filmFormats{FilmFormat::mm35, FilmFormat::medium645,
                                                       FilmFormat::medium66, FilmFormat::medium67,
                                                       FilmFormat::medium69};

/// The name under which the format is stored, such as "medium645".
QString filmFormatName(FilmFormat format);

/// None for a name that filmFormatName() does not write.
std::optional<FilmFormat> filmFormatFromName(const QString &name);

/// One frame cut from a roll, in millimetres, film running left to right. The gate is the exposed area: its
/// length runs along the film, its height across it.
struct FilmDimensions {
    double filmWidthMm;
    double gateLengthMm;
    double gateHeightMm;

    /// Film left at each end of the gate when the piece is cut in the middle between two frames.
    static constexpr double endMm = 1.2;

    double pieceLengthMm() const { return gateLengthMm + 2 * endMm; }
    /// Rebate between the gate and the film's long edges.
    double insetMm() const { return (filmWidthMm - gateHeightMm) / 2; }
    /// The gate in piece millimetres, origin at the piece's top left.
    QRectF gate() const { return {endMm, insetMm(), gateLengthMm, gateHeightMm}; }
    bool hasSquareGate() const { return gateLengthMm == gateHeightMm; }
    bool hasLandscapeGate() const { return gateHeightMm <= gateLengthMm; }
};

/// 35 mm: ISO 1007 film with the 24 × 36 mm frame. 120: ISO 732 film, 61.5 mm wide, with 56 mm high frames.
FilmDimensions filmDimensions(FilmFormat format);

/// Frames on one roll: 36 on 35 mm; 16, 12, 10 and 8 on 120 film.
int framesPerRoll(FilmFormat format);

/// `number` held to the frames of one roll, 1…framesPerRoll().
int printedFrameNumber(FilmFormat format, int number);

/// True when the gate has to be turned a quarter turn for the photo: a gate that is not square and lies the
/// other way. A square photo counts as landscape.
bool isFilmRotated(FilmFormat format, QSizeF source);

/// Size in millimetres of the piece as it stands on the canvas for a photo of `source` pixels.
QSizeF orientedSize(FilmFormat format, QSizeF source);

/// How a film frame looks; stored inside the style of a photo.
struct FilmOptions {
    /// The name of a catalogue row, or any film name of the user's own.
    QString stock = QStringLiteral("Kodak Portra 400");
    FilmFormat format = FilmFormat::mm35;
    /// Draw the perforations; 120 film has none either way.
    bool perforations = true;
    /// Light film base instead of dark.
    bool light = false;
    /// Print the frame numbers and arrows.
    bool showsNumber = true;
    /// As the user typed it; printed as printedFrameNumber() holds it.
    int number = 1;
    /// The edge marking; empty or absent prints the stock's own.
    std::optional<QString> topLabel;
    /// The text of the lower edge; empty or absent prints what the format carries there.
    std::optional<QString> bottomLabel;

    bool operator==(const FilmOptions &) const = default;

    /// The names of the available rows of the catalogue, in its order.
    static const QStringList &stocks();
};

} // namespace tarnovel
