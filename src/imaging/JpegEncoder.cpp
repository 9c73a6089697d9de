#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <optional>

#include <turbojpeg.h>

#include "imaging/BufferPool.h"
#include "imaging/ImageEncoder.h"
#include "imaging/SrgbProfile.h"

namespace tarnovel {
namespace {

constexpr double fullColourFrom = 0.9;

QImage opaque(const QImage &image)
{
    return image.depth() == 32 && image.pixelFormat().colorModel() == QPixelFormat::RGB &&
                   image.format() != QImage::Format_RGBA8888 && image.format() != QImage::Format_RGBX8888 &&
                   image.format() != QImage::Format_RGBA8888_Premultiplied &&
                   image.format() <= QImage::Format_ARGB32_Premultiplied
               ? image
               : image.convertToFormat(QImage::Format_RGB32);
}

/// The file with the sRGB profile behind its JFIF segment, where readers expect it.
QByteArray withProfile(QByteArrayView file)
{
    constexpr qsizetype jfifEnd = 20; // the start marker, and a segment of 18 bytes without a thumbnail
    const QByteArray profile = srgbProfile();
    const auto length = static_cast<quint16>(profile.size() + 16);
    QByteArray made;
    made.reserve(file.size() + length + 2);
    made.append(file.first(jfifEnd));
    made.append("\xff\xe2", 2);
    made.append(static_cast<char>(length >> 8U));
    made.append(static_cast<char>(length & 0xffU));
    made.append(QByteArray("ICC_PROFILE\0\x01\x01", 14));
    made.append(profile);
    made.append(file.sliced(jfifEnd));
    return made;
}

int subsamplingAt(double quality)
{
    return JpegEncoder::storesColourInFull(quality) ? TJSAMP_444 : TJSAMP_420;
}

/// The file that `compress(bytes, size, hundredths)` makes in a buffer.
template<typename Compress>
QByteArray compressed(QSize picture, double quality, const Compress &compress)
{
    // The worst case, of which only the pages that are written cost anything: not one for the pool.
    unsigned long size = tjBufSize(picture.width(), picture.height(), subsamplingAt(quality));
    const auto buffer = std::make_unique_for_overwrite<unsigned char[]>(size);
    unsigned char *bytes = buffer.get();
    preferLargePages(bytes, size);
    const int hundredths = std::clamp(static_cast<int>(std::lround(quality * 100)), 1, 100);
    if (compress(&bytes, &size, hundredths) != 0) {
        throw std::bad_alloc();
    }
    return withProfile(QByteArrayView(bytes, static_cast<qsizetype>(size)));
}

/// A picture's YCbCr planes at one subsampling.
struct Planes {
    PooledBuffer memory;
    std::array<unsigned char *, 3> plane{};
};

} // namespace

struct JpegEncoder::State {
    QImage image;
    tjhandle handle = nullptr;
    std::optional<Planes> halfColour;
    std::optional<Planes> fullColour;

    Planes planes(int subsampling) const
    {
        const int width = image.width();
        const int height = image.height();
        std::array<size_t, 3> sizes{};
        size_t total = 0;
        for (int i = 0; i < 3; ++i) {
            sizes[static_cast<size_t>(i)] = tjPlaneSizeYUV(i, width, 0, height, subsampling);
            total += sizes[static_cast<size_t>(i)];
        }
        Planes made{PooledBuffer(total), {}};
        size_t at = 0;
        for (size_t i = 0; i < 3; ++i) {
            made.plane[i] = made.memory.data() + at;
            at += sizes[i];
        }
        if (tjEncodeYUVPlanes(handle, image.constBits(), width, static_cast<int>(image.bytesPerLine()),
                              height, TJPF_BGRX, made.plane.data(), nullptr, subsampling,
                              TJFLAG_ACCURATEDCT) != 0) {
            throw std::bad_alloc();
        }
        return made;
    }
};

JpegEncoder::JpegEncoder(const QImage &image) : m_state(std::make_unique<State>())
{
    m_state->image = opaque(image);
    m_state->handle = tjInitCompress();
    if (m_state->handle == nullptr) {
        throw std::bad_alloc();
    }
}

JpegEncoder::~JpegEncoder()
{
    tjDestroy(m_state->handle);
}

bool JpegEncoder::storesColourInFull(double quality)
{
    return quality >= fullColourFrom;
}

const QImage &JpegEncoder::image() const
{
    return m_state->image;
}

QByteArray JpegEncoder::encode(double quality)
{
    const bool full = storesColourInFull(quality);
    const int subsampling = subsamplingAt(quality);
    std::optional<Planes> &planes = full ? m_state->fullColour : m_state->halfColour;
    if (!planes) {
        planes = m_state->planes(subsampling);
    }
    const QSize size = m_state->image.size();
    std::array<const unsigned char *, 3> source{planes->plane[0], planes->plane[1], planes->plane[2]};
    return compressed(size, quality, [&](unsigned char **bytes, unsigned long *length, int hundredths) {
        return tjCompressFromYUVPlanes(m_state->handle, source.data(), size.width(), nullptr, size.height(),
                                       subsampling, bytes, length, hundredths,
                                       TJFLAG_ACCURATEDCT | TJFLAG_NOREALLOC);
    });
}

QByteArray encodeJpeg(const QImage &image, double quality)
{
    const QImage pixels = opaque(image);
    const std::unique_ptr<void, int (*)(tjhandle)> handle(tjInitCompress(), tjDestroy);
    if (!handle) {
        throw std::bad_alloc();
    }
    return compressed(pixels.size(), quality,
                      [&](unsigned char **bytes, unsigned long *length, int hundredths) {
                          return tjCompress2(handle.get(), pixels.constBits(), pixels.width(),
                                             static_cast<int>(pixels.bytesPerLine()), pixels.height(),
                                             TJPF_BGRX, bytes, length, subsamplingAt(quality), hundredths,
                                             TJFLAG_ACCURATEDCT | TJFLAG_NOREALLOC);
                      });
}

} // namespace tarnovel
