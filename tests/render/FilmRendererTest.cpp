#include "render/FilmRenderer.h"

#include <vector>

#include <QPaintDevice>
#include <QPainter>
#include <gtest/gtest.h>

#include "render/TestPictures.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

PhotoItem filmItem(QSize photo, FilmFormat format = FilmFormat::mm35)
{
    PhotoItem item = photoItem(photo.width(), photo.height());
    item.settings.style = FrameStyle::film;
    item.settings.preset = CanvasPreset::original;
    item.settings.scale = 1;
    item.settings.film = FilmOptions();
    item.settings.film->format = format;
    item.settings.film->number = 7;
    return item;
}

/// The piece of film filling its canvas, at this many pixels a millimetre.
QImage piece(const PhotoItem &item, const QImage &photo, double pixelsPerMm)
{
    const QSizeF mm = orientedSize(item.settings.film.value_or(FilmOptions()).format, item.size());
    return drawn(item, (mm * pixelsPerMm).toSize(), {.photo = {photo}});
}

/// Starts and lengths of the runs of nearly white pixels along a line.
std::vector<std::pair<int, int>> whiteRuns(const QImage &image, QPoint from, QPoint step)
{
    std::vector<std::pair<int, int>> runs;
    bool inside = false;
    int i = 0;
    for (QPoint at = from; image.rect().contains(at); at += step, ++i) {
        const bool white = qGray(image.pixel(at)) > 245;
        if (white && !inside) {
            runs.emplace_back(i, 0);
        }
        inside = white;
        if (white) {
            ++runs.back().second;
        }
    }
    return runs;
}

TEST(FilmRenderer, PunchesEightHolesARowAtTheStandardPitch)
{
    constexpr int scale = 40;
    for (const bool turned : {false, true}) {
        for (const bool light : {false, true}) {
            PhotoItem item = filmItem(turned ? QSize(20, 30) : QSize(30, 20));
            item.settings.film->light = light;
            QImage image = piece(item, {}, scale);
            if (turned) {
                image = image.transformed(QTransform().rotate(-90));
            }
            // The middles of the rows: 1.85 + 2.794 ÷ 2 = 3.247 mm from either edge.
            for (const double row : {3.247, 35 - 3.247}) {
                const auto runs = whiteRuns(image, {0, qRound(row * scale)}, {1, 0});
                ASSERT_EQ(runs.size(), 8U);
                for (std::size_t i = 0; i < runs.size(); ++i) {
                    // Centres at (38.4 − 33.25) ÷ 2 + 4.75 i; holes 1.981 wide less half of the 0.035 rim a
                    // side.
                    EXPECT_NEAR(runs[i].first + runs[i].second / 2.0,
                                (2.575 + 4.75 * static_cast<double>(i)) * scale, 1);
                    EXPECT_NEAR(runs[i].second, 1.981 * scale, 3);
                }
            }
            const auto column = whiteRuns(image, {qRound(2.575 * scale), 0}, {0, 1});
            ASSERT_EQ(column.size(), 2U);
            EXPECT_NEAR(column[0].first, 1.85 * scale, 2);
            EXPECT_NEAR(column[0].second, 2.794 * scale, 3);
            EXPECT_NEAR(column[1].first + column[1].second, (35 - 1.85) * scale, 2);
        }
    }
}

TEST(FilmRenderer, ShadesTheHolesOfALightBase)
{
    constexpr int scale = 40;
    PhotoItem item = filmItem({30, 20});
    for (const bool light : {false, true}) {
        item.settings.film->light = light;
        const QImage image = piece(item, {}, scale);
        // To the left of the first hole, whose left edge is at 2.575 − 1.981 ÷ 2 mm.
        const int row = qRound(3.247 * scale);
        const double edge = 2.575 - 1.981 / 2;
        const int base = qGray(image.pixel(qRound((edge - 0.4) * scale), row));
        const int rim = qGray(image.pixel(static_cast<int>((edge - 0.04) * scale), row));
        EXPECT_EQ(base, light ? 235 : 6); // 0.92 and the mean of 0.026, 0.024, 0.022
        EXPECT_EQ(qGray(image.pixel(qRound((edge + 1) * scale), row)), 252);
        EXPECT_LE(rim, light ? base - 40 : 60);
    }
}

