#include "decoding/JpegPlanes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <vector>

#include "base/Cancellation.h"
#include "decoding/JpegReader.h"
#include "imaging/BufferPool.h"
#include "imaging/ImageError.h"
#include "imaging/ImageLimits.h"
#include "imaging/PlaneScaler.h"

namespace tarnovel {
namespace {

constexpr qint64 mostCoefficientBytes = 600'000'000;
constexpr double mostPlanePixels = 100e6;
constexpr int exportSide = 2000;
// Windows begin at multiples of this, so that rows of quarter-resolution planes stay aligned to 64 bytes.
constexpr int windowGranule = 256;

/// Where a component lies in relation to the first one.
struct Halvings {
    int x;
    int y;
};

std::optional<int> halvings(int most, int own)
{
    const int ratio = own > 0 && most % own == 0 ? most / own : 0;
    return ratio == 1 || ratio == 2 || ratio == 4
               ? std::optional(std::countr_zero(static_cast<unsigned>(ratio)))
               : std::nullopt;
}

bool hasPlainPlanes(const jpeg_decompress_struct &info)
{
    if (info.num_components == 1) {
        return info.jpeg_color_space == JCS_GRAYSCALE;
    }
    if (info.num_components != 3 || info.jpeg_color_space != JCS_YCbCr) {
        return false;
    }
    const jpeg_component_info *parts = info.comp_info;
    return parts[0].h_samp_factor == info.max_h_samp_factor &&
           parts[0].v_samp_factor == info.max_v_samp_factor &&
           parts[1].h_samp_factor == parts[2].h_samp_factor &&
           parts[1].v_samp_factor == parts[2].v_samp_factor &&
           halvings(info.max_h_samp_factor, parts[1].h_samp_factor) &&
           halvings(info.max_v_samp_factor, parts[1].v_samp_factor);
}

void checkCost(jpeg_decompress_struct &info)
{
    checkPictureSize(QSize(static_cast<int>(info.image_width), static_cast<int>(info.image_height)));
    qint64 coefficientBytes = 0;
    for (int i = 0; i < info.num_components; ++i) {
        coefficientBytes += qint64(info.comp_info[i].width_in_blocks) * info.comp_info[i].height_in_blocks *
                            qint64(sizeof(JBLOCK));
    }
    if (jpeg_has_multiple_scans(&info) && coefficientBytes > mostCoefficientBytes) {
        throw ImageError(ImageError::Cause::TooLarge, "a progressive picture of too many coefficients");
    }
}

/// The DCT scale in eighths: the smallest that leaves enough samples, and one that memory allows.
unsigned scaleEighths(const jpeg_decompress_struct &info, const QRectF &region, QSize size)
{
    const int kept = std::max(size.width(), size.height()) > exportSide ? 4 : 2;
    const auto samplesSuffice = [&](unsigned eighths) {
        return region.width() * eighths >= 8.0 * kept * size.width() &&
               region.height() * eighths >= 8.0 * kept * size.height();
    };
    const double pixels = double(info.image_width) * info.image_height;
    for (const unsigned eighths : {1U, 2U, 4U}) {
        const double next = pixels * (2 * eighths) * (2 * eighths) / 64;
        if (samplesSuffice(eighths) || next > mostPlanePixels) {
            return eighths;
        }
    }
    return 8;
}

/// The memory of one plane: the rows and columns of its window, and room for what libjpeg writes beside it.
class Plane {
public:
    /// `window` is in this plane's samples, and may reach past the `extent` that the file holds.
    Plane(const QRect &window, QSize extent, int decodedWidth)
        : m_window(window),
          m_extent(extent),
          m_left(std::min(window.left(), 0)),
          m_stride((std::max(window.right() + 1, decodedWidth) - m_left + 63) / 64 * 64),
          m_memory(static_cast<size_t>(m_stride) * static_cast<size_t>(window.height() + 1))
    {
    }

    /// Where libjpeg writes a row; rows outside the window share one that nobody reads.
    uint8_t *decodedRow(int y) const { return rowAt(y) - m_left; }
    const uint8_t *corner() const { return m_memory.data() + (m_window.left() - m_left); }
    ptrdiff_t stride() const { return m_stride; }

