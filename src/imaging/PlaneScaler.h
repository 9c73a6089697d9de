#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <stop_token>

#include <QImage>
#include <QRectF>

namespace tarnovel {

/// One axis of a resampling. Target pixels whose centre lies on the source are computed; the others repeat
/// the nearest computed one. The window is the span of source samples, margins included, that the computed
/// ones read: samples outside the source repeat its edge.
struct AxisPlan {
    int firstTarget = 0;
    int targetCount = 0;
    /// The source span of the computed pixels, in samples from the source's edge.
    double start = 0;
    double length = 0;
    int windowBegin = 0;
    int windowEnd = 0;
};

/// `extent` is the true length of the source, which may be fractional after a DCT scale. `granule` is what
/// both ends of the window are multiples of.
AxisPlan planAxis(double extent, double regionStart, double regionLength, int targetLength, int granule = 1);

/// Planes of 8 bits whose rows begin at multiples of 64 bytes.
struct PlanarSource {
    std::array<const uint8_t *, 3> plane{};
    std::array<ptrdiff_t, 3> stride{};
    /// 1 (grey) or 3 (YCbCr).
    int planeCount = 3;
    /// Of the first plane.
    QSize size;
    /// Halvings of the second and third plane, 0…2.
    int subsampleX = 0;
    int subsampleY = 0;
};

/// Pixels of 3 or 4 samples. `step` is the bytes of a pixel, `offset` the place of red, green, blue and alpha
/// (−1: none) in each, in bytes.
struct PackedSource {
    const uint8_t *bits = nullptr;
    ptrdiff_t stride = 0;
    QSize size;
    int step = 4;
    std::array<int, 4> offset{2, 1, 0, -1};
    /// Whether a sample is 16 bits, 65535 being full, instead of 8.
    bool deep = false;
};

/// How the pixels of a deep source come back: in eight bits with ordered dither, or as they are.
enum class DeepPixels { Dithered, Kept };

/// Resamples `active` (in samples of the first plane) with Lanczos-3 into the pixels `part` of the target, an
/// RGB32 image. Throws OperationCancelled, and std::bad_alloc where the library cannot.
void scalePlanes(const PlanarSource &source, const QRectF &active, QImage &target, const QRect &part,
                 const std::stop_token &stop);

/// Resamples `region` of the source, edges going on outside it, to an image of exactly `size`: RGB32, or
/// ARGB32_Premultiplied where the source has alpha (its colours premultiplied); RGBX64 or
/// RGBA64_Premultiplied where the pixels of a deep source are kept. Throws like scalePlanes.
QImage scalePacked(const PackedSource &source, const QRectF &region, QSize size,
                   const std::stop_token &stop = {}, DeepPixels deep = DeepPixels::Dithered);

/// Fills what lies outside `part` with its nearest pixels.
void repeatEdges(QImage &image, const QRect &part);

} // namespace tarnovel