TEST(FilmRenderer, TurnsTheEdgePrintWithTheFilm)
{
    constexpr double scale = 30;
    struct Row {
        FilmFormat format;
        QSize lying;
        double markingMm; // its distance from the start of the piece
    };
    for (const Row &row : {Row{FilmFormat::mm35, {30, 20}, 6.1}, Row{FilmFormat::medium645, {20, 30}, 1.7}}) {
        SCOPED_TRACE(filmFormatName(row.format).toStdString());
        PhotoItem item = filmItem(row.lying, row.format);
        item.settings.film->topLabel = u"HALF"_s;
        const QImage lying = piece(item, {}, scale);
        PhotoItem turnedItem = filmItem(row.lying.transposed(), row.format);
        turnedItem.settings.film = item.settings.film;
        const QImage turned = piece(turnedItem, {}, scale);
        ASSERT_EQ(turned.size(), lying.size().transposed());
        EXPECT_GT(psnr(turned.transformed(QTransform().rotate(-90)), lying), 45);

        // Down the right edge: past the frame number that 35 mm film has before the marking.
        const int before = row.format == FilmFormat::mm35 ? qRound(5.5 * scale) : 0;
        const int left = turned.width() - qRound(1.8 * scale);
        int first = before;
        const auto hasInk = [&](int y) {
            for (int x = left; x < turned.width(); ++x) {
                if (qGray(turned.pixel(x, y)) > 100) {
                    return true;
                }
            }
            return false;
        };
        while (first < turned.height() - 1 && !hasInk(first)) {
            ++first;
        }
        // An H starts 0.09 of its size after its advance does.
        EXPECT_NEAR(first / scale, row.markingMm + 0.09, 0.08);
    }
}

TEST(FilmRenderer, HasNoHolesOnRollFilmOrWhenTheyAreOff)
{
    for (const FilmFormat format : filmFormats) {
        PhotoItem item = filmItem({30, 20}, format);
        item.settings.film->perforations = format != FilmFormat::mm35;
        const QImage image = piece(item, {}, 10);
        for (int y = 0; y < image.height(); ++y) {
            EXPECT_TRUE(whiteRuns(image, {0, y}, {1, 0}).empty()) << filmFormatName(format).toStdString();
        }
    }
}

TEST(FilmRenderer, DrawsTheSamePixelsEveryTime)
{
    for (const FilmFormat format : filmFormats) {
        const PhotoItem item = filmItem({60, 40}, format);
        const QImage photo = photoImage({60, 40});
        EXPECT_EQ(piece(item, photo, 12.3), piece(item, photo, 12.3));
    }
}

TEST(FilmRenderer, AgreesWithItselfAcrossSizes)
{
    const QImage landscape = photoImage({1500, 1000});
    const QImage portrait = photoImage({1000, 1500});
    for (const FilmFormat format : filmFormats) {
        for (const QImage &photo : {landscape, portrait}) {
            for (const bool light : {false, true}) {
                PhotoItem item = filmItem(photo.size(), format);
                item.settings.film->light = light;
                item.settings.film->topLabel = u"MY ROLL 胶卷 / LONG ENOUGH TO SHRINK IT ALL"_s;
                const QSizeF mm = orientedSize(format, item.size());
                const QSize small = (mm * (1024 / std::max(mm.width(), mm.height()))).toSize();
                const QImage preview = drawn(item, small, {.photo = {photo}});
                const QImage reference = shrunk(drawn(item, small * 4, {.photo = {photo}}), 4);
                EXPECT_GT(psnr(preview, reference), 42) << filmFormatName(format).toStdString() << light;
                // The rebate alone, where the letters are.
                const QRectF gate = FilmLayout::item(item, item.settings, small).photoRect;
                const int rebate = static_cast<int>(std::min(gate.left(), gate.top())) - 1;
                EXPECT_GT(psnr(preview.copy(0, 0, small.width(), rebate),
                               reference.copy(0, 0, small.width(), rebate)),
                          38);
            }
        }
    }
}