    void extendEdges() const
    {
        const int top = std::clamp(0, m_window.top(), m_window.bottom());
        const int bottom = std::clamp(m_extent.height() - 1, top, m_window.bottom());
        for (int y = top; y <= bottom; ++y) {
            uint8_t *row = decodedRow(y);
            std::memset(row + m_left, row[0], static_cast<size_t>(-m_left));
            const int beyond = m_window.right() + 1 - m_extent.width();
            if (beyond > 0) {
                std::memset(row + m_extent.width(), row[m_extent.width() - 1], static_cast<size_t>(beyond));
            }
        }
        const auto repeat = [&](int from, int to) {
            std::memcpy(rowAt(to), rowAt(from), static_cast<size_t>(m_stride));
        };
        for (int y = m_window.top(); y < top; ++y) {
            repeat(top, y);
        }
        for (int y = bottom + 1; y <= m_window.bottom(); ++y) {
            repeat(bottom, y);
        }
    }

private:
    uint8_t *rowAt(int y) const
    {
        const bool kept = y >= m_window.top() && y <= m_window.bottom();
        return m_memory.data() + m_stride * (kept ? y - m_window.top() : m_window.height());
    }

    QRect m_window;
    QSize m_extent;
    int m_left;
    ptrdiff_t m_stride;
    PooledBuffer m_memory;
};

/// Decodes every row of a file whose output dimensions are computed into planes.
class PlaneDecoder {
public:
    PlaneDecoder(JpegReader &reader, const QRect &window)
        : m_reader(reader), m_info(reader.info()), m_planeCount(m_info.num_components == 1 ? 1 : 3)
    {
        const jpeg_component_info *parts = m_info.comp_info;
        for (int i = 0; i < m_planeCount; ++i) {
            const Halvings halved = halvingsOf(i);
            m_halvings = halved;
            const QRect own(window.left() >> halved.x, window.top() >> halved.y, window.width() >> halved.x,
                            window.height() >> halved.y);
            const QSize extent(static_cast<int>(parts[i].downsampled_width),
                               static_cast<int>(parts[i].downsampled_height));
            const int blockRow = parts[i].h_samp_factor * parts[i].DCT_scaled_size;
            const int padded = (extent.width() + blockRow - 1) / blockRow * blockRow;
            m_planes.emplace_back(own, extent, padded);
            m_stripRows[static_cast<size_t>(i)] = parts[i].v_samp_factor * parts[i].DCT_scaled_size;
        }
    }

    Halvings halvingsOf(int component) const
    {
        const jpeg_component_info &own = m_info.comp_info[component];
        const jpeg_component_info &first = m_info.comp_info[0];
        return {halvings(first.h_samp_factor * first.DCT_scaled_size, own.h_samp_factor * own.DCT_scaled_size)
                    .value_or(0),
                halvings(first.v_samp_factor * first.DCT_scaled_size, own.v_samp_factor * own.DCT_scaled_size)
                    .value_or(0)};
    }

    void decode(const std::stop_token &stop)
    {
        m_reader.run([this] { jpeg_start_decompress(&m_info); });
        for (int strip = 0; m_info.output_scanline < m_info.output_height; ++strip) {
            throwIfCancelled(stop);
            decodeStrip(strip);
        }
        m_reader.run([this] { jpeg_finish_decompress(&m_info); });
        for (const Plane &plane : m_planes) {
            plane.extendEdges();
        }
    }

    PlanarSource source(QSize window) const
    {
        PlanarSource made;
        made.planeCount = m_planeCount;
        made.size = window;
        made.subsampleX = m_halvings.x;
        made.subsampleY = m_halvings.y;
        for (size_t i = 0; i < m_planes.size(); ++i) {
            made.plane[i] = m_planes[i].corner();
            made.stride[i] = m_planes[i].stride();
        }
        return made;
    }

private:
    void decodeStrip(int strip)
    {
        // At most four blocks of eight rows stand above one another in a strip.
        std::array<std::array<JSAMPROW, 32>, 3> rows{};
        std::array<JSAMPARRAY, 3> planes{};
        for (size_t i = 0; i < m_planes.size(); ++i) {
            for (int row = 0; row < m_stripRows[i]; ++row) {
                rows[i][static_cast<size_t>(row)] = m_planes[i].decodedRow(strip * m_stripRows[i] + row);
            }
            planes[i] = rows[i].data();
        }
        const auto lines = static_cast<JDIMENSION>(m_stripRows[0]);
        m_reader.run([this, &planes, lines] { jpeg_read_raw_data(&m_info, planes.data(), lines); });
    }

