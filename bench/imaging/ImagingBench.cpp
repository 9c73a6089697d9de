// The cost of pictures in processor time, as ratios to what the codec library alone needs for the same in the
// same run.

#include <cstdio>

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include "imaging/ImageDecoder.h"
#include "imaging/ImageEncoder.h"
#include "imaging/Resampler.h"
#include "support/Photo24.h"
#include "support/ProcessorTime.h"

namespace tarnovel::bench {
namespace {

constexpr QSize exportSize(4096, 2731);
constexpr QSize previewSize(1400, 933);

QString photoPath()
{
    static const QTemporaryDir folder;
    static const QString path = [] {
        const QString made = folder.filePath(QStringLiteral("photo.jpg"));
        writePhoto24(made);
        return made;
    }();
    return path;
}

QImage decodedTo(QSize size)
{
    return decodeImageRegion(photoPath(), QRectF(QPointF(), QSizeF(photoSize)), size);
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
    add("export", [] { benchmark::DoNotOptimize(JpegEncoder(decodedTo(exportSize)).encode(0.95)); });
    add("preview_floor", [] { floorDecode(photo24(), photoSize / 2); });
    add("preview", [] { benchmark::DoNotOptimize(decodedTo(previewSize)); });
    add("encode_95", [] { benchmark::DoNotOptimize(JpegEncoder(canvas()).encode(0.95)); });
    for (const auto &[name, limit] :
         {std::pair("search_3MB", 3'000'000), std::pair("search_1.5MB", 1'500'000),
          std::pair("search_6MB", 6'000'000)}) {
        add(name,
            [limit = limit] { benchmark::DoNotOptimize(searchJpegQuality(canvas(), limit).encodings); });
    }
    add("png", [] { benchmark::DoNotOptimize(encodePng(canvas())); });
    add("blur", [] {
        static const QImage small = resampled(canvas(), QRectF(canvas().rect()), QSize(500, 333));
        benchmark::DoNotOptimize(gaussianBlurred(small, 22));
    });
}

void printRatios()
{
    std::printf("\nProcessor time, medians: pictures\n");
    printRatio("decode to 4096 and encode at 0.95", "export", "export_floor", 1.2);
    printRatio("decode to 1400", "preview", "preview_floor", 1.3);
    printRatio("search for 3 MB", "search_3MB", "encode_95", 3.5);
    printRatio("search for 1.5 MB", "search_1.5MB", "encode_95", 3.5);
    printRatio("search for 6 MB", "search_6MB", "encode_95", 3.5);
    std::printf("PNG of the export %.1f ms, blur (500 px, sigma 22) %.1f ms\n", medianMs("png"),
                medianMs("blur"));
}

} // namespace
} // namespace tarnovel::bench

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    tarnovel::bench::canvas();
    tarnovel::bench::addAll();
    benchmark::RunSpecifiedBenchmarks();
    tarnovel::bench::printRatios();
    return 0;
}