TEST(FilmRenderer, FillsTheGateWithTheUprightPhotoToItsEdges)
{
    // Quarters: red and green above, blue and white below.
    QImage quarters(200, 200, QImage::Format_RGB32);
    quarters.fill(Qt::white);
    QPainter painter(&quarters);
    painter.fillRect(0, 0, 100, 100, Qt::red);
    painter.fillRect(100, 0, 100, 100, Qt::green);
    painter.fillRect(0, 100, 100, 100, Qt::blue);
    painter.end();
    for (const FilmFormat format : filmFormats) {
        for (const QSize size : {QSize(300, 200), QSize(200, 300), QSize(900, 100), QSize(200, 200)}) {
            SCOPED_TRACE(filmFormatName(format).toStdString() + " " + std::to_string(size.width()));
            const QImage photo = quarters.scaled(size);
            const PhotoItem item = filmItem(size, format);
            const QImage image = piece(item, photo, 20);
            const QRectF gate = FilmLayout::item(item, item.settings, image.size()).photoRect;
            // Two pixels inside, past the 0.018 mm that the outline strays inwards.
            const QRect inside = gate.adjusted(2, 2, -2, -2).toAlignedRect();
            EXPECT_EQ(image.pixelColor(inside.topLeft()), QColor(Qt::red));
            EXPECT_EQ(image.pixelColor(inside.topRight()), QColor(Qt::green));
            EXPECT_EQ(image.pixelColor(inside.bottomLeft()), QColor(Qt::blue));
            EXPECT_EQ(image.pixelColor(inside.bottomRight()), QColor(Qt::white));
            const QRect outside = gate.adjusted(-2, -2, 2, 2).toAlignedRect();
            EXPECT_LT(qGray(image.pixel(outside.topLeft())), 20);
            EXPECT_LT(qGray(image.pixel(outside.bottomRight())), 20);
            EXPECT_LT(qGray(image.pixel(outside.center().x(), outside.bottom())), 20);
            // The photo's middle lies in the gate's: what overflows is cut off evenly.
            const QPoint middle = gate.center().toPoint();
            EXPECT_EQ(image.pixelColor(middle + QPoint(-8, -8)), QColor(Qt::red));
            EXPECT_EQ(image.pixelColor(middle + QPoint(8, 8)), QColor(Qt::white));
        }
    }
}

TEST(FilmRenderer, CopiesAPhotoWhosePixelsLieOnTheCanvas)
{
    // A 16:9 photo overflows the gate at its sides; what the canvas does not show is not decoded.
    const PhotoItem item = filmItem({1600, 900});
    const QSize size(769, 701);
    const PhotoPlacement placement = CompositionRenderer::photoPlacement(item, item.settings, size);
    const QRectF &whole = placement.whole;
    const QRect pixels = (placement.shown & whole).toAlignedRect();
    PhotoImage photo;
    photo.image = photoImage(pixels.size());
    photo.extent = {(pixels.x() - whole.x()) / whole.width(), (pixels.y() - whole.y()) / whole.height(),
                    pixels.width() / whole.width(), pixels.height() / whole.height()};
    const QImage canvas = drawn(item, size, {.photo = photo});
    const QRectF gate = CompositionRenderer::photoRect(item, item.settings, size);
    EXPECT_LT(gate.width(), whole.width());
    const QRect inside = gate.adjusted(2, 2, -2, -2).toAlignedRect();
    EXPECT_EQ(canvas.copy(inside), photo.image.copy(inside.translated(-pixels.topLeft())));
}

