// Whole jobs: a framed export, a save of fifty photos, a preview, an import, and the memory they take.

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <vector>

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTimer>

#include <benchmark/benchmark.h>

#include "editor/EditorModel.h"
#include "editor/ImportFlow.h"
#include "render/BuiltInTemplate.h"
#include "support/LibraryWorld.h"
#include "support/ProcessorTime.h"

using namespace Qt::StringLiterals;

namespace tarnovel::bench {
namespace {

constexpr int photoCount = 50;

struct World : LibraryWorld {
    World() : LibraryWorld(EditorModel::Load::StoredSession) {}

    ImportFlow flow{model, pipeline};
};

/// Imports fifty photos and returns the longest time between two beats of the event loop, in milliseconds.
double longestBeatOfImport(World &world)
{
    const QString source = world.folder.filePath(u"photo.jpg"_s);
    writePhoto24(source);
    QElapsedTimer beat;
    double longest = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longest = std::max(longest, static_cast<double>(beat.nsecsElapsed()) / 1e6);
        beat.restart();
    });
    ticker.start(1);
    beat.start();
    bool done = false;
    QObject::connect(&world.flow, &ImportFlow::finished, [&done] { done = true; });
    world.flow.start({.paths = QStringList(photoCount, source)});
    waitFor([&done] { return done; });
    return longest;
}

/// The longest time from a selection to the photo's preview, in milliseconds.
double longestSelection(World &world)
{
    double longest = 0;
    for (const int index : {7, 19, 3, 42, 28}) {
        QElapsedTimer timer;
        timer.start();
        world.model.select(world.model.photos().at(index).id);
        waitFor([&world] { return !world.model.previews().photo.isNull(); });
        longest = std::max(longest, static_cast<double>(timer.nsecsElapsed()) / 1e6);
        waitFor([&world] { return !world.model.previews().palette.isEmpty(); });
    }
    return longest;
}

double medianWriteMs(const Session &session)
{
    std::vector<double> times;
    for (int i = 0; i < 21; ++i) {
        QElapsedTimer timer;
        timer.start();
        benchmark::DoNotOptimize(writeSession(session));
        times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

PhotoItem framed(World &world, BuiltInTemplate look)
{
    PhotoItem item = world.model.photos().first();
    item.settings.layer(u"brand"_s)->text = u"FUJIFILM"_s;
    item.settings.layer(u"exif"_s)->text = u"35 mm · f/2.8 · 1/250 s · ISO 400"_s;
    item.settings = BuiltInTemplates::make(look, item.settings, {});
    return item;
}

constexpr std::array framedLooks = {BuiltInTemplate::gear, BuiltInTemplate::full, BuiltInTemplate::film};

/// Each export beside a floor that encodes the very canvas of that frame.
void addExports(World &world)
{
    static std::map<BuiltInTemplate, QImage> canvases;
    for (const BuiltInTemplate look : framedLooks) {
        const std::string name = BuiltInTemplates::id(look).toStdString();
        const PhotoItem item = framed(world, look);
        canvases[look] = world.pipeline.render(item, outputCanvas(item, {})).result();
        add("floor_" + name, [canvas = &canvases[look]] {
            floorDecode(photo24(), photoSize);
            floorEncode(*canvas);
        });
        add("framed_" + name,
            [&world, item] { QFile::remove(world.pipeline.exportPhoto(item, {}).result().path); });
    }
    add("framed_blur", [&world] {
        PhotoItem item = framed(world, BuiltInTemplate::gear);
        item.settings.background = Backdrop::blur;
        QFile::remove(world.pipeline.exportPhoto(item, {}).result().path);
    });
    add("framed_png", [&world] {
        QFile::remove(
            world.pipeline.exportPhoto(framed(world, BuiltInTemplate::full), {.png = true}).result().path);
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
    const double beat = longestBeatOfImport(world);
    const double selection = longestSelection(world);
    Session session;
    session.photos = world.model.photos();
    addExports(world);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("\nProcessor time, medians: whole jobs\n");
    for (const BuiltInTemplate look : framedLooks) {
        const std::string name = BuiltInTemplates::id(look).toStdString();
        printRatio("framed export at 4096, " + name, "framed_" + name, "floor_" + name, 0.9);
    }
    printRatio("framed export at 4096, gear before a blur", "framed_blur", "floor_gear", 1.1);
    judge("framed export of 11 MP to PNG, processor", medianMs("framed_png"), "ms", 300);
    judge("writing a session of 50 photos, without the disk", medianWriteMs(session), "ms", 5);
    judge("selecting a photo of 24 megapixels: to its preview", selection, "ms", 250);
    judge("importing 50 photos: event loop's longest beat", beat, "ms", 50);
    judge("peak memory of import, previews and exports", peakResidentMb(), "MB", 250);
    return exitStatus();
}
