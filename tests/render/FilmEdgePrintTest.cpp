#include "render/FilmEdgePrint.h"

#include <algorithm>

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include "language/AppLanguage.h"
#include "render/FilmFormatTitle.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

FilmOptions options(FilmFormat format, const QString &stock = u"Ilford HP5 Plus 400"_s, int number = 1)
{
    FilmOptions made;
    made.format = format;
    made.stock = stock;
    made.number = number;
    return made;
}

QStringList texts(const FilmOptions &made)
{
    QStringList list;
    for (const FilmEdgeText &text : FilmEdgePrint::print(made).texts) {
        list.append(text.text);
    }
    return list;
}

TEST(FilmEdgePrint, NumbersTheFramesOfThirtyFiveMillimetres)
{
    EXPECT_EQ(texts(options(FilmFormat::mm35)), (QStringList{u"ILFORD HP5 PLUS"_s, u"1"_s, u"1"_s, u"1A"_s}));
    EXPECT_EQ(texts(options(FilmFormat::mm35, u"x"_s, 0)), (QStringList{u"x"_s, u"1"_s, u"1"_s, u"1A"_s}));
    EXPECT_EQ(texts(options(FilmFormat::mm35, u"x"_s, 40)),
              (QStringList{u"x"_s, u"36"_s, u"36"_s, u"36A"_s}));
    EXPECT_EQ(FilmEdgePrint::print(options(FilmFormat::mm35)).arrows.size(), 2U);
    // The stock is known, but nobody has yet seen what its edge says.
    EXPECT_EQ(texts(options(FilmFormat::mm35, u"Kodak Ektapan 400"_s)),
              (QStringList{u"1"_s, u"1"_s, u"1A"_s}));
}

TEST(FilmEdgePrint, CountsRollFilmAsItsMakerDoes)
{
    struct Row {
        FilmFormat format;
        int number;
        QString upper, lower, plain;
    };
    // Kodak: 41 + ⌊(n − 1) × 16 ÷ F⌋ and 1 + ⌊(n − 1) × 12 ÷ F⌋ with F = 16, 12, 10, 8.
    const std::vector<Row> rows{
        {FilmFormat::medium645, 1, u"41"_s, u"1"_s, u"1"_s},
        {FilmFormat::medium645, 16, u"56"_s, u"12"_s, u"16"_s}, // 15 × 16 ÷ 16 = 15; 15 × 12 ÷ 16 = 11.25
        {FilmFormat::medium66, 5, u"46"_s, u"5"_s, u"5"_s},     // 4 × 16 ÷ 12 = 5.33; 4 × 12 ÷ 12 = 4
        {FilmFormat::medium67, 7, u"50"_s, u"8"_s, u"7"_s},     // 6 × 16 ÷ 10 = 9.6; 6 × 12 ÷ 10 = 7.2
        {FilmFormat::medium69, 8, u"55"_s, u"11"_s, u"8"_s},    // 7 × 16 ÷ 8 = 14; 7 × 12 ÷ 8 = 10.5
        {FilmFormat::medium69, 40, u"55"_s, u"11"_s, u"8"_s},
    };
    for (const Row &row : rows) {
        for (const QString &stock : {u"Kodak Tri-X 400"_s, u"EASTMAN 5222"_s, u"kodak of my own"_s}) {
            EXPECT_EQ(texts(options(row.format, stock, row.number)).mid(1),
                      (QStringList{row.upper, row.lower, u"120"_s}))
                << stock.toStdString();
        }
        EXPECT_EQ(texts(options(row.format, u"Fomapan 100 Classic"_s, row.number)),
                  (QStringList{u"FOMAPAN 100"_s, row.plain, row.plain, u"120"_s}));
        FilmOptions labelled = options(row.format, u"Fomapan 100 Classic"_s, row.number);
        labelled.topLabel = u"Kodak Panatomic"_s;
        EXPECT_EQ(texts(labelled).at(1), row.upper);
    }
}

