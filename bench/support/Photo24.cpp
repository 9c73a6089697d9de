#include "support/Photo24.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>

#include <QFile>

#include <benchmark/benchmark.h>
#include <turbojpeg.h>

namespace tarnovel::bench {

namespace {

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

QByteArray compressed(const QImage &image, int subsampling, int quality, int flags)
{
    tjhandle handle = tjInitCompress();
    unsigned char *made = nullptr;
    unsigned long size = 0;
    tjCompress2(handle, image.constBits(), image.width(), static_cast<int>(image.bytesPerLine()),
                image.height(), TJPF_BGRX, &made, &size, subsampling, quality, flags);
    QByteArray bytes(reinterpret_cast<const char *>(made), static_cast<qsizetype>(size));
    tjFree(made);
    tjDestroy(handle);
    return bytes;
}

} // namespace

QByteArray photo24(Photo24 kind)
{
    static std::map<Photo24, QByteArray> made;
    QByteArray &photo = made[kind];
    if (photo.isEmpty()) {
        const int subsampling = kind == Photo24::FullColour ? TJSAMP_444 : TJSAMP_422;
        photo = compressed(syntheticPhoto(), subsampling, 94,
                           kind == Photo24::Progressive ? TJFLAG_PROGRESSIVE : 0);
    }
    return photo;
}

void writePhoto24(const QString &path, Photo24 kind)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(photo24(kind)) != photo24(kind).size()) {
        std::fprintf(stderr, "%s: cannot be written\n", qPrintable(path));
        std::exit(1);
    }
}

void floorDecode(const QByteArray &jpeg, QSize size)
{
    tjhandle handle = tjInitDecompress();
    // Fresh memory, as a program's first picture has it, that nobody fills beforehand.
    const auto pixels = std::make_unique_for_overwrite<unsigned char[]>(
        static_cast<size_t>(size.width()) * static_cast<size_t>(size.height()) * 4);
    tjDecompress2(handle, reinterpret_cast<const unsigned char *>(jpeg.constData()),
                  static_cast<unsigned long>(jpeg.size()), pixels.get(), size.width(), 0, size.height(),
                  TJPF_BGRX, 0);
    benchmark::DoNotOptimize(pixels.get());
    tjDestroy(handle);
}

void floorEncode(const QImage &canvas)
{
    benchmark::DoNotOptimize(compressed(canvas, TJSAMP_444, 95, TJFLAG_ACCURATEDCT));
}

} // namespace tarnovel::bench
