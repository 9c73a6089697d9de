#include "imaging/PlaneScaler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "base/Cancellation.h"
#include "imaging/BufferPool.h"
#include "imaging/FilterGraph.h"
#include "imaging/PixelRows.h"

namespace tarnovel {
namespace {

constexpr double lanczosLobes = 3;

size_t rowBytes(int samples, size_t sampleBytes)
{
    return (static_cast<size_t>(samples) * sampleBytes + 63) / 64 * 64;
}

/// A ring of rows for each of up to three planes, as the resampler reads or writes them through a callback.
class RowRing {
public:
    RowRing(int planes, int width, int height, unsigned rows, size_t sampleBytes)
        : m_mask(zimg_select_buffer_mask(std::min(rows, static_cast<unsigned>(height)))),
          m_stride(rowBytes(width, sampleBytes)),
          m_planeBytes(m_stride *
                       (m_mask == ZIMG_BUFFER_MAX ? static_cast<size_t>(height) : m_mask + size_t(1))),
          m_memory(m_planeBytes * static_cast<size_t>(planes))
    {
    }

    unsigned mask() const { return m_mask; }
    ptrdiff_t stride() const { return static_cast<ptrdiff_t>(m_stride); }
    uint8_t *plane(int index) const { return m_memory.data() + m_planeBytes * static_cast<size_t>(index); }
    uint8_t *row(int index, unsigned number) const { return plane(index) + m_stride * (number & m_mask); }

private:
    unsigned m_mask;
    size_t m_stride;
    size_t m_planeBytes;
    PooledBuffer m_memory;
};

/// Receives the rows of a run and writes them to the target's pixels.
class Packer {
public:
    enum class Kind { Grey, Ycbcr, Rgb, Alpha, DitheredRgb, DitheredAlpha, DeepRgb, DeepAlpha };

    Packer(Kind kind, const RowRing &ring, QImage &target, const QRect &part, const std::stop_token &stop)
        : m_kind(kind),
          m_ring(ring),
          m_bits(target.bits()),
          m_stride(target.bytesPerLine()),
          m_pixelBytes(target.depth() / 8),
          m_part(part),
          m_stop(stop)
    {
    }

    static int callback(void *self, unsigned row, unsigned left, unsigned right)
    {
        return static_cast<Packer *>(self)->pack(row, left, right);
    }

private:
    int pack(unsigned row, unsigned left, unsigned right)
    {
        if (m_stop.stop_requested()) {
            return 1;
        }
        const auto samples = [&](int plane) {
            return reinterpret_cast<const uint16_t *>(m_ring.row(plane, row)) + left;
        };
        const int count = static_cast<int>(right - left);
        uint8_t *packed = m_bits + (m_part.top() + static_cast<ptrdiff_t>(row)) * m_stride +
                          (m_part.left() + static_cast<ptrdiff_t>(left)) * m_pixelBytes;
        const RowPlace place{m_part.left() + static_cast<int>(left), m_part.top() + static_cast<int>(row)};
        auto *deep = reinterpret_cast<uint16_t *>(packed);
        switch (m_kind) {
        case Kind::Grey:
            packGrey(samples(0), count, packed);
            break;
        case Kind::Ycbcr:
            packYcbcr(samples(0), samples(1), samples(2), count, packed);
            break;
        case Kind::Rgb:
            packRgb(samples(0), samples(1), samples(2), count, packed);
            break;
        case Kind::Alpha:
            packAlpha(samples(0), count, packed);
            break;
        case Kind::DitheredRgb:
            packRgbDithered(samples(0), samples(1), samples(2), count, place, packed);
            break;
        case Kind::DitheredAlpha:
            packAlphaDithered(samples(0), count, place, packed);
            break;
        case Kind::DeepRgb:
            packDeepRgb(samples(0), samples(1), samples(2), count, deep);
            break;
        case Kind::DeepAlpha:
            packDeepAlpha(samples(0), count, deep);
            break;
        }
        return 0;
    }

    Kind m_kind;
    const RowRing &m_ring;
    uint8_t *m_bits;
    ptrdiff_t m_stride;
    int m_pixelBytes;
    QRect m_part;
    const std::stop_token &m_stop;
};

/// Takes rows apart for a run. Rows and columns are counted from the window's corner.
struct Unpacker {
    const PackedSource &source;
    const RowRing &ring;
    QPoint origin;
    std::array<int, 3> offsets;
    int planes;

    static int callback(void *self, unsigned row, unsigned left, unsigned right)
    {
        static_cast<const Unpacker *>(self)->unpack(row, static_cast<int>(left), static_cast<int>(right));
        return 0;
    }