TEST(FilmRenderer, DrawsTheSameThroughAScaledOrTurnedPainter)
{
    // Only an upright painter takes the way that copies the inside of the gate.
    const QImage photo = photoImage({300, 200});
    for (const FilmFormat format : {FilmFormat::mm35, FilmFormat::medium66}) {
        const PhotoItem item = filmItem(photo.size(), format);
        const QSize size = (orientedSize(format, item.size()) * 16).toSize();
        const QImage straight = drawn(item, size, {.photo = {photo}});
        QImage turned(size.transposed(), QImage::Format_RGB32);
        QPainter painter(&turned);
        painter.translate(size.height(), 0);
        painter.rotate(90);
        CompositionRenderer::draw(painter, item, item.settings, size, {.photo = {photo}});
        painter.end();
        EXPECT_GT(psnr(turned.transformed(QTransform().rotate(-90)), straight), 40);

        QImage scaled(size, QImage::Format_RGB32);
        scaled.setDevicePixelRatio(2);
        QPainter half(&scaled);
        CompositionRenderer::draw(half, item, item.settings, QSizeF(size) / 2, {.photo = {photo}});
        half.end();
        EXPECT_GT(psnr(scaled, straight), 50);
    }
}

/// Paints elsewhere as a widget does: its size is in units of two pixels, and it lies off its window's
/// corner.
class PartOfWindow : public QPaintDevice {
public:
    PartOfWindow(QImage &window, const QRect &part) : m_window(window), m_part(part) {}

    QPaintEngine *paintEngine() const override { return nullptr; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return m_part.width();
        case PdmHeight:
            return m_part.height();
        case PdmDevicePixelRatio:
            return 2;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(2 * devicePixelRatioFScale());
        default:
            return 96; // dots per inch
        }
    }

    QPaintDevice *redirected(QPoint *offset) const override
    {
        *offset = -m_part.topLeft();
        return &m_window;
    }

private:
    QImage &m_window;
    QRect m_part;
};

TEST(FilmRenderer, DrawsTheSameInAPartOfAWindowOfDoublePixels)
{
    const QImage photo = photoImage({300, 200});
    const PhotoItem item = filmItem(photo.size());
    const QSize size(384, 350);
    const QImage straight = drawn(item, size * 2, {.photo = {photo}});
    QImage window(1000, 1000, QImage::Format_RGB32);
    window.fill(Qt::magenta);
    window.setDevicePixelRatio(2);
    PartOfWindow part(window, QRect(QPoint(100, 140), size));
    QPainter painter(&part);
    CompositionRenderer::draw(painter, item, item.settings, size, {.photo = {photo}});
    painter.end();
    EXPECT_GT(psnr(window.copy(QRect(QPoint(200, 280), size * 2)), straight), 50);
}

TEST(FilmRenderer, ShowsTheBaseThroughATransparentPhoto)
{
    QImage glass(60, 40, QImage::Format_ARGB32_Premultiplied);
    glass.fill(QColor(255, 255, 255, 128));
    const PhotoItem item = filmItem(glass.size());
    const QImage image = piece(item, glass, 10);
    const QRectF gate = FilmLayout::item(item, item.settings, image.size()).photoRect;
    for (const QPointF &at :
         {gate.center(), gate.topLeft() + QPointF(3, 3), gate.bottomRight() - QPointF(3, 3)}) {
        EXPECT_NEAR(qGray(image.pixel(at.toPoint())), 131, 2); // half white over the base's 6
    }
}

TEST(FilmRenderer, AnEdgeThatStraysOutwardsShowsPhotoAndNotFilm)
{
    // 300 pixels a millimetre: the outline strays by 5.4 pixels. A 3:2 photo just fills the 35 mm gate.
    constexpr double scale = 300;
    QImage white(30, 20, QImage::Format_RGB32);
    white.fill(Qt::white);
    const PhotoItem item = filmItem(white.size());
    const QSize size = (QSizeF(38.4, 35) * scale).toSize();
    const QRectF gate = FilmLayout::item(item, item.settings, size).photoRect;
    // The strip around the gate's upper edge alone.
    QImage strip(size.width(), 24, QImage::Format_RGB32);
    const double top = std::round(gate.top()) - 12;
    QPainter painter(&strip);
    painter.translate(0, -top);
    FilmRenderer::draw(painter, item, item.settings, size, {white});
    painter.end();
    double highest = 0;
    double lowest = 0;
    for (int j = 1; j < 48; ++j) {
        const double expected = std::sin(13 * j) * 0.018 * scale;
        const int x = qRound(gate.left() + gate.width() * j / 48);
        int y = 0;
        while (y < strip.height() - 1 && qGray(strip.pixel(x, y)) < 128) {
            ++y;
        }
        EXPECT_NEAR(y + top - gate.top(), expected, 1.5) << "point " << j;
        highest = std::max(highest, y + top - gate.top());
        lowest = std::min(lowest, y + top - gate.top());
    }
    EXPECT_GT(highest, 4);
    EXPECT_LT(lowest, -4);
}

