// What a sample of the pen costs from its arrival to the pixels on the screen, with a full page of dry
// strokes under it, at two device pixels to a logical one.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>

#include <QGuiApplication>
#include <QPainter>
#include <benchmark/benchmark.h>

#include "handwriting/HandwritingFinish.h"
#include "handwriting/InkSurface.h"
#include "support/ProcessorTime.h"
#include "support/RecordedSignature.h"

namespace tarnovel::bench {
namespace {

constexpr QSize referencePixels(1050, 1400);
constexpr qsizetype strokesOnPage = 200;
/// A window of 1440 × 920 less its bars, at twice the size of the fitted page.
constexpr InkView view = {{2880, 1440}, {-390, 600}, 2};
constexpr double width = 6;

constexpr std::array pens = {InkPen::signature, InkPen::fountain, InkPen::pencil, InkPen::marker};
constexpr std::array names = {"signature", "fountain", "pencil", "marker"};

const QList<QList<InkSample>> &recording()
{
    static const auto strokes = test::recordedSignature(TARNOVEL_SOURCE_DIR "/samples/signature.txt");
    return strokes;
}

InkStroke recorded(InkPen pen, qsizetype index, QPointF offset)
{
    InkStroke stroke{pen, softBlack, width, 1, recording().at(index % recording().size())};
    for (InkSample &sample : stroke.samples) {
        sample.position += offset;
    }
    return stroke;
}

InkDrawing fullPage(InkPen pen)
{
    InkDrawing page;
    for (qsizetype i = 0; i < strokesOnPage; ++i) {
        const QPointF offset(static_cast<double>(i * 83 % 430), static_cast<double>(i * 191 % 1150));
        page.append(std::make_shared<const DryStroke>(recorded(pen, i, offset)));
    }
    return page;
}

/// A page with a window over it.
struct Studio {
    explicit Studio(InkPen written) : pen(written), page(fullPage(written))
    {
        reference.fill(Qt::white);
        screen.fill(Qt::white);
        surface.setView(view, page);
    }

    /// What a window does for a sample: one region of the reference and of the ink is painted.
    void repaint(const QRect &pixels)
    {
        QPainter painter(&screen);
        painter.setClipRect(pixels);
        painter.drawImage(QRectF(-view.origin, QSizeF(referencePixels) * view.scale), reference);
        painter.drawImage(pixels, surface.image(), pixels);
    }

    /// Writes the signature with a repaint a sample, and takes it off again.
    void replay()
    {
        for (qsizetype i = 0; i < recording().size(); ++i) {
            const InkStroke stroke = recorded(pen, i, {200, 500});
            InkPathBuilder path(stroke);
            for (const InkSample &sample : stroke.samples) {
                const auto before = std::chrono::steady_clock::now();
                path.append(sample);
                repaint(surface.write(stroke, path));
                const std::chrono::duration<double, std::milli> spent =
                    std::chrono::steady_clock::now() - before;
                updates.push_back(spent.count());
            }
            surface.abandon();
        }
    }

    double percentile(double part)
    {
        std::sort(updates.begin(), updates.end());
        return updates.at(static_cast<size_t>(part * static_cast<double>(updates.size() - 1)));
    }

    InkPen pen;
    InkDrawing page;
    InkSurface surface;
    QImage reference{referencePixels, QImage::Format_RGB32};
    QImage screen{view.pixels, QImage::Format_RGB32};
    std::vector<double> updates;
};

InkStroke longStroke()
{
    InkStroke stroke = recorded(InkPen::fountain, 0, {200, 500});
    const QList<InkSample> once = stroke.samples;
    while (stroke.samples.size() < 10'000) {
        stroke.samples += once;
    }
    return stroke;
}

} // namespace
} // namespace tarnovel::bench

int main(int argc, char **argv)
{
    using namespace tarnovel;
    using namespace tarnovel::bench;
    benchmark::Initialize(&argc, argv);
    const QGuiApplication application(argc, argv);
    std::map<InkPen, Studio> studios;
    for (size_t i = 0; i < pens.size(); ++i) {
        Studio &studio = studios.try_emplace(pens.at(i), pens.at(i)).first->second;
        const std::string name = names.at(i);
        add(name + "_replay", [&studio] { studio.replay(); });
        add(name + "_whole_view", [&studio] {
            studio.surface.setView({view.pixels, view.origin, 1.9}, studio.page);
            studio.surface.setView(view, studio.page);
        });
    }
    const InkStroke stroke = longStroke();
    add("long_stroke_dry", [&stroke] {
        const DryStroke dry(stroke);
        InkRenderer::render({std::make_shared<const DryStroke>(dry)}, {0, 0, 1050, 1400}, view.scale);
    });
    const InkDrawing signature = fullPage(InkPen::fountain).first(3);
    const FinishStyle glitter{HandwritingFinish::glitter, softBlack};
    add("glitter_half", [&] { finishedImage(signature, glitter, referencePixels, 0.5); });
    add("glitter_whole", [&] { finishedImage(signature, glitter, referencePixels, 1); });
    benchmark::RunSpecifiedBenchmarks();

    std::printf("\nProcessor time, medians: handwriting, 200 strokes on the page, device ratio 2\n");
    for (size_t i = 0; i < pens.size(); ++i) {
        Studio &studio = studios.at(pens.at(i));
        if (!studio.updates.empty()) {
            std::printf("%-9s  a sample to the screen %.3f ms, 95 %% %.3f, all %.3f (budget 8); "
                        "whole view %.1f ms\n",
                        names.at(i), studio.percentile(0.5), studio.percentile(0.95), studio.percentile(1),
                        medianMs(std::string(names.at(i)) + "_whole_view") / 2);
        }
    }
    std::printf("A stroke of 10,000 samples, from samples to pixels: %.1f ms\n", medianMs("long_stroke_dry"));
    std::printf("Glitter of a signature: preview %.1f ms, saved %.1f ms\n", medianMs("glitter_half"),
                medianMs("glitter_whole"));
    return 0;
}
