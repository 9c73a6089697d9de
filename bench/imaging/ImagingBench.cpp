// The cost of pictures in processor time, as ratios to what the codec library alone needs for the same in the
// same run.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <numeric>
#include <tuple>
#include <vector>

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include "codecs/Codecs.h"
#include "decoding/PhotoFile.h"
#include "imaging/ImageEncoder.h"
#include "imaging/Resampler.h"
#include "support/Photo24.h"
#include "support/ProcessorTime.h"

namespace tarnovel::bench {
namespace {

constexpr QSize exportSize(4096, 2731);
constexpr QSize previewSize(1400, 933);

QString photoPath(Photo24 kind)
{
    static const QTemporaryDir folder;
    static std::map<Photo24, QString> paths;
    QString &path = paths[kind];
    if (path.isEmpty()) {
        path = folder.filePath(QString::number(static_cast<int>(kind)) + QStringLiteral(".jpg"));
        writePhoto24(path, kind);
    }
    return path;
}

QImage decodedTo(QSize size, Photo24 kind = Photo24::Camera)
{
    return PhotoFile(RegularFile(photoPath(kind)))
        .decode({{QRectF(QPointF(), QSizeF(photoSize)), size}})
        .first();
}

const QImage &canvas()
{
    static const QImage made = decodedTo(exportSize);
    return made;
}

void addAll()
{
    add("export_floor", [] {
        floorDecode(photo24(), photoSize);
        floorEncode(canvas());
    });
    add("export", [] { benchmark::DoNotOptimize(encodeJpeg(decodedTo(exportSize), 0.95)); });
    for (const auto &[kind, name, floor] :
         {std::tuple(Photo24::Camera, "preview", "preview_floor"),
          {Photo24::Progressive, "preview_progressive", "floor_progressive"},
          {Photo24::FullColour, "preview_full_colour", "floor_full_colour"}}) {
        add(floor, [kind = kind] { floorDecode(photo24(kind), photoSize / 2); });
        add(name, [kind = kind] { benchmark::DoNotOptimize(decodedTo(previewSize, kind)); });
    }
    add("encode_95", [] { benchmark::DoNotOptimize(encodeJpeg(canvas(), 0.95)); });
    add("encode_95_planes", [] { benchmark::DoNotOptimize(JpegEncoder(canvas()).encode(0.95)); });
    add("png", [] { benchmark::DoNotOptimize(encodePng(canvas())); });
    add("blur", [] {
        static const QImage small = resampled(canvas(), QRectF(canvas().rect()), QSize(500, 333));
        benchmark::DoNotOptimize(gaussianBlurred(small, 22));
    });
}

/// A photo on white, upright, as most frames are.
QImage framed()
{
    QImage made(3072, 4096, QImage::Format_RGB32);
    made.fill(Qt::white);
    const QImage photo = decodedTo({2880, 1920});
    for (int y = 0; y < photo.height(); ++y) {
        std::memcpy(made.scanLine(y + 900) + qsizetype(4) * 96, photo.constScanLine(y),
                    static_cast<size_t>(photo.width()) * 4);
    }
    return made;
}

/// Searches under many limits, each against an encoding at 0.95 right before it.
void printSearches()
{
    constexpr int limits = 60;
    constexpr double least = 0.1e6;
    constexpr double most = 8e6;
    std::vector<double> ratios;
    for (const QImage &picture : {canvas(), framed()}) {
        for (int i = 0; i < limits; ++i) {
            const double limit = least * std::pow(most / least, i / (limits - 1.0));
            double before = processorMs();
            benchmark::DoNotOptimize(JpegEncoder(picture).encode(0.95));
            const double floor = processorMs() - before;
            before = processorMs();
            benchmark::DoNotOptimize(searchJpegQuality(picture, static_cast<qint64>(limit)).encodings);
            ratios.push_back((processorMs() - before) / floor);
        }
    }
    std::ranges::sort(ratios);
    const double mean =
        std::accumulate(ratios.begin(), ratios.end(), 0.0) / static_cast<double>(ratios.size());
    judge("size searches, 0.1–8 MB, ÷ encoding at 0.95: mean", mean, "", 1.1);
    judge("    99 of 100", ratios[ratios.size() * 99 / 100], "", 2.0);
}

void printRatios()
{
    std::printf("\nProcessor time, medians: pictures\n");
    printRatio("decode to 4096 and encode at 0.95", "export", "export_floor", 1.2);
    printRatio("encode once against encode from planes", "encode_95", "encode_95_planes", 1.0);
    printRatio("decode to 1400", "preview", "preview_floor", 1.2);
    printRatio("decode to 1400, progressive", "preview_progressive", "floor_progressive", 1.2);
    printRatio("decode to 1400, full colour", "preview_full_colour", "floor_full_colour", 1.2);
    if (!std::isnan(medianMs("encode_95"))) {
        printSearches();
    }
    judge("PNG of 11 MP, processor", medianMs("png"), "ms", 150);
    judge("blur of 500 px, sigma 22", medianMs("blur"), "ms", 20);
}

} // namespace
} // namespace tarnovel::bench

int main(int argc, char **argv)
{
    tarnovel::useCodecs();
    benchmark::Initialize(&argc, argv);
    tarnovel::bench::canvas();
    tarnovel::bench::addAll();
    benchmark::RunSpecifiedBenchmarks();
    tarnovel::bench::printRatios();
    return tarnovel::bench::exitStatus();
}
