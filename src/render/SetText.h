#pragma once

#include <vector>

#include <QFont>
#include <QGlyphRun>
#include <QPainterPath>
#include <QSizeF>
#include <QString>

class QColor;
class QPainter;

namespace tarnovel {

/// A text set in lines at one reference size, so that it breaks and measures the same at every size it is
/// drawn at. Lengths are those of the reference font's pixels; the origin is the top left of the text's box.
class SetText {
public:
    struct Box {
        double width = 0;
        double height = 0;
        bool operator==(const Box &) const = default;
    };

    /// How a zero is drawn in faces that mark theirs with a stroke or a dot.
    enum class Zero { AsDesigned, Plain };

    /// Sets centred lines, broken at words (inside one where it is too long) to the box's width. Lines that
    /// do not fit whole into its height are left out, but never the first.
    SetText(const QString &text, const QFont &font, Box box, Zero zero = Zero::AsDesigned);

    /// The same, perhaps as it was set before: each thread remembers the last short texts that it set.
    static SetText remembered(const QString &text, const QFont &font, Box box, Zero zero = Zero::AsDesigned);

    /// The lines' common box: as wide as the widest line.
    QSizeF size() const { return m_size; }

    /// The first line's baseline, from the box's top.
    double baseline() const { return m_baseline; }

    /// The letters' outlines. Letters without outlines (colour pictures) are missing here.
    const QPainterPath &outlines() const { return m_outlines; }

    /// The letters that have no outlines, at the painter's origin.
    void drawPictures(QPainter &painter) const;

    /// Draws at the painter's origin, in the painter's scale.
    void draw(QPainter &painter, const QColor &ink) const;

private:
    QSizeF m_size;
    double m_baseline = 0;
    QPainterPath m_outlines;
    std::vector<QGlyphRun> m_pictures;
};

} // namespace tarnovel
