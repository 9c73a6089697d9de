#include "render/FilmLayout.h"

#include <vector>

#include <gtest/gtest.h>

namespace tarnovel {
namespace {

PhotoItem filmPhoto(FilmFormat format, QSizeF photo)
{
    PhotoItem item;
    item.width = photo.width();
    item.height = photo.height();
    item.settings.style = FrameStyle::film;
    item.settings.scale = 1;
    item.settings.film = FilmOptions();
    item.settings.film->format = format;
    return item;
}

void expectNear(const QRectF &actual, const QRectF &expected)
{
    EXPECT_NEAR(actual.x(), expected.x(), 1e-9);
    EXPECT_NEAR(actual.y(), expected.y(), 1e-9);
    EXPECT_NEAR(actual.width(), expected.width(), 1e-9);
    EXPECT_NEAR(actual.height(), expected.height(), 1e-9);
}

TEST(FilmLayout, PutsTheGateWhereTheFilmHasIt)
{
    const QSizeF landscape(3000, 2000);
    const QSizeF portrait(2000, 3000);
    struct Row {
        FilmFormat format;
        QSizeF photo, canvas;
        bool rotated;
        QRectF gate;
    };
    // Each canvas is the piece at 100 units a millimetre. A lying gate starts 1.2 mm from the piece's left
    // and (film width − gate height) ÷ 2 from its top: (35 − 24) ÷ 2 = 5.5 and (61.5 − 56) ÷ 2 = 2.75.
    // Turned, it starts film width − (5.5 + 24) = 5.5, or 61.5 − (2.75 + 56) = 2.75, from the left and 1.2
    // from the top.
    const std::vector<Row> rows{
        {FilmFormat::mm35, landscape, {3840, 3500}, false, {120, 550, 3600, 2400}},
        {FilmFormat::mm35, portrait, {3500, 3840}, true, {550, 120, 2400, 3600}},
        {FilmFormat::medium645, portrait, {4390, 6150}, false, {120, 275, 4150, 5600}},
        {FilmFormat::medium645, landscape, {6150, 4390}, true, {275, 120, 5600, 4150}},
        {FilmFormat::medium66, landscape, {5840, 6150}, false, {120, 275, 5600, 5600}},
        {FilmFormat::medium66, portrait, {5840, 6150}, false, {120, 275, 5600, 5600}},
        {FilmFormat::medium67, landscape, {7140, 6150}, false, {120, 275, 6900, 5600}},
        {FilmFormat::medium67, portrait, {6150, 7140}, true, {275, 120, 5600, 6900}},
        {FilmFormat::medium69, landscape, {8640, 6150}, false, {120, 275, 8400, 5600}},
        {FilmFormat::medium69, portrait, {6150, 8640}, true, {275, 120, 5600, 8400}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(filmFormatName(row.format).toStdString() + (row.rotated ? " turned" : " lying"));
        const PhotoItem item = filmPhoto(row.format, row.photo);
        const FilmLayout layout = FilmLayout::item(item, item.settings, row.canvas);
        EXPECT_EQ(layout.format, row.format);
        EXPECT_EQ(layout.rotated, row.rotated);
        EXPECT_NEAR(layout.scale, 100, 1e-9);
        expectNear(layout.photoRect, row.gate);
        expectNear(layout.pieceRect, QRectF({}, row.canvas));
        EXPECT_EQ(layout.gateMm, filmDimensions(row.format).gate());
        EXPECT_DOUBLE_EQ(layout.pieceLengthMm, filmDimensions(row.format).pieceLengthMm());
        EXPECT_DOUBLE_EQ(layout.filmWidthMm, filmDimensions(row.format).filmWidthMm);
    }
}

TEST(FilmLayout, HoldsThePieceOnTheCanvas)
{
    PhotoItem item = filmPhoto(FilmFormat::mm35, {3000, 2000});
    const auto piece = [&item](double scale, double x, double y) {
        item.settings.scale = scale;
        item.settings.x = x;
        item.settings.y = y;
        return FilmLayout::item(item, item.settings, {768, 1000}).pieceRect;
    };
    // 768 ÷ 38.4 = 20 units a millimetre: the piece is 768 × 700, and 384 × 350 at half scale.
    expectNear(piece(1, 0, 0), {0, 150, 768, 700});
    expectNear(piece(7, 0, 0), {0, 150, 768, 700});
    expectNear(piece(0.5, 0, 0), {192, 325, 384, 350});
    expectNear(piece(0, 0, 0), {345.6, 465, 76.8, 70});
    expectNear(piece(-3, 0, 0), {345.6, 465, 76.8, 70});
    // The centre moves by fractions of the canvas: 0.1 × 768 and −0.2 × 1000, then no farther than the edge.
    expectNear(piece(0.5, 0.1, -0.2), {268.8, 125, 384, 350});
    expectNear(piece(0.5, 0.9, -0.9), {384, 0, 384, 350});
    expectNear(piece(1, 0.9, 0.9), {0, 300, 768, 700});
    item.settings.lockX = true;
    expectNear(piece(0.5, 0.9, -0.9), {192, 0, 384, 350});
    item.settings.lockY = true;
    expectNear(piece(0.5, 0.9, -0.9), {192, 325, 384, 350});
}

TEST(FilmLayout, TakesTheDefaultsOfAStyleWithoutFilmOptions)
{
    PhotoItem item = filmPhoto(FilmFormat::medium69, {3000, 3000});
    item.settings.film = {};
    const FilmLayout layout = FilmLayout::item(item, item.settings, {3840, 3500});
    EXPECT_EQ(layout.format, FilmFormat::mm35);
    EXPECT_FALSE(layout.rotated); // a square counts as landscape
    expectNear(layout.photoRect, {120, 550, 3600, 2400});
}

} // namespace
} // namespace tarnovel
