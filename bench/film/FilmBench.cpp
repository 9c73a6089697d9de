// What a film frame costs beside a simple one that draws the same photo on the same canvas, and what a
// repaint of the preview costs.

#include <cstdio>
#include <list>

#include <QGuiApplication>
#include <QPainter>
#include <benchmark/benchmark.h>

#include "render/CompositionRenderer.h"
#include "render/FrameGeometry.h"
#include "support/ProcessorTime.h"

namespace tarnovel::bench {
namespace {

constexpr double exportPixels = 4096;
constexpr double previewPixels = 1400;
constexpr int paintsPerSample = 10;

/// A frame of a 24 megapixel photo with its photo decoded for the canvas, ready to be drawn.
struct Frame {
    Frame(FrameStyle style, FilmFormat format, double longEdge)
    {
        item.width = 6000;
        item.height = 4000;
        item.settings.film = FilmOptions();
        item.settings.film->format = format;
        const QSizeF piece = orientedSize(format, item.size());
        item.settings.preset = CanvasPreset::custom;
        item.settings.customWidth = piece.width();
        item.settings.customHeight = piece.height();
        item.settings.scale = 1;
        item.settings.style = style;
        canvas = QImage(FrameGeometry::canvas(item.settings.ratio(item.size()), longEdge).toSize(),
                        QImage::Format_RGB32);
        const PhotoPlacement placement =
            CompositionRenderer::photoPlacement(item, item.settings, canvas.size());
        const QRectF &whole = placement.whole;
        const QRect pixels = (placement.shown & whole).toAlignedRect();
        images.photo.extent = {(pixels.x() - whole.x()) / whole.width(),
                               (pixels.y() - whole.y()) / whole.height(), pixels.width() / whole.width(),
                               pixels.height() / whole.height()};
        images.photo.image = QImage(pixels.size(), QImage::Format_RGB32);
        images.photo.image.fill(QColor(90, 120, 150));
        draw();
    }

    void draw()
    {
        QPainter painter(&canvas);
        CompositionRenderer::draw(painter, item, item.settings, canvas.size(), images);
    }

    PhotoItem item;
    QImage canvas;
    CompositionImages images;
};

void addFrame(std::list<Frame> &frames, const std::string &name, const Frame &frame)
{
    frames.push_back(frame);
    add(name, [&kept = frames.back()] {
        for (int i = 0; i < paintsPerSample; ++i) {
            kept.draw();
        }
    });
}

} // namespace
} // namespace tarnovel::bench

int main(int argc, char **argv)
{
    using namespace tarnovel;
    using namespace tarnovel::bench;
    benchmark::Initialize(&argc, argv);
    const QGuiApplication application(argc, argv);
    std::list<Frame> frames;
    for (const FilmFormat format : filmFormats) {
        const std::string name = filmFormatName(format).toStdString();
        addFrame(frames, name + "_film", Frame(FrameStyle::film, format, exportPixels));
        addFrame(frames, name + "_simple", Frame(FrameStyle::simple, format, exportPixels));
        addFrame(frames, name + "_repaint", Frame(FrameStyle::film, format, previewPixels));
    }
    benchmark::RunSpecifiedBenchmarks();
    std::printf("\nProcessor time, medians: film frames, %d paints\n", paintsPerSample);
    for (const FilmFormat format : filmFormats) {
        const std::string name = filmFormatName(format).toStdString();
        printRatio("film frame against simple at 4096, " + name, name + "_film", name + "_simple", 1.35);
    }
    for (const FilmFormat format : filmFormats) {
        const std::string name = filmFormatName(format).toStdString();
        judge("repainting a preview of 1400 px, " + name, medianMs(name + "_repaint") / paintsPerSample, "ms",
              8);
    }
    return exitStatus();
}