TEST(FilmRenderer, GateOutlineStraysByTheSameSineOnEachSide)
{
    const QPainterPath path = FilmRenderer::gate({100, 200, 4800, 2400}, 1000);
    ASSERT_EQ(path.elementCount(), 4 * 48 + 1);
    EXPECT_EQ(path.elementAt(0).type, QPainterPath::MoveToElement);
    const auto expectPoint = [&path](int index, double x, double y) {
        EXPECT_NEAR(path.elementAt(index).x, x, 0.01) << index;
        EXPECT_NEAR(path.elementAt(index).y, y, 0.01) << index;
    };
    // The push is 18 sin(k), with k = 0, 13, 26 … from the first corner, and from 7, 14 and 21 at the others.
    expectPoint(0, 100, 200);
    expectPoint(1, 200, 200 + 18 * 0.42017);    // sin 13
    expectPoint(48, 4900 + 18 * 0.65699, 200);  // sin 7
    expectPoint(49, 4900 + 18 * 0.91295, 250);  // sin 20
    expectPoint(96, 4900, 2600 + 18 * 0.99061); // sin 14
    expectPoint(97, 4800, 2600 + 18 * 0.95638); // sin 27
    expectPoint(144, 100 + 18 * 0.83666, 2600); // sin 21
    expectPoint(192, 100, 200);                 // closed
}

TEST(FilmRenderer, GrainLiesOnTheRebateAndNeverInTheGate)
{
    for (const bool light : {false, true}) {
        PhotoItem item = filmItem({30, 20});
        item.settings.film->light = light;
        item.settings.film->perforations = false;
        item.settings.film->showsNumber = false;
        item.settings.film->stock = u"Kodak Ektapan 400"_s;
        const QImage image = piece(item, {}, 60);
        const QRectF gate = FilmLayout::item(item, item.settings, image.size()).photoRect;
        const QRgb base = image.pixel(gate.center().toPoint());
        const QImage picture = image.copy(gate.toAlignedRect().adjusted(1, 1, -1, -1));
        QImage plain(picture.size(), QImage::Format_RGB32);
        plain.fill(base);
        EXPECT_EQ(picture, plain);
        int specks = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const int difference = qGray(image.pixel(x, y)) - qGray(base);
                specks += difference != 0;
                EXPECT_LE(std::abs(difference), 10);
                EXPECT_TRUE(light ? difference <= 0 : difference >= 0);
            }
        }
        EXPECT_GT(specks, 50);
    }
}

TEST(FilmRenderer, CoversTheWholeCanvasAndSurvivesAbsurdSettings)
{
    const QImage photo = photoImage({20, 10});
    for (const FilmFormat format : filmFormats) {
        for (const double value : {1e308, -1e308, 0.0, 0.3}) {
            PhotoItem item = filmItem({20, 10}, format);
            item.settings.scale = item.settings.x = item.settings.y = value;
            item.settings.border = 0.1;
            item.settings.borderColor = {1, 0, 1};
            item.settings.film->topLabel = u"A"_s + QString(100'000, QChar(0x0301));
            for (const QSizeF source : {QSizeF(20, 10), QSizeF(0, 0), QSizeF(1e300, 1e-300)}) {
                item.width = source.width();
                item.height = source.height();
                const QImage image = drawn(item, {900, 1200}, {.photo = {photo}});
                for (const QPoint corner :
                     {QPoint(0, 0), QPoint(899, 0), QPoint(0, 1199), QPoint(899, 1199)}) {
                    EXPECT_LT(qGray(image.pixel(corner)), 20);
                }
            }
        }
    }
}

} // namespace
} // namespace tarnovel