TEST(FilmEdgePrint, WithoutNumbersKeepsTheMarkingAndWhatTheUserTyped)
{
    for (const FilmFormat format : filmFormats) {
        for (const bool light : {false, true}) {
            FilmOptions made = options(format, u"Kodak Gold 200"_s, 3);
            made.light = light;
            const std::size_t arrows = format == FilmFormat::mm35 ? 2 : light ? 1 : 0;
            EXPECT_EQ(FilmEdgePrint::print(made).arrows.size(), arrows);
            made.showsNumber = false;
            EXPECT_TRUE(FilmEdgePrint::print(made).arrows.empty());
            const QStringList unnumbered = format == FilmFormat::mm35 ? QStringList{u"KODAK 200"_s}
                                                                      : QStringList{u"KODAK 200"_s, u"120"_s};
            EXPECT_EQ(texts(made), unnumbered);
            made.bottomLabel = u" \n "_s;
            EXPECT_EQ(texts(made), unnumbered);
            made.bottomLabel = u" LISBOA "_s;
            EXPECT_EQ(texts(made), (QStringList{u"KODAK 200"_s, u"LISBOA"_s}));
        }
    }
}

TEST(FilmEdgePrint, CutsALabelAfterFortyCharactersAsAReaderCountsThem)
{
    EXPECT_EQ(edgeLabel(u"KODAK"_s), u"KODAK"_s);
    EXPECT_EQ(edgeLabel(QString(41, u'x')), QString(40, u'x'));
    EXPECT_EQ(edgeLabel(u"a\tb\nc"_s), u"a b c"_s);
    // A letter with its accent, a flag and a family of three are one character each.
    for (const QString &character : {u"e\u0301"_s, u"🇫🇷"_s, u"👩\u200d👧\u200d👦"_s, u"胶"_s}) {
        EXPECT_EQ(edgeLabel(character.repeated(50)), character.repeated(40)) << character.toStdString();
    }
}

TEST(FilmEdgePrint, LeavesOutOfALabelWhatTurnsItAround)
{
    EXPECT_EQ(edgeLabel(u"\uFEFFA\u202A\u202B\u202C\u202D\u202EB\u2066\u2067\u2068\u2069C"_s), u"ABC"_s);
    EXPECT_EQ(edgeLabel(QString(5000, QChar(0x202E)) + u"KODAK"_s), u"KODAK"_s);
    EXPECT_EQ(edgeLabel(u"می\u200cخواهم"_s), u"می\u200cخواهم"_s);
    // A heap of accents counts as one character and takes no room from those behind it.
    const QString heap = u"a"_s + QString(1000, QChar(0x0301));
    EXPECT_EQ(edgeLabel(heap + u"b"_s), u"a"_s + QString(6, QChar(0x0301)) + u"b"_s);
    FilmOptions made = options(FilmFormat::mm35);
    made.bottomLabel = u"\u202E"_s;
    EXPECT_EQ(texts(made).back(), u"1A"_s);
}

/// The edge print in black on white, 20 pixels a millimetre, with a margin around the piece.
QImage printed(const FilmEdgePrint &edge, const FilmDimensions &film, int marginMm)
{
    constexpr int pixelsPerMm = 20;
    const QSizeF size(film.pieceLengthMm() + 2 * marginMm, film.filmWidthMm + 2 * marginMm);
    QImage image((size * pixelsPerMm).toSize(), QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixelsPerMm, pixelsPerMm);
    painter.translate(marginMm, marginMm);
    drawFilmEdge(painter, edge, Qt::black);
    return image;
}