    void unpack(unsigned row, int left, int right) const
    {
        const int y = std::clamp(origin.y() + static_cast<int>(row), 0, source.size.height() - 1);
        const uint8_t *line = source.bits + y * source.stride;
        const int width = source.size.width();
        // Columns of the window that lie on the source; the edge goes on to both sides.
        const int first = std::clamp(-origin.x(), left, right);
        const int last = std::clamp(width - origin.x(), first, right);
        for (int plane = 0; plane < planes; ++plane) {
            const int offset = offsets[static_cast<size_t>(plane)];
            const uint8_t *inside = line + static_cast<ptrdiff_t>(origin.x() + first) * source.step;
            const uint8_t *lastPixel = line + static_cast<ptrdiff_t>(width - 1) * source.step + offset;
            if (source.deep) {
                auto *to = reinterpret_cast<uint16_t *>(ring.row(plane, row));
                std::fill(to + left, to + first, *reinterpret_cast<const uint16_t *>(line + offset));
                takeDeepChannel(inside, source.step, offset, last - first, to + first);
                std::fill(to + last, to + right, *reinterpret_cast<const uint16_t *>(lastPixel));
            } else {
                uint8_t *to = ring.row(plane, row);
                std::memset(to + left, line[offset], static_cast<size_t>(first - left));
                takeChannel(inside, source.step, offset, last - first, to + first);
                std::memset(to + last, *lastPixel, static_cast<size_t>(right - last));
            }
        }
    }
};

struct Run {
    GraphKey key;
    int planes;
    Packer::Kind kind;
};

zimg_image_buffer outputBuffer(const RowRing &ring, int planes)
{
    zimg_image_buffer buffer{};
    buffer.version = ZIMG_API_VERSION;
    for (int plane = 0; plane < planes; ++plane) {
        buffer.plane[plane].data = ring.plane(plane);
        buffer.plane[plane].stride = ring.stride();
        buffer.plane[plane].mask = ring.mask();
    }
    return buffer;
}

void process(const Run &run, const FilterGraph &graph, const zimg_image_buffer_const &input,
             Unpacker *unpacker, QImage &target, const QRect &part, const std::stop_token &stop)
{
    const RowRing ring(run.planes, part.width(), part.height(), graph.outputRows(), sizeof(uint16_t));
    const zimg_image_buffer output = outputBuffer(ring, run.planes);
    const PooledBuffer temporary(graph.temporaryBytes());
    Packer packer(run.kind, ring, target, part, stop);
    const zimg_error_code_e failed = zimg_filter_graph_process(
        graph.get(), &input, &output, temporary.data(), unpacker != nullptr ? &Unpacker::callback : nullptr,
        unpacker, &Packer::callback, &packer);
    throwIfCancelled(stop);
    if (failed != ZIMG_ERROR_SUCCESS) {
        throw std::bad_alloc();
    }
}

/// The copy of whole pixels that a resampling to their own size is.
QImage copied(const PackedSource &source, QRect area, QImage::Format format)
{
    QImage target = pooledImage(area.size(), format);
    for (int y = 0; y < area.height(); ++y) {
        std::memcpy(target.scanLine(y), source.bits + (area.top() + y) * source.stride + area.left() * 4,
                    static_cast<size_t>(area.width()) * 4);
    }
    return target;
}

} // namespace

AxisPlan planAxis(double extent, double regionStart, double regionLength, int targetLength, int granule)
{
    const double step = regionLength / targetLength;
    // Pixels many times wider than the source average it whatever their width; the window stays small.
    const double longest = 8 * extent + 8;
    const double margin = lanczosLobes * std::clamp(step, 1.0, longest);
    const double low = std::ceil((-margin - regionStart) / step - 0.5);
    const double high = std::floor((extent + margin - regionStart) / step - 0.5) + 1;
    AxisPlan plan;
    plan.firstTarget = static_cast<int>(std::clamp(low, 0.0, targetLength - 1.0));
    plan.targetCount =
        static_cast<int>(std::clamp(high, plan.firstTarget + 1.0, double(targetLength))) - plan.firstTarget;
    plan.length = std::min(plan.targetCount * step, 3 * longest);
    // A region wholly beside the source shows its edge, wherever it lies.
    plan.start = std::clamp(regionStart + plan.firstTarget * step, -plan.length - margin, extent + margin);
    const double begin = std::min(plan.start - margin - 2, std::ceil(extent) - 1);
    const double end = std::max(plan.start + plan.length + margin + 2, 1.0);
    plan.windowBegin = static_cast<int>(std::floor(begin / granule)) * granule;
    plan.windowEnd = static_cast<int>(std::ceil(end / granule)) * granule;
    return plan;
}

void repeatEdges(QImage &image, const QRect &part)
{
    const auto fillSides = [&](auto *row) {
        std::fill(row, row + part.left(), row[part.left()]);
        std::fill(row + part.right() + 1, row + image.width(), row[part.right()]);
    };
    for (int y = part.top(); y <= part.bottom(); ++y) {
        if (image.depth() == 64) {
            fillSides(reinterpret_cast<quint64 *>(image.scanLine(y)));
        } else {
            fillSides(reinterpret_cast<QRgb *>(image.scanLine(y)));
        }
    }
    const auto rowBytesUsed = static_cast<size_t>(image.width()) * static_cast<size_t>(image.depth() / 8);
    for (int y = 0; y < part.top(); ++y) {
        std::memcpy(image.scanLine(y), image.constScanLine(part.top()), rowBytesUsed);
    }
    for (int y = part.bottom() + 1; y < image.height(); ++y) {
        std::memcpy(image.scanLine(y), image.constScanLine(part.bottom()), rowBytesUsed);
    }
}

void scalePlanes(const PlanarSource &source, const QRectF &active, QImage &target, const QRect &part,
                 const std::stop_token &stop)
{
    const bool grey = source.planeCount == 1;
    Run run{{grey ? ZIMG_COLOR_GREY : ZIMG_COLOR_YUV, source.size, 0, 0, active, part.size()},
            source.planeCount,
            grey ? Packer::Kind::Grey : Packer::Kind::Ycbcr};
    run.key.subsampleX = grey ? 0 : static_cast<unsigned>(source.subsampleX);
    run.key.subsampleY = grey ? 0 : static_cast<unsigned>(source.subsampleY);
    zimg_image_buffer_const input{};
    input.version = ZIMG_API_VERSION;
    for (size_t plane = 0; plane < static_cast<size_t>(source.planeCount); ++plane) {
        input.plane[plane].data = source.plane[plane];
        input.plane[plane].stride = source.stride[plane];
        input.plane[plane].mask = ZIMG_BUFFER_MAX;
    }
    process(run, *FilterGraph::forKey(run.key), input, nullptr, target, part, stop);
}

QImage scalePacked(const PackedSource &source, const QRectF &region, QSize size, const std::stop_token &stop,
                   DeepPixels deep)
{
    const bool hasAlpha = source.offset[3] >= 0;
    const bool kept = source.deep && deep == DeepPixels::Kept;
    const QImage::Format format =
        kept ? (hasAlpha ? QImage::Format_RGBA64_Premultiplied : QImage::Format_RGBX64)
             : (hasAlpha ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    const bool inside = QRectF(QPointF(), QSizeF(source.size)).contains(region);
    const QRect whole = inside ? region.toRect() : QRect();
    if (QRectF(whole) == region && whole.size() == size && source.step == 4 && source.offset[0] == 2) {
        return copied(source, whole, format);
    }
    const AxisPlan x = planAxis(source.size.width(), region.x(), region.width(), size.width());
    const AxisPlan y = planAxis(source.size.height(), region.y(), region.height(), size.height());
    const QSize window(x.windowEnd - x.windowBegin, y.windowEnd - y.windowBegin);
    const QRectF active(x.start - x.windowBegin, y.start - y.windowBegin, x.length, y.length);
    const QRect part(x.firstTarget, y.firstTarget, x.targetCount, y.targetCount);
    QImage target = pooledImage(size, format);

    const auto scale = [&](zimg_color_family_e family, int planes, std::array<int, 3> offsets,
                           Packer::Kind kind) {
        const Run run{{family, window, 0, 0, active, part.size(), source.deep}, planes, kind};
        const std::shared_ptr<const FilterGraph> graph = FilterGraph::forKey(run.key);
        const RowRing ring(planes, window.width(), window.height(), graph->inputRows(),
                           source.deep ? sizeof(uint16_t) : sizeof(uint8_t));
        zimg_image_buffer_const input{};
        input.version = ZIMG_API_VERSION;
        for (int plane = 0; plane < planes; ++plane) {
            input.plane[plane].data = ring.plane(plane);
            input.plane[plane].stride = ring.stride();
            input.plane[plane].mask = ring.mask();
        }
        Unpacker unpacker{source, ring, QPoint(x.windowBegin, y.windowBegin), offsets, planes};
        process(run, *graph, input, &unpacker, target, part, stop);
    };
    using Kind = Packer::Kind;
    const auto kind = [&](Kind eight, Kind dithered, Kind whole16) {
        return !source.deep ? eight : kept ? whole16 : dithered;
    };
    scale(ZIMG_COLOR_RGB, 3, {source.offset[0], source.offset[1], source.offset[2]},
          kind(Kind::Rgb, Kind::DitheredRgb, Kind::DeepRgb));
    if (hasAlpha) {
        scale(ZIMG_COLOR_GREY, 1, {source.offset[3], 0, 0},
              kind(Kind::Alpha, Kind::DitheredAlpha, Kind::DeepAlpha));
    }
    repeatEdges(target, part);
    return target;
}

} // namespace tarnovel
