// Nine photos of 24 megapixels: saving the collage against decoding the photos at their cells' sizes, and the
// board's repaint while it changes.

#include <algorithm>
#include <cstdio>
#include <vector>

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

#include "collage/CollageGestures.h"
#include "collage/CollageStudio.h"
#include "support/LibraryWorld.h"
#include "support/ProcessorTime.h"

using namespace Qt::StringLiterals;

namespace tarnovel::bench {
namespace {

constexpr int photoCount = 9;

struct World : LibraryWorld {
    World() : LibraryWorld(EditorModel::Load::Empty) {}

    CollageStudio studio{model, pipeline, clock};
    CollageGestures gestures{studio};
    QImage window{QSize(2880, 1840), QImage::Format_RGB32};
};

void repaint(World &world)
{
    QPainter painter(&world.window);
    painter.translate(540, 20);
    world.studio.board().draw(painter);
}

/// Opens the studio on nine photos with a board of 900 points at device ratio 2.
void open(World &world)
{
    for (int i = 0; i < photoCount; ++i) {
        world.append(u"%1.jpg"_s.arg(i));
        world.studio.toggle(*world.model.selected());
    }
    world.studio.setStage({900, 900}, 2);
    world.studio.start();
    world.window.fill(Qt::white);
    waitFor([&world] {
        repaint(world);
        return world.studio.settled();
    });
}

void printRepaints(const char *what, World &world, const std::function<void(int)> &move)
{
    std::vector<double> times;
    for (int i = 0; i < 120; ++i) {
        move(i);
        QElapsedTimer timer;
        timer.start();
        repaint(world);
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        // The background work of a rest in between would take the processor from the painting.
        QCoreApplication::processEvents();
    }
    std::sort(times.begin(), times.end());
    judge(std::string(what) + ", median", times[times.size() / 2], "ms", 8);
    judge(std::string(what) + ", 95 of 100", times[times.size() * 95 / 100], "ms", 16);
}

void dragAndPan(World &world)
{
    const CollageDivider root = world.studio.layout().dividers.first();
    world.gestures.grabDivider({root.parent.center().x(), root.position});
    printRepaints("board while a divider is dragged", world, [&](int i) {
        world.gestures.dragDivider({root.parent.center().x(), root.position + 1.7 * (i % 60)});
    });
    world.gestures.releaseDivider();
    printRepaints("board while a photo is panned", world, [&world](int i) {
        world.gestures.panPhoto(4, {10 + 0.7 * i, 0});
    });
    world.gestures.endPan();
    waitFor([&world] {
        repaint(world);
        return world.studio.settled();
    });
    printRepaints("board at rest", world, [](int) {});
}

void addFinish(World &world)
{
    add("collage_decode", [&world] {
        const CollagePlan plan = CollagePlan::of(world.studio.design(), CollageOutput::longEdge);
        for (const auto &[slot, rect] : plan.layout.cells) {
            const CollageCell &cell = world.studio.design().cells.at(slot);
            const PhotoItem *photo = world.studio.photo(cell.photo);
            benchmark::DoNotOptimize(
                world.pipeline.readPlaced(photo->file, cellPlacement(cell, photo->size(), rect), plan.size)
                    .result());
        }
    });
    add("collage_finish", [&world] {
        QList<PhotoItem> photos;
        for (const CollageCell &cell : world.studio.design().cells) {
            photos.append(*world.studio.photo(cell.photo));
        }
        CollageOutput::save(world.pipeline, world.studio.design(), photos, world.library, {});
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
    World world;
    photo24();
    open(world);
    addFinish(world);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("\nProcessor time, medians: collage of nine photos of 24 megapixels\n");
    printRatio("saved collage against its decoding", "collage_finish", "collage_decode", 2.0);
    dragAndPan(world);
    judge("peak memory of the studio and its saves", peakResidentMb(), "MB", 500);
    return exitStatus();
}