/// The rows and columns that hold ink, in millimetres of the piece.
QRectF inkRect(const QImage &image, const QRectF &partMm, int marginMm)
{
    constexpr double pixelsPerMm = 20;
    QRect ink;
    const QRect part =
        QRectF((partMm.topLeft() + QPointF(marginMm, marginMm)) * pixelsPerMm, partMm.size() * pixelsPerMm)
            .toRect() &
        image.rect();
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            if (image.constScanLine(y)[x] < 128) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return {QPointF(ink.topLeft()) / pixelsPerMm - QPointF(marginMm, marginMm),
            QSizeF(ink.size()) / pixelsPerMm};
}

TEST(FilmEdgePrint, EveryLetterStaysBetweenTheFilmsEdgeAndTheHolesOrTheGate)
{
    constexpr int marginMm = 10;
    const QStringList labels{u"KODAK PORTRA 400"_s, u"ORWO / WOLFEN"_s, QString(40, u'W'), QString(40, u'j'),
                             u"1"_s, u"自定义胶卷名称"_s, QString(40, u'胶'), u"فيلم أبيض وأسود"_s,
                             // Accents piled up above and below the letters.
                             u"A\u0301\u0302\u0303\u0308\u0301\u0302"_s,
                             u"g\u0323\u0331\u0323\u0331\u0323\u0331"_s};
    for (const FilmFormat format : filmFormats) {
        const FilmDimensions film = filmDimensions(format);
        // On 35 mm film the holes start 1.85 mm from the edge, on roll film the gate 2.75 mm.
        const double rebate = format == FilmFormat::mm35 ? 1.85 : film.insetMm();
        for (const QString &label : labels) {
            SCOPED_TRACE(filmFormatName(format).toStdString() + " " + label.left(20).toStdString());
            FilmOptions made = options(format, label, 36);
            made.light = true;
            made.bottomLabel = label;
            const FilmEdgePrint edge = FilmEdgePrint::print(made);
            ASSERT_EQ(edge.texts.size(), 4U);
            const QImage image = printed(edge, film, marginMm);
            const QRectF everything(-marginMm, -marginMm, film.pieceLengthMm() + 2 * marginMm,
                                    film.filmWidthMm + 2 * marginMm);
            const QRectF ink = inkRect(image, everything, marginMm);
            EXPECT_GE(ink.left(), 0.5);
            EXPECT_LE(ink.right(), film.pieceLengthMm() - 0.5);
            EXPECT_GE(ink.top(), 0);
            EXPECT_LE(ink.bottom(), film.filmWidthMm);
            const QRectF between(-marginMm, rebate, everything.width(), film.filmWidthMm - 2 * rebate);
            EXPECT_TRUE(inkRect(image, between, marginMm).isEmpty());
            for (std::size_t i = 0; i < edge.texts.size(); ++i) {
                const QRectF rect = edgeTextRect(edge.texts[i]);
                EXPECT_LE(rect.width(), edge.texts[i].widestMm + 1e-9);
                EXPECT_FALSE(inkRect(image, rect, marginMm).isEmpty());
                for (std::size_t j = 0; j < i; ++j) {
                    EXPECT_FALSE(rect.intersects(edgeTextRect(edge.texts[j]))) << i << " meets " << j;
                }
                for (const QPolygonF &arrow : edge.arrows) {
                    EXPECT_FALSE(rect.intersects(arrow.boundingRect())) << "text " << i << " meets an arrow";
                }
            }
        }
    }
}

TEST(FilmEdgePrint, PrintsPlainZeros)
{
    constexpr int marginMm = 1;
    FilmEdgePrint edge;
    edge.texts.push_back({u"0"_s, {2, 2}, 6, 20});
    const FilmDimensions film = filmDimensions(FilmFormat::mm35);
    const QImage image = printed(edge, film, marginMm);
    const QRectF ink = inkRect(image, {0, 0, 12, 12}, marginMm);
    int runs = 0;
    bool before = false;
    for (double y = ink.top() - 0.2; y < ink.bottom() + 0.2; y += 0.05) {
        const bool black =
            image.pixelColor(qRound((ink.center().x() + marginMm) * 20), qRound((y + marginMm) * 20))
                .value() < 128;
        runs += black && !before;
        before = black;
    }
    EXPECT_EQ(runs, 2); // the bowl's top and bottom, and nothing in its middle
}

