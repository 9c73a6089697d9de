#include "render/FilmEdgePrint.h"

#include <algorithm>
#include <utility>

#include <QPainter>
#include <QTextBoundaryFinder>

#include "film/FilmStockCatalog.h"
#include "render/DevicePatch.h"
#include "render/FilmMarks.h"
#include "render/Fonts.h"
#include "render/SetText.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr int longestLabel = 40;

/// Nobody reads a letter under more accents than this.
constexpr int mostMarks = 6;

/// More than any character as a reader counts them is made of.
constexpr int mostCodePoints = 32;

/// Texts are set once at this size of type and scaled from there.
constexpr int referencePixels = 256;

/// Room added after each letter, in millimetres at the nominal size.
constexpr double kerningMm = 0.02;

/// The baseline in a row one font size high whose middle is that of the capitals, 0.73 of the size high in
/// the edge print's face.
constexpr double baselineInRow = (1 + 0.73) / 2;

/// The glow's opacity. Its blur radius of 0.035 is in output pixels at any scale, less than eight bits can
/// show, so it is the letter's own shape.
constexpr double glowAlpha = 0.16;

/// Air between the lower label and the arrow behind it.
constexpr double airMm = 0.3;

/// Air between tall ink and what it must not touch: the film's edge, the holes' rims and the gate's outline.
constexpr double stripAirMm = 0.05;

/// Whether an invisible character sets the direction of what follows, or is a stray byte order mark.
bool turnsText(char32_t character)
{
    return (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069) ||
           character == 0xFEFF;
}

bool hasMakersCounters(const FilmOptions &options, const QString &marking)
{
    const auto counted = [](const QString &name) {
        return name.startsWith("KODAK"_L1, Qt::CaseInsensitive) ||
               name.startsWith("EASTMAN"_L1, Qt::CaseInsensitive);
    };
    return counted(options.stock) || counted(marking);
}

/// Where a maker's ruler of `steps` to the roll stands at the frame, counted from `first`.
QString counter(const FilmOptions &options, int first, int steps)
{
    const int number = printedFrameNumber(options.format, options.number);
    return QString::number(first + (number - 1) * steps / framesPerRoll(options.format));
}

QString bottomLabel(const FilmOptions &options)
{
    QString typed = options.bottomLabel.value_or(QString()).trimmed();
    if (!edgeLabel(typed).trimmed().isEmpty()) {
        return typed;
    }
    const bool isNumber = options.format == FilmFormat::mm35;
    return isNumber && !options.showsNumber ? QString() : FilmEdgePrint::automaticBottomLabel(options);
}

FilmEdgePrint smallFilmEdge(const FilmOptions &options, const QString &marking)
{
    const FilmDimensions film = filmDimensions(options.format);
    const double length = film.pieceLengthMm();
    const double width = film.filmWidthMm;
    const QPointF bottomAt(length / 2 - 1.3, width - 1.4);
    const double lowerArrow = length - 4.48;
    double widestBottom = std::max(length / 2 - 3, 4.0);
    FilmEdgePrint edge;
    edge.texts.push_back({marking, {6.1, 0.2}, 1.1, length - 8});
    if (options.showsNumber) {
        const QString number = QString::number(printedFrameNumber(options.format, options.number));
        edge.texts.push_back({number, {1.3, 0.18}, 1.25, 3.0});
        edge.texts.push_back({number, {3.0, width - 1.4}, 1.1, 3.0});
        edge.arrows = {FilmMarks::arrow(4.62, 0.7), FilmMarks::arrow(lowerArrow, width - 0.78)};
        widestBottom = std::min(widestBottom, lowerArrow - airMm - bottomAt.x());
    }
    edge.texts.push_back({bottomLabel(options), bottomAt, 1.1, widestBottom});
    return edge;
}

FilmEdgePrint rollFilmEdge(const FilmOptions &options, const QString &marking)
{
    const FilmDimensions film = filmDimensions(options.format);
    const double length = film.pieceLengthMm();
    const double width = film.filmWidthMm;
    FilmEdgePrint edge;
    edge.texts.push_back({marking, {1.7, 0.72}, 0.98, 0.53 * length});
    if (options.showsNumber) {
        const bool makers = hasMakersCounters(options, marking);
        const QString plain = QString::number(printedFrameNumber(options.format, options.number));
        edge.texts.push_back({makers ? counter(options, 41, 16) : plain, {0.74 * length, 0.6}, 1.22, 4.0});
        edge.texts.push_back(
            {makers ? counter(options, 1, 12) : plain, {0.23 * length, width - 1.93}, 1.22, 4.0});
        if (options.light) {
            edge.arrows.push_back(FilmMarks::arrow(0.7 * length - 0.65, width - 1.23));
        }
    }
    edge.texts.push_back({bottomLabel(options), {length - 8.8, width - 1.86}, 0.93, 7.2});
    return edge;
}

