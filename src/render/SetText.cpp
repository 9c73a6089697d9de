#include "render/SetText.h"

#include <algorithm>

#include <QPainter>
#include <QRawFont>
#include <QTextLayout>

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

} // namespace

SetText::SetText(const QString &text, const QFont &font, Box box)
{
    QString lines = text.left(mostCharacters);
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    lines.replace(u'\r', QChar::LineSeparator);
    lines.replace(u'\n', QChar::LineSeparator);

    QTextLayout layout(lines, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setUseDesignMetrics(true);
    layout.setTextOption(option);
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
            for (qsizetype i = 0; i < indexes.size(); ++i) {
                m_outlines.addPath(raw.pathForGlyph(indexes.at(i)).translated(positions.at(i)));
            }
        }
    }
    m_outlines.setFillRule(Qt::WindingFill);
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
