// Whole jobs: a framed export, a save of fifty photos, a preview, an import, and the memory they take.

#include <chrono>
#include <cstdio>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <benchmark/benchmark.h>

#include "editor/EditorModel.h"
#include "editor/ImportFlow.h"
#include "render/BuiltInTemplate.h"
#include "support/Photo24.h"
#include "support/ProcessorTime.h"

using namespace Qt::StringLiterals;

namespace tarnovel::bench {
namespace {

constexpr int photoCount = 50;

/// A library of its own, and an editor on it.
struct World {
    QTemporaryDir folder;
    QString library = folder.filePath(u"library"_s);
    bool made = QDir().mkpath(library);
    SystemClock clock;
    Preferences preferences{folder.filePath(u"preferences.ini"_s)};
    ImagePipeline pipeline{library, folder.filePath(u"temporary"_s)};
    SessionWriter writer{library};
    EditorModel model{{pipeline, writer, preferences, clock, library}, EditorModel::Load::StoredSession};
    ImportFlow flow{model, pipeline};
};

template<typename Condition>
void waitFor(Condition condition)
{
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
}

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

void addExports(World &world)
{
    static const QImage canvas =
        world.pipeline.render(framed(world, BuiltInTemplate::gear), {3072, 4096}).result();
    add("framed_floor", [] {
        floorDecode(photo24(), photoSize);
        floorEncode(canvas);
    });
    for (const BuiltInTemplate look : {BuiltInTemplate::gear, BuiltInTemplate::full, BuiltInTemplate::film}) {
        add("framed_" + BuiltInTemplates::id(look).toStdString(), [&world, item = framed(world, look)] {
            QFile::remove(world.pipeline.exportPhoto(item, {}).result().path);
        });
    }
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
    const double sessionMb = peakResidentMb();
    Session session;
    session.photos = world.model.photos();
    addExports(world);
    benchmark::RunSpecifiedBenchmarks();
    std::printf("\nProcessor time, medians: whole jobs\n");
    printRatio("framed export at 4096, gear", "framed_gear", "framed_floor", 1.2);
    printRatio("framed export at 4096, full", "framed_full", "framed_floor", 1.2);
    printRatio("film frame against full", "framed_film", "framed_full", 1.35);
    std::printf("Writing a session of 50 photos, without the disk: %.2f ms (budget 5)\n",
                medianWriteMs(session));
    std::printf("Selecting a photo of 24 megapixels: preview after at most %.0f ms (budget 250)\n",
                selection);
    std::printf("Importing 50 photos of 24 megapixels: event loop's longest beat %.0f ms (budget 50)\n",
                beat);
    std::printf("Peak memory of that session with previews %.0f MB (budget 400)\n", sessionMb);
    return 0;
}