TEST(FilmEdgePrint, RowsAreEven)
{
    constexpr int marginMm = 1;
    for (const FilmFormat format : filmFormats) {
        const FilmDimensions film = filmDimensions(format);
        FilmOptions made = options(format, u"HHHH"_s, 1);
        made.light = true;
        made.bottomLabel = u"HHHH"_s;
        const FilmEdgePrint edge = FilmEdgePrint::print(made);
        const QImage image = printed(edge, film, marginMm);
        double lowest[2] = {1e9, 1e9};
        double highest[2] = {-1e9, -1e9};
        const auto note = [&](const QRectF &rect) {
            const int row = rect.center().y() > film.filmWidthMm / 2 ? 1 : 0;
            lowest[row] = std::min(lowest[row], rect.center().y());
            highest[row] = std::max(highest[row], rect.center().y());
        };
        for (const FilmEdgeText &text : edge.texts) {
            note(inkRect(image, edgeTextRect(text), marginMm));
        }
        for (const QPolygonF &arrow : edge.arrows) {
            note(arrow.boundingRect());
        }
        EXPECT_LT(highest[0] - lowest[0], 0.15) << filmFormatName(format).toStdString();
        EXPECT_LT(highest[1] - lowest[1], 0.2) << filmFormatName(format).toStdString();
    }
}

TEST(FilmEdgePrint, ALongLabelShrinksAsAWholeAndStaysInItsRow)
{
    FilmOptions made = options(FilmFormat::mm35, QString(40, u'胶'));
    const FilmEdgeText marking = FilmEdgePrint::print(made).texts.front();
    const QRectF rect = edgeTextRect(marking);
    EXPECT_NEAR(rect.width(), 38.4 - 8, 1e-9);
    EXPECT_NEAR(rect.center().y(), 0.2 + 1.1 / 2, 1e-9);
    // 40 characters of an em and their kerning: 40 × (1.1 + 0.02) = 44.8 mm, so 1.1 × 30.4 ÷ 44.8 remains.
    EXPECT_NEAR(rect.height(), 1.1 * 30.4 / 44.8, 0.01);
    made.stock = u"SHORT"_s;
    // The edge print's face advances 0.6 of its size: 5 × (0.6 × 1.1 + 0.02) = 3.4 mm.
    EXPECT_NEAR(edgeTextRect(FilmEdgePrint::print(made).texts.front()).width(), 3.4, 0.01);
}

TEST(FilmEdgePrint, LettersOfUsualHeightKeepTheirSize)
{
    for (const FilmFormat format : filmFormats) {
        for (const QString &label : {u"ÅÉÇ gjpqy|"_s, u"胶卷"_s, u"فيلم"_s, u"Việt Ậ"_s, u"ฟิล์ม"_s}) {
            FilmOptions made = options(format, label, 36);
            made.bottomLabel = label;
            for (const FilmEdgeText &text : FilmEdgePrint::print(made).texts) {
                EXPECT_NEAR(edgeTextRect(text).height(), text.sizeMm, 1e-9) << label.toStdString();
            }
        }
    }
}

TEST(FilmFormatTitle, TellsTheFormatsApartInEveryLanguage)
{
    for (const QString &language : {u"chinese"_s, u"english"_s, u"french"_s}) {
        setLanguageSources({[&language] { return language; }, {}});
        QStringList titles;
        for (const FilmFormat format : filmFormats) {
            titles.append(filmFormatTitle(format));
        }
        EXPECT_EQ(titles.removeDuplicates(), 0) << language.toStdString();
    }
    setLanguageSources({{}, systemLanguagesFromEnvironment});
}

} // namespace
} // namespace tarnovel