/// Wider than any label, so that it never breaks.
constexpr SetText::Box oneLine{1e6, 0};

/// A text in type, and how to bring it onto the film.
struct SetEdgeText {
    explicit SetEdgeText(const FilmEdgeText &edgeText)
        : set(SetText::remembered(edgeText.text, font(edgeText.sizeMm), oneLine, SetText::Zero::Plain)),
          scale(std::min({edgeText.sizeMm / referencePixels, edgeText.widestMm / set.size().width(),
                          tallestScale(edgeText, set)})),
          rowTop(edgeText.at.y() + (edgeText.sizeMm - scale * referencePixels) / 2)
    {
    }

    static QFont font(double sizeMm)
    {
        QFont face = Fonts::face(u"mono"_s, QFont::DemiBold, referencePixels);
        face.setLetterSpacing(QFont::AbsoluteSpacing, kerningMm / sizeMm * referencePixels);
        return face;
    }

    /// The largest scale at which the ink stays in the text's strip. The row's middle is what stays in place.
    static double tallestScale(const FilmEdgeText &edgeText, const SetText &set)
    {
        const QRectF ink = set.outlines().boundingRect();
        if (ink.isEmpty()) {
            return edgeText.sizeMm / referencePixels;
        }
        const double middleOfType = set.baseline() - (baselineInRow - 0.5) * referencePixels;
        const double middle = edgeText.at.y() + edgeText.sizeMm / 2;
        const double above = std::max(middleOfType - ink.top(), 1.0);
        const double below = std::max(ink.bottom() - middleOfType, 1.0);
        return std::min((middle - edgeText.stripTop) / above, (edgeText.stripBottom - middle) / below);
    }

    SetText set;
    /// Millimetres for one unit of the type.
    double scale;
    double rowTop;
};

} // namespace

QString edgeLabel(const QString &text)
{
    QString label;
    int marks = 0;
    int length = 0;
    for (const char32_t character : QStringView(text).toUcs4()) {
        if (turnsText(character)) {
            continue;
        }
        const bool isMark = QChar::category(character) == QChar::Mark_NonSpacing ||
                            QChar::category(character) == QChar::Mark_Enclosing;
        marks = isMark ? marks + 1 : 0;
        if (marks > mostMarks) {
            continue;
        }
        const bool isBlank = QChar::isSpace(character) || QChar::category(character) == QChar::Other_Control;
        label += QChar::fromUcs4(isBlank ? U' ' : character);
        if (++length == longestLabel * mostCodePoints) {
            break;
        }
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, label);
    for (int i = 0; i < longestLabel && finder.toNextBoundary() >= 0; ++i) {
    }
    return finder.position() >= 0 ? label.left(finder.position()) : label;
}

QString FilmEdgePrint::automaticBottomLabel(const FilmOptions &options)
{
    if (options.format != FilmFormat::mm35) {
        return u"120"_s;
    }
    return QString::number(printedFrameNumber(options.format, options.number)) + u'A';
}

FilmEdgePrint FilmEdgePrint::print(const FilmOptions &options)
{
    const QString marking = FilmStockCatalog::printableLabel(options.stock, options.topLabel);
    FilmEdgePrint edge =
        options.format == FilmFormat::mm35 ? smallFilmEdge(options, marking) : rollFilmEdge(options, marking);
    const FilmDimensions film = filmDimensions(options.format);
    const double rebate = options.format == FilmFormat::mm35 ? FilmMarks::holeInsetMm : film.insetMm();
    for (FilmEdgeText &text : edge.texts) {
        text.text = edgeLabel(text.text);
        const double top = text.at.y() < film.filmWidthMm / 2 ? 0 : film.filmWidthMm - rebate;
        text.stripTop = top + stripAirMm;
        text.stripBottom = top + rebate - stripAirMm;
    }
    std::erase_if(edge.texts, [](const FilmEdgeText &text) { return text.text.trimmed().isEmpty(); });
    return edge;
}

QRectF edgeTextRect(const FilmEdgeText &text)
{
    const SetEdgeText set(text);
    return {text.at.x(), set.rowTop, set.set.size().width() * set.scale, set.scale * referencePixels};
}

void drawFilmEdge(QPainter &painter, const FilmEdgePrint &edge, const QColor &print)
{
    for (const FilmEdgeText &text : edge.texts) {
        const SetEdgeText set(text);
        painter.save();
        painter.translate(text.at.x(), set.rowTop + baselineInRow * referencePixels * set.scale);
        painter.scale(set.scale, set.scale);
        painter.translate(0, -set.set.baseline());
        glowingPatch(painter, painter.deviceTransform().map(set.set.outlines()), print, glowAlpha)
            .draw(painter);
        set.set.drawPictures(painter);
        painter.restore();
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(print);
    for (const QPolygonF &triangle : edge.arrows) {
        painter.drawPolygon(triangle);
    }
}

} // namespace tarnovel
