// The cost of pictures in processor time (user and system), as ratios to what the codec library alone needs
// for the same in the same run.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <sys/resource.h>

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <jpeglib.h>
#include <turbojpeg.h>

#include "imaging/ImageDecoder.h"
#include "imaging/ImageEncoder.h"
#include "imaging/Resampler.h"

namespace tarnovel {
namespace {

constexpr QSize photoSize(6000, 4000);
constexpr QSize exportSize(4096, 2731);
constexpr QSize previewSize(1400, 933);

/// Fine texture and noise, as a photo of grass has it.
QImage syntheticPhoto()
{
    std::mt19937 random(1);
    QImage image(photoSize, QImage::Format_RGB32);
    for (int y = 0; y < photoSize.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < photoSize.width(); ++x) {
            const double light = 128 + 60 * std::sin(x * 0.002) * std::cos(y * 0.003) +
                                 20 * std::sin(x * 0.35 + y * 0.21) + 12 * std::sin(y * 1.1 - x * 0.4);
            const int noise = static_cast<int>(random() % 17) - 8;
            const auto level = [&](int offset) {
                return std::clamp(static_cast<int>(light) + noise + offset, 0, 255);
            };
            row[x] = qRgb(level(15), level(0), level(static_cast<int>(random() % 5) - 20));
        }
    }
    return image;
}

struct Photo {
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("photo.jpg"));
    QByteArray bytes;
    QImage canvas;

    Photo()
    {
        const QImage image = syntheticPhoto();
        tjhandle handle = tjInitCompress();
        unsigned char *made = nullptr;
        unsigned long size = 0;
        tjCompress2(handle, image.constBits(), image.width(), 0, image.height(), TJPF_BGRX, &made, &size,
                    TJSAMP_422, 94, 0);
        bytes = QByteArray(reinterpret_cast<const char *>(made), static_cast<qsizetype>(size));
        tjFree(made);
        tjDestroy(handle);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            std::abort();
        }
        file.close();
        canvas = decodeImageRegion(path, QRectF(QPointF(), QSizeF(photoSize)), exportSize);
    }
};

Photo &photo()
{
    static Photo made;
    return made;
}

const unsigned char *photoBytes()
{
    return reinterpret_cast<const unsigned char *>(photo().bytes.constData());
}

void floorDecode(int width, int height)
{
    tjhandle handle = tjInitDecompress();
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    tjDecompress2(handle, photoBytes(), static_cast<unsigned long>(photo().bytes.size()), pixels.data(),
                  width, 0, height, TJPF_BGRX, 0);
    benchmark::DoNotOptimize(pixels.data());
    tjDestroy(handle);
}

void floorEncode()
{
    const QImage &canvas = photo().canvas;
    tjhandle handle = tjInitCompress();
    unsigned char *made = nullptr;
    unsigned long size = 0;
    tjCompress2(handle, canvas.constBits(), canvas.width(), static_cast<int>(canvas.bytesPerLine()),
                canvas.height(), TJPF_BGRX, &made, &size, TJSAMP_444, 95, TJFLAG_ACCURATEDCT);
    benchmark::DoNotOptimize(size);
    tjFree(made);
    tjDestroy(handle);
}

void decodeTo(QSize size)
{
    benchmark::DoNotOptimize(decodeImageRegion(photo().path, QRectF(QPointF(), QSizeF(photoSize)), size));
}

double cpuMilliseconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto milliseconds = [](const timeval &time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

std::map<std::string, std::vector<double>> &samples()
{
    static std::map<std::string, std::vector<double>> kept;
    return kept;
}

void add(const std::string &name, const std::function<void()> &work)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [name, work](benchmark::State &state) {
                                     for (const auto _ : state) {
                                         const double before = cpuMilliseconds();
                                         work();
                                         const double spent = cpuMilliseconds() - before;
                                         samples()[name].push_back(spent);
                                         state.SetIterationTime(spent / 1e3);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(9)
        ->ReportAggregatesOnly(true)
        ->Unit(benchmark::kMillisecond);
}

double median(const std::string &name)
{
    std::vector<double> &all = samples()[name];
    std::sort(all.begin(), all.end());
    return all.empty() ? std::nan("") : all[all.size() / 2];
}

void printRatio(const char *what, const std::string &name, const std::string &floor, double budget)
{
    std::printf("%-44s %7.1f ms / %7.1f ms = %5.2f (budget %.1f)\n", what, median(name), median(floor),
                median(name) / median(floor), budget);
}

void printRatios()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("\nProcessor time, medians\n");
    printRatio("decode to 4096 and encode at 0.95", "export", "export_floor", 1.2);
    printRatio("decode to 1400", "preview", "preview_floor", 1.3);
    printRatio("search for 3 MB", "search_3MB", "encode_95", 3.5);
    printRatio("search for 1.5 MB", "search_1.5MB", "encode_95", 3.5);
    printRatio("search for 6 MB", "search_6MB", "encode_95", 3.5);
    std::printf("PNG of the export %.1f ms, blur (500 px, sigma 22) %.1f ms\n", median("png"),
                median("blur"));
    std::printf("Peak of the whole run %ld MB\n", usage.ru_maxrss / 1024);
}

void addAll()
{
    add("export_floor", [] {
        floorDecode(photoSize.width(), photoSize.height());
        floorEncode();
    });
    add("export", [] {
        const QImage image =
            decodeImageRegion(photo().path, QRectF(QPointF(), QSizeF(photoSize)), exportSize);
        benchmark::DoNotOptimize(JpegEncoder(image).encode(0.95));
    });
    add("preview_floor", [] { floorDecode(photoSize.width() / 2, photoSize.height() / 2); });
    add("preview", [] { decodeTo(previewSize); });
    add("decode_4096", [] { decodeTo(exportSize); });
    add("decode_500", [] { decodeTo(QSize(500, 333)); });
    add("encode_95", [] { benchmark::DoNotOptimize(JpegEncoder(photo().canvas).encode(0.95)); });
    for (const auto &[name, limit] :
         {std::pair("search_3MB", 3'000'000), std::pair("search_1.5MB", 1'500'000),
          std::pair("search_6MB", 6'000'000)}) {
        add(name, [limit = limit] {
            const JpegSearchResult found = searchJpegQuality(photo().canvas, limit);
            benchmark::DoNotOptimize(found.encodings);
        });
    }
    add("png", [] { benchmark::DoNotOptimize(encodePng(photo().canvas)); });
    add("blur", [] {
        static const QImage small = resampled(photo().canvas, QRectF(photo().canvas.rect()), QSize(500, 333));
        benchmark::DoNotOptimize(gaussianBlurred(small, 22));
    });
}

} // namespace
} // namespace tarnovel

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    tarnovel::photo();
    tarnovel::addAll();
    benchmark::RunSpecifiedBenchmarks();
    tarnovel::printRatios();
    return 0;
}