    JpegReader &m_reader;
    jpeg_decompress_struct &m_info;
    int m_planeCount;
    /// Those of the last component: libjpeg forgets its own when it finishes.
    Halvings m_halvings{};
    std::vector<Plane> m_planes;
    std::array<int, 3> m_stripRows{};
};

/// What of the decoded planes a part reads, and which of its pixels are computed from them.
struct PartPlan {
    AxisPlan x;
    AxisPlan y;

    QRect window() const
    {
        return {QPoint(x.windowBegin, y.windowBegin), QPoint(x.windowEnd - 1, y.windowEnd - 1)};
    }
    QRectF active(QPoint origin) const
    {
        return {x.start - origin.x(), y.start - origin.y(), x.length, y.length};
    }
    QRect covered() const { return {x.firstTarget, y.firstTarget, x.targetCount, y.targetCount}; }
};

/// The picture after its DCT scale; its true extent may be a fraction of a sample.
struct ScaledPicture {
    double width;
    double height;
    double scale;

    PartPlan plan(const PicturePart &part) const
    {
        const QRectF &region = part.region;
        return {planAxis(width, region.x() * scale, region.width() * scale, part.size.width(), windowGranule),
                planAxis(height, region.y() * scale, region.height() * scale, part.size.height(), 4)};
    }
};

} // namespace

std::optional<QList<QImage>> decodeJpegPlanes(const ImageFile &file, const QList<PicturePart> &parts,
                                              const std::stop_token &stop)
{
    JpegReader reader(file, stop);
    jpeg_decompress_struct &info = reader.info();
    checkCost(info);
    if (!hasPlainPlanes(info)) {
        return std::nullopt;
    }
    info.scale_num = 1;
    for (const PicturePart &part : parts) {
        info.scale_num = std::max(info.scale_num, scaleEighths(info, part.region, part.size));
    }
    info.scale_denom = 8;
    info.raw_data_out = TRUE;
    reader.run([&info] {
        info.out_color_space = info.jpeg_color_space;
        jpeg_calc_output_dimensions(&info);
    });
    const ScaledPicture scaled{info.image_width * (info.scale_num / 8.0),
                               info.image_height * (info.scale_num / 8.0), info.scale_num / 8.0};
    QRect window;
    for (const PicturePart &part : parts) {
        window |= scaled.plan(part).window();
    }
    PlaneDecoder decoder(reader, window);
    decoder.decode(stop);
    QList<QImage> images;
    for (const PicturePart &part : parts) {
        const PartPlan plan = scaled.plan(part);
        QImage target = pooledImage(part.size, QImage::Format_RGB32);
        scalePlanes(decoder.source(window.size()), plan.active(window.topLeft()), target, plan.covered(),
                    stop);
        repeatEdges(target, plan.covered());
        images.append(target);
    }
    return images;
}

void checkJpegData(const ImageFile &file, const std::stop_token &stop)
{
    JpegReader reader(file, stop);
    jpeg_decompress_struct &info = reader.info();
    checkCost(info);
    info.scale_num = 1;
    info.scale_denom = 8;
    info.do_fancy_upsampling = FALSE;
    reader.run([&info] {
        info.out_color_space = info.jpeg_color_space;
        jpeg_start_decompress(&info);
    });
    std::vector<JSAMPLE> samples(size_t(info.output_width) * static_cast<size_t>(info.output_components));
    reader.run([&info, &samples] {
        JSAMPROW row = samples.data();
        while (info.output_scanline < info.output_height) {
            jpeg_read_scanlines(&info, &row, 1);
        }
        jpeg_finish_decompress(&info);
    });
}

} // namespace tarnovel
