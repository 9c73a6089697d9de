// Draws the contact sheet of the film frames, for looking at: five formats, dark and light base, landscape
// and portrait, with numbers and without, and the corners of each at 100 % of a 2400 px export.
//
//     build/release/tools/film_sheet sheet.png [LANDSCAPE PORTRAIT] [STOCK]

#include <cstdio>

#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>

#include "render/CompositionRenderer.h"
#include "render/FrameGeometry.h"

namespace {

using namespace tarnovel;
using namespace Qt::StringLiterals;

constexpr int previewPixels = 420;
constexpr int exportPixels = 2400;
constexpr QSize cornerPixels(400, 400);
constexpr int gapPixels = 12;
constexpr QSize cellPixels(previewPixels + 2 * (cornerPixels.width() + gapPixels) + gapPixels,
                           2 * (cornerPixels.height() + gapPixels));

QImage readUpright(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QImage image = reader.read();
    if (image.isNull()) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(path), qPrintable(reader.errorString()));
        std::exit(1);
    }
    return image.convertToFormat(QImage::Format_RGB32);
}

/// The frame as an export draws it: the photo's pixels lie on those of the canvas.
QImage framed(const PhotoItem &item, const QImage &source, double longEdge)
{
    const QSize size = FrameGeometry::canvas(item.settings.ratio(item.size()), longEdge).toSize();
    const QRectF whole = CompositionRenderer::photoPlacement(item, item.settings, size).whole;
    const QRect pixels = whole.toAlignedRect();
    PhotoImage photo;
    photo.image = source.scaled(pixels.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    photo.extent = {(pixels.x() - whole.x()) / whole.width(), (pixels.y() - whole.y()) / whole.height(),
                    pixels.width() / whole.width(), pixels.height() / whole.height()};
    QImage canvas(size, QImage::Format_RGB32);
    QPainter painter(&canvas);
    CompositionRenderer::draw(painter, item, item.settings, size, {.photo = photo});
    return canvas;
}

void drawCell(QPainter &sheet, QPoint at, const FilmOptions &options, const QImage &source)
{
    PhotoItem item;
    item.width = source.width();
    item.height = source.height();
    item.settings.style = FrameStyle::film;
    item.settings.preset = CanvasPreset::original;
    item.settings.scale = 1;
    item.settings.film = options;
    sheet.drawImage(at, framed(item, source, previewPixels));
    const QImage large = framed(item, source, exportPixels);
    const QSize far(large.width() - cornerPixels.width(), large.height() - cornerPixels.height());
    for (int corner = 0; corner < 4; ++corner) {
        const int column = corner % 2;
        const int row = corner / 2;
        const QRect part(QPoint(column * far.width(), row * far.height()), cornerPixels);
        const QPoint offset(previewPixels + gapPixels + column * (cornerPixels.width() + gapPixels),
                            row * (cornerPixels.height() + gapPixels));
        sheet.drawImage(at + offset, large, part);
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList words = QGuiApplication::arguments();
    if (words.size() != 2 && words.size() != 4 && words.size() != 5) {
        std::fputs("usage: film_sheet SHEET.png [LANDSCAPE PORTRAIT [STOCK]]\n", stderr);
        return 2;
    }
    const QString samples = QStringLiteral(TARNOVEL_SOURCE_DIR "/samples/");
    const QImage landscape = readUpright(words.value(2, samples + u"tree.jpg"_s));
    const QImage portrait = readUpright(words.value(3, samples + u"night.jpg"_s));

    QImage sheet(cellPixels.width() * 4, cellPixels.height() * 2 * static_cast<int>(filmFormats.size()),
                 QImage::Format_RGB32);
    sheet.fill(QColor(128, 96, 160));
    QPainter painter(&sheet);
    int row = 0;
    for (const FilmFormat format : filmFormats) {
        for (const bool light : {false, true}) {
            int column = 0;
            for (const QImage &source : {landscape, portrait}) {
                for (const bool numbers : {true, false}) {
                    FilmOptions options;
                    options.stock = words.value(4, options.stock);
                    options.format = format;
                    options.light = light;
                    options.showsNumber = numbers;
                    options.number = 7;
                    drawCell(painter, {column * cellPixels.width(), row * cellPixels.height()}, options,
                             source);
                    ++column;
                }
            }
            ++row;
        }
    }
    painter.end();
    if (!sheet.save(words[1])) {
        std::fprintf(stderr, "%s: cannot be written\n", qPrintable(words[1]));
        return 1;
    }
    return 0;
}
