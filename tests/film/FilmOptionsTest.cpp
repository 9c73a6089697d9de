#include "film/FilmOptions.h"

#include <climits>
#include <vector>

#include <gtest/gtest.h>

namespace tarnovel {
namespace {

using namespace Qt::StringLiterals;

constexpr QSizeF landscape(6000, 4000);
constexpr QSizeF portrait(4000, 6000);
constexpr QSizeF square(3000, 3000);

TEST(FilmOptions, ANewFilmFrameIsTheFirstFrameOfPerforatedPortra)
{
    const FilmOptions options;
    EXPECT_EQ(options.stock, u"Kodak Portra 400"_s);
    EXPECT_EQ(options.format, FilmFormat::mm35);
    EXPECT_TRUE(options.perforations);
    EXPECT_FALSE(options.light);
    EXPECT_TRUE(options.showsNumber);
    EXPECT_EQ(options.number, 1);
    EXPECT_EQ(options.topLabel, std::nullopt);
    EXPECT_EQ(options.bottomLabel, std::nullopt);
    // An empty label is stored as such and is another record than an absent one.
    FilmOptions labelled = options;
    labelled.topLabel = u""_s;
    EXPECT_NE(labelled, options);
}

TEST(FilmFormat, DimensionsAreThoseOfRealFilm)
{
    struct Row {
        FilmFormat format;
        const char *name;
        double width, gateLength, gateHeight, pieceLength, inset;
        int frames;
    };
    const std::vector<Row> rows{
        {FilmFormat::mm35, "mm35", 35.0, 36.0, 24.0, 38.4, 5.5, 36},
        {FilmFormat::medium645, "medium645", 61.5, 41.5, 56.0, 43.9, 2.75, 16},
        {FilmFormat::medium66, "medium66", 61.5, 56.0, 56.0, 58.4, 2.75, 12},
        {FilmFormat::medium67, "medium67", 61.5, 69.0, 56.0, 71.4, 2.75, 10},
        {FilmFormat::medium69, "medium69", 61.5, 84.0, 56.0, 86.4, 2.75, 8},
    };
    ASSERT_EQ(rows.size(), filmFormats.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row &row = rows[i];
        SCOPED_TRACE(row.name);
        EXPECT_EQ(filmFormats[i], row.format);
        EXPECT_EQ(filmFormatName(row.format), QLatin1StringView(row.name));
        EXPECT_EQ(filmFormatFromName(QLatin1StringView(row.name)), row.format);
        const FilmDimensions dimensions = filmDimensions(row.format);
        EXPECT_DOUBLE_EQ(dimensions.filmWidthMm, row.width);
        EXPECT_DOUBLE_EQ(dimensions.pieceLengthMm(), row.pieceLength);
        const QRectF gate = dimensions.gate();
        EXPECT_DOUBLE_EQ(gate.x(), 1.2);
        EXPECT_DOUBLE_EQ(gate.y(), row.inset);
        EXPECT_DOUBLE_EQ(gate.width(), row.gateLength);
        EXPECT_DOUBLE_EQ(gate.height(), row.gateHeight);
        EXPECT_EQ(framesPerRoll(row.format), row.frames);
    }
    EXPECT_EQ(filmFormatFromName(u"mm36"_s), std::nullopt);
    EXPECT_EQ(filmFormatFromName(u"MM35"_s), std::nullopt);
    EXPECT_EQ(filmFormatFromName({}), std::nullopt);
}

TEST(FilmFormat, ThePieceStandsSoThatItsGateLiesLikeThePhoto)
{
    struct Row {
        FilmFormat format;
        QSizeF source, size;
        bool rotated;
    };
    const std::vector<Row> rows{
        {FilmFormat::mm35, landscape, {38.4, 35.0}, false},
        {FilmFormat::mm35, square, {38.4, 35.0}, false},
        {FilmFormat::mm35, portrait, {35.0, 38.4}, true},
        // A 6 × 4.5 camera held level makes portraits: the landscape photo is the turned one.
        {FilmFormat::medium645, portrait, {43.9, 61.5}, false},
        {FilmFormat::medium645, landscape, {61.5, 43.9}, true},
        {FilmFormat::medium645, square, {61.5, 43.9}, true},
        {FilmFormat::medium66, landscape, {58.4, 61.5}, false},
        {FilmFormat::medium66, portrait, {58.4, 61.5}, false},
        {FilmFormat::medium67, landscape, {71.4, 61.5}, false},
        {FilmFormat::medium67, portrait, {61.5, 71.4}, true},
        {FilmFormat::medium69, landscape, {86.4, 61.5}, false},
        {FilmFormat::medium69, portrait, {61.5, 86.4}, true},
    };
    for (const Row &row : rows) {
        const QSizeF size = orientedSize(row.format, row.source);
        EXPECT_DOUBLE_EQ(size.width(), row.size.width()) << filmFormatName(row.format).toStdString();
        EXPECT_DOUBLE_EQ(size.height(), row.size.height()) << filmFormatName(row.format).toStdString();
        EXPECT_EQ(isFilmRotated(row.format, row.source), row.rotated);
    }
}

TEST(FilmFormat, AFrameNumberStaysOnTheRoll)
{
    EXPECT_EQ(printedFrameNumber(FilmFormat::mm35, INT_MIN), 1);
    EXPECT_EQ(printedFrameNumber(FilmFormat::mm35, 0), 1);
    EXPECT_EQ(printedFrameNumber(FilmFormat::mm35, 36), 36);
    EXPECT_EQ(printedFrameNumber(FilmFormat::mm35, 40), 36);
    EXPECT_EQ(printedFrameNumber(FilmFormat::medium69, 40), 8);
    EXPECT_EQ(printedFrameNumber(FilmFormat::medium645, INT_MAX), 16);
}

} // namespace
} // namespace tarnovel
