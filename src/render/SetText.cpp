#include "render/SetText.h"

#include <algorithm>
#include <functional>
#include <list>

#include <QPainter>
#include <QRawFont>
#include <QTextLayout>

#include "render/Emoji.h"
#include "render/Fonts.h"

namespace tarnovel {

namespace {

/// More than a canvas can show; a longer text is cut before it is shaped.
constexpr qsizetype mostCharacters = 20'000;

/// A line may miss the box by this fraction of its height and still count as fitting: canvas sizes are whole
/// pixels, so the same box differs by a hair between output sizes.
constexpr double hair = 0.02;

bool hasOutlines(const QRawFont &font)
{
    return !font.fontTable("glyf").isEmpty() || !font.fontTable("CFF ").isEmpty() ||
           !font.fontTable("CFF2").isEmpty();
}

/// A text as it is laid out.
struct Prepared {
    QString text;
    QList<QTextLayout::FormatRange> formats;
};

/// Colour pictures are set in their own family: where another one has the character too, it would come first.
/// The selectors that made them pictures go: the family's own table of sequences has none.
Prepared prepared(const QString &text)
{
    Prepared made;
    qsizetype done = 0;
    for (const TextStretch &stretch : emojiStretches(text)) {
        made.text += QStringView(text).mid(done, stretch.start - done);
        const qsizetype start = made.text.size();
        made.text += text.mid(stretch.start, stretch.length).remove(QChar(0xFE0F));
        done = stretch.start + stretch.length;
        QTextCharFormat format;
        format.setFontFamilies({Fonts::emojiFamily()});
        made.formats.append({static_cast<int>(start), static_cast<int>(made.text.size() - start), format});
    }
    made.text += QStringView(text).mid(done);
    return made;
}

/// A zero's outline without what stands in its counter: the outermost two of its contours.
QPainterPath plainZero(const QPainterPath &zero)
{
    QList<QPainterPath> contours;
    for (int i = 0; i < zero.elementCount(); ++i) {
        const QPainterPath::Element &element = zero.elementAt(i);
        if (element.isMoveTo()) {
            contours.append(QPainterPath(element));
        } else if (element.isLineTo()) {
            contours.last().lineTo(element);
        } else if (element.type == QPainterPath::CurveToElement) {
            contours.last().cubicTo(element, zero.elementAt(i + 1), zero.elementAt(i + 2));
            i += 2;
        }
    }
    std::ranges::sort(contours, std::ranges::greater{}, [](const QPainterPath &contour) {
        const QRectF box = contour.controlPointRect();
        return box.width() * box.height();
    });
    QPainterPath plain;
    for (const QPainterPath &contour : contours.first(std::min<qsizetype>(contours.size(), 2))) {
        plain.addPath(contour);
    }
    return plain;
}

} // namespace

SetText::SetText(const QString &text, const QFont &font, Box box, Zero zero)
{
    QString lines = text.left(mostCharacters);
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    lines.replace(u'\r', QChar::LineSeparator);
    lines.replace(u'\n', QChar::LineSeparator);

    const Prepared set = prepared(lines);
    QTextLayout layout(set.text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setUseDesignMetrics(true);
    layout.setTextOption(option);
    layout.setFormats(set.formats);
    layout.setCacheEnabled(true);

    std::vector<QTextLine> fitting;
    double height = 0;
    double width = 0;
    layout.beginLayout();
    while (true) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLeadingIncluded(true);
        line.setLineWidth(std::max(box.width, 1.0));
        line.setPosition({0, height});
        if (!fitting.empty() && height + line.height() * (1 - hair) > box.height) {
            break;
        }
        height += line.height();
        width = std::max(width, line.naturalTextWidth());
        fitting.push_back(line);
    }
    layout.endLayout();
    m_size = {width, height};
    m_baseline = fitting.empty() ? 0 : fitting.front().ascent();

    for (const QTextLine &line : fitting) {
        const double indent = (width - line.naturalTextWidth()) / 2;
        for (QGlyphRun run : line.glyphRuns()) {
            const QRawFont raw = run.rawFont();
            const QList<quint32> indexes = run.glyphIndexes();
            QList<QPointF> positions = run.positions();
            for (QPointF &position : positions) {
                position.rx() += indent;
            }
            if (!hasOutlines(raw)) {
                run.setPositions(positions);
                m_pictures.push_back(run);
                continue;
            }
            const QList<quint32> zeros =
                zero == Zero::Plain ? raw.glyphIndexesForString(QStringLiteral("0")) : QList<quint32>();
            for (qsizetype i = 0; i < indexes.size(); ++i) {
                const QPainterPath glyph = raw.pathForGlyph(indexes.at(i));
                m_outlines.addPath(
                    (zeros.contains(indexes.at(i)) ? plainZero(glyph) : glyph).translated(positions.at(i)));
            }
        }
    }
    m_outlines.setFillRule(Qt::WindingFill);
}

SetText SetText::remembered(const QString &text, const QFont &font, Box box, Zero zero)
{
    struct Known {
        QString text;
        QString font; // not itself: it must not outlive the application
        Box box;
        Zero zero;
        SetText set;
    };
    constexpr qsizetype longestKept = 200;
    constexpr size_t mostKept = 24;
    if (text.size() > longestKept) {
        return {text, font, box, zero};
    }
    const QString fontKey = font.key();
    // A path works its polygons out when it is first painted and keeps them, which is no thing to share.
    thread_local std::list<Known> kept;
    const auto found = std::ranges::find_if(kept, [&](const Known &known) {
        return known.text == text && known.box == box && known.zero == zero && known.font == fontKey;
    });
    if (found != kept.end()) {
        kept.splice(kept.begin(), kept, found);
        return found->set;
    }
    SetText set(text, font, box, zero);
    // The letters of colour pictures belong to their font, which may go before a thread does.
    if (set.m_pictures.empty()) {
        kept.push_front({text, fontKey, box, zero, set});
        kept.resize(std::min(kept.size(), mostKept), kept.front());
    }
    return set;
}

void SetText::draw(QPainter &painter, const QColor &ink) const
{
    painter.fillPath(m_outlines, ink);
    drawPictures(painter);
}

void SetText::drawPictures(QPainter &painter) const
{
    for (const QGlyphRun &run : m_pictures) {
        painter.drawGlyphRun({}, run);
    }
}

} // namespace tarnovel
