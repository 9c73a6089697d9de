// Reading photos in a process of its own: what it costs beside reading them here, what reading ahead gains,
// and how soon the next photo is there when one is given up or kills its decoder.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <thread>
#include <vector>

#include <signal.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <vips/vips.h>

#include "base/Cancellation.h"
#include "codecs/Codecs.h"
#include "decoder_client/PhotoDecoder.h"
#include "decoding/PhotoFile.h"
#include "imaging/ImageError.h"
#include "pipeline/FrameImages.h"
#include "pipeline/ImagePipeline.h"
#include "render/BuiltInTemplate.h"
#include "support/Photo24.h"
#include "support/ProcessorTime.h"

using namespace Qt::StringLiterals;

namespace tarnovel::bench {
namespace {

constexpr int photosInARow = 8;
constexpr int tries = 5;
const QSize exportSize(4096, 2731);

QTemporaryDir &folder()
{
    static QTemporaryDir made;
    return made;
}

QString jpegPath()
{
    static const QString path = [] {
        QString made = folder().filePath(u"photo.jpg"_s);
        writePhoto24(made);
        return made;
    }();
    return path;
}

/// Twelve megapixels, encoded as fast as the library can.
QString heicPath()
{
    static const QString path = [] {
        const QString made = folder().filePath(u"photo.heic"_s);
        VIPS_INIT("bench");
        VipsImage *photo = nullptr;
        const QByteArray target = QFile::encodeName(made);
        if (vips_thumbnail(QFile::encodeName(jpegPath()).constData(), &photo, 4243, nullptr) != 0 ||
            vips_heifsave(photo, target.constData(), "effort", 0, "Q", 60, nullptr) != 0) {
            std::fprintf(stderr, "no HEIC photo: %s\n", vips_error_buffer());
            std::exit(1);
        }
        g_object_unref(photo);
        return made;
    }();
    return path;
}

std::unique_ptr<ImagePipeline> pipeline(PipelineUse use)
{
    return std::make_unique<ImagePipeline>(folder().path(), folder().filePath(u"temporary"_s), use);
}

double milliseconds(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

template<typename Measure>
double median(Measure measure)
{
    std::vector<double> values;
    for (int i = 0; i < tries; ++i) {
        values.push_back(measure());
    }
    std::ranges::sort(values);
    return values[tries / 2];
}

void addDecoding()
{
    const QList<PicturePart> parts = {{QRectF({}, QSizeF(photoSize)), exportSize}};
    add("decode_here",
        [parts] { benchmark::DoNotOptimize(PhotoFile(RegularFile(jpegPath())).decode(parts)); });
    static PhotoDecoder decoder;
    add("decode_there", [parts] {
        const RegularFile photo(jpegPath());
        benchmark::DoNotOptimize(decoder.decode(photo, parts));
    });
}

/// The time by the clock of several exports that are asked for at once, and of as many asked for one by one.
void judgeReadingAhead()
{
    const auto service = pipeline(PipelineUse::Command);
    PhotoItem item = service->inspect({jpegPath()}, ImagePipeline::TestDecode::No).result();
    item.settings = BuiltInTemplates::make(BuiltInTemplate::full, item.settings, {});
    service->exportPhoto(item, {}).result();
    const auto together = [&] {
        QElapsedTimer timer;
        timer.start();
        QList<QFuture<ExportedFile>> made;
        for (int i = 0; i < photosInARow; ++i) {
            made.append(service->exportPhoto(item, {}));
        }
        made.last().waitForFinished();
        return milliseconds(timer);
    };
    const auto apart = [&] {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < photosInARow; ++i) {
            service->exportPhoto(item, {}).waitForFinished();
        }
        return milliseconds(timer);
    };
    const double ratio = median([&] { return together() / apart(); });
    judge("8 photos asked for together, to one by one, by the clock", ratio, "", 0.72);
}

void judgeHeic()
{
    const QString heic = heicPath();
    const double spent = median([&] {
        const double before = processorMs();
        {
            const auto service = pipeline(PipelineUse::Editor);
            service->inspect({heic}).result();
            service->read(heic, PhotoReader::previewPixels).result();
            service->primaryColors(heic).waitForFinished();
            service->read(heic, 400).result();
            service->read(heic, blurSourcePixels).result();
        }
        return processorMs() - before;
    });
    judge("12 MP HEIC from import to preview, palette and thumbnail, processor", spent, "ms", 1800);
    const auto preview = [](ImagePipeline &service) {
        QElapsedTimer timer;
        timer.start();
        service.read(jpegPath(), PhotoReader::previewPixels).waitForFinished();
        return milliseconds(timer);
    };
    const double after = median([&] {
        const auto calm = pipeline(PipelineUse::Editor);
        calm->inspect({heic}, ImagePipeline::TestDecode::No).waitForFinished();
        const double alone = preview(*calm);
        const auto service = pipeline(PipelineUse::Editor);
        std::stop_source stop;
        const QFuture<QImage> slow = service->read(heic, PhotoReader::previewPixels, stop.get_token());
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        stop.request_stop();
        return preview(*service) / alone;
    });
    judge("another photo while a HEIC decodes, to that photo alone, by the clock", after, "", 1.15);
}

/// Kills the decoder in the middle of a photo, and reads the next one.
void judgeDeath()
{
    const double waited = median([] {
        PhotoDecoder decoder;
        const RegularFile heic(heicPath());
        const RegularFile next(jpegPath());
        const QSize size = decoder.facts(heic).header.uprightSize();
        std::jthread killer([] {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            for (const int child : childProcesses()) {
                kill(child, SIGKILL);
            }
        });
        try {
            decoder.decode(heic, {PicturePart::whole(size, 3'000)});
        } catch (const ImageError &) {
            QElapsedTimer timer;
            timer.start();
            benchmark::DoNotOptimize(decoder.facts(next));
            return milliseconds(timer);
        }
        return std::nan("");
    });
    judge("decoder killed: until the next photo is read", waited, "ms", 100);
}

} // namespace
} // namespace tarnovel::bench

int main(int argc, char **argv)
{
    using namespace tarnovel::bench;
    const QGuiApplication application(argc, argv);
    tarnovel::useCodecs();
    benchmark::Initialize(&argc, argv);
    addDecoding();
    benchmark::RunSpecifiedBenchmarks();
    std::printf("\nProcessor time of program and decoder, medians: reading photos\n");
    printRatio("24 MP JPEG to 4096 through the decoder, to here", "decode_there", "decode_here", 1.03);
    judgeReadingAhead();
    judgeHeic();
    judgeDeath();
    return exitStatus();
}
