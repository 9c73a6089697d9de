#include "imaging/JpegSizeSample.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <numeric>

#include <jpeglib.h>
#include <turbojpeg.h>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "imaging/BlockTransform.h"
#include "imaging/BufferPool.h"
#include "imaging/ImageEncoder.h"

namespace tarnovel {
namespace {

/// A tile: sixteen pixels that only lead to the next, and two times sixteen that count.
constexpr int unit = 16;
constexpr int counted = 2 * unit;
constexpr int tileWidth = unit + counted;
constexpr int tilesAcross = 16;
/// One of so many tiles is sampled, and no fewer than these.
constexpr size_t sparsity = 32;
constexpr size_t fewestTiles = 320;
constexpr qint64 manyPixels = 4'000'000;

/// The first coefficient alone.
int16_t meanLevel(const unsigned char *pixels, int stride)
{
    int sum = 0;
    for (int y = 0; y < blockSide; ++y) {
        sum = std::accumulate(pixels + static_cast<ptrdiff_t>(y) * stride,
                              pixels + static_cast<ptrdiff_t>(y) * stride + blockSide, sum);
    }
    return static_cast<int16_t>(sum - 128 * static_cast<int>(blockSamples));
}

/// What the codec library writes by: its Huffman tables, and its quantisation at each quality.
class Codec {
public:
    explicit Codec(int hundredths)
    {
        m_info.err = jpeg_std_error(&m_errors);
        jpeg_create_compress(&m_info);
        m_info.in_color_space = JCS_YCbCr;
        m_info.input_components = 3;
        jpeg_set_defaults(&m_info);
        jpeg_set_quality(&m_info, hundredths, TRUE);
        for (size_t i = 0; i < 2; ++i) {
            m_levelCodes.at(i) = codes(*m_info.dc_huff_tbl_ptrs[i]);
            m_detailCodes.at(i) = codes(*m_info.ac_huff_tbl_ptrs[i]);
        }
    }
    ~Codec() { jpeg_destroy_compress(&m_info); }
    Codec(const Codec &) = delete;
    Codec &operator=(const Codec &) = delete;

    /// For each symbol its code, and that code's length.
    struct Codes {
        std::array<uint16_t, 256> code{};
        std::array<uint8_t, 256> length{};
    };
    const Codes &levelCodes(bool chroma) const { return m_levelCodes[chroma ? 1 : 0]; }
    const Codes &detailCodes(bool chroma) const { return m_detailCodes[chroma ? 1 : 0]; }

    /// One quantisation step, in the file's order.
    int step(bool chroma, size_t place) const
    {
        return m_info.quant_tbl_ptrs[chroma ? 1 : 0]->quantval[zigzag[place]];
    }

private:
    static Codes codes(const JHUFF_TBL &table)
    {
        Codes made;
        size_t symbol = 0;
        uint16_t code = 0;
        for (uint8_t length = 1; length <= 16; ++length, code = static_cast<uint16_t>(code << 1)) {
            for (int i = 0; i < table.bits[length]; ++i, ++code) {
                made.code.at(table.huffval[symbol]) = code;
                made.length.at(table.huffval[symbol++]) = length;
            }
        }
        return made;
    }

    jpeg_compress_struct m_info{};
    jpeg_error_mgr m_errors{};
    std::array<Codes, 2> m_levelCodes{};
    std::array<Codes, 2> m_detailCodes{};
};

/// Counts the bits of a file as they are written, with the zeros that follow each byte of ones.
class BitCount {
public:
    void add(unsigned code, int length)
    {
        m_last = m_last << static_cast<unsigned>(length) | code;
        m_open += length;
        m_bits += length;
        for (; m_open >= 8; m_open -= 8) {
            m_bits += (m_last >> static_cast<unsigned>(m_open - 8) & 0xffU) == 0xffU ? 8 : 0;
        }
    }
    /// A symbol of its run of zeros, and the number that ends the run.
    void add(const Codec::Codes &codes, unsigned zeros, int number)
    {
        const auto size = static_cast<unsigned>(std::bit_width(static_cast<unsigned>(std::abs(number))));
        add(codes, zeros << 4U | size);
        const unsigned ones = (1U << size) - 1;
        add(static_cast<unsigned>(number < 0 ? number - 1 : number) & ones, static_cast<int>(size));
    }
    void add(const Codec::Codes &codes, unsigned symbol) { add(codes.code[symbol], codes.length[symbol]); }
    qint64 bits() const { return m_bits; }

private:
    uint64_t m_last = 0;
    int m_open = 0;
    qint64 m_bits = 0;
};

/// The quantisation of one kind of block, in the file's order.
struct Steps {
    std::array<int16_t, blockSamples> half{};
    std::array<float, blockSamples> inverse{};
    /// Up to here a coefficient is nothing.
    std::array<int16_t, blockSamples> mostOfNothing{};

    void set(size_t place, int step)
    {
        half.at(place) = static_cast<int16_t>(step >> 1);
        inverse.at(place) = 1 / static_cast<float>(step);
        mostOfNothing.at(place) = static_cast<int16_t>(step - (step >> 1) - 1);
    }

    /// To the nearest step, halves away from zero.
    int level(int coefficient, size_t place) const
    {
        // Half a unit more than the whole number that is divided, which the division then cannot miss.
        const float whole = static_cast<float>(std::abs(coefficient) + half[place]) + 0.5F;
        const int found = static_cast<int>(whole * inverse[place]);
        return coefficient < 0 ? -found : found;
    }

    /// A bit for each coefficient of which something is left.
    uint64_t seen(const int16_t *block) const
    {
        uint64_t bits = 0;
#ifdef __SSE2__
        for (size_t i = 0; i < blockSamples; i += 16) {
            const auto beyond = [this, block](size_t at) {
                const __m128i value = _mm_loadu_si128(reinterpret_cast<const __m128i *>(block + at));
                const __m128i size = _mm_max_epi16(value, _mm_sub_epi16(_mm_setzero_si128(), value));
                const __m128i most =
                    _mm_loadu_si128(reinterpret_cast<const __m128i *>(mostOfNothing.data() + at));
                return _mm_cmpgt_epi16(size, most);
            };
            const int sixteen = _mm_movemask_epi8(_mm_packs_epi16(beyond(i), beyond(i + 8)));
            bits |= static_cast<uint64_t>(static_cast<unsigned>(sixteen)) << i;
        }
#else
        for (size_t i = 0; i < blockSamples; ++i) {
            bits |= static_cast<uint64_t>(std::abs(block[i]) > mostOfNothing[i]) << i;
        }
#endif
        return bits;
    }
};

/// All of a block but its mean level.
void addDetail(BitCount &count, const int16_t *block, const Steps &steps, const Codec::Codes &codes)
{
    constexpr unsigned sixteenZeros = 0xF0;
    constexpr unsigned end = 0;
    int last = 0;
    for (uint64_t seen = steps.seen(block) & ~uint64_t(1); seen != 0; seen &= seen - 1) {
        const int place = std::countr_zero(seen);
        int zeros = place - last - 1;
        for (; zeros > 15; zeros -= 16) {
            count.add(codes, sixteenZeros);
        }
        count.add(codes, static_cast<unsigned>(zeros), steps.level(block[place], static_cast<size_t>(place)));
        last = place;
    }
    if (last < 63) {
        count.add(codes, end);
    }
}

} // namespace

qint64 JpegSizeSample::headerBytes()
{
    static const qint64 bytes = [] {
        QImage grey(8, 8, QImage::Format_RGB32);
        grey.fill(QColor(128, 128, 128));
        // Three blocks of nothing: one byte and a half, filled up to two.
        return JpegEncoder(grey).encode(1).size() - 2;
    }();
    return bytes;
}

JpegSizeSample::JpegSizeSample(const QImage &image) : m_image(image)
{
    const int columns = (image.width() + unit - 1) / unit;
    const int rows = (image.height() + unit - 1) / unit;
    const int pairs = (columns + 1) / 2;
    const size_t all = static_cast<size_t>(pairs) * static_cast<size_t>(rows);
    const size_t wanted = std::max(all / sparsity, fewestTiles);
    QList<QPoint> places;
    if (wanted * 2 > all) {
        for (size_t i = 0; i < all; ++i) {
            places.append({static_cast<int>(i % static_cast<size_t>(pairs)),
                           static_cast<int>(i / static_cast<size_t>(pairs))});
        }
    } else {
        // Evenly scattered, however many there are: the two-dimensional kin of the golden section.
        constexpr double plastic = 1.32471795724474602596;
        for (size_t i = 0; i < wanted; ++i) {
            const auto part = [i](double step) {
                return std::fmod(0.5 + static_cast<double>(i) * step, 1.0);
            };
            places.append({static_cast<int>(part(1 / plastic) * pairs),
                           static_cast<int>(part(1 / (plastic * plastic)) * rows)});
        }
    }
    const int down = (static_cast<int>(places.size()) + tilesAcross - 1) / tilesAcross;
    m_sheet = pooledImage({tilesAcross * tileWidth, down * unit}, QImage::Format_RGB32);
    for (qsizetype i = 0; i < places.size(); ++i) {
        const int left = places.at(i).x() * counted;
        const int top = places.at(i).y() * unit;
        m_tiles.push_back(
            QSize(std::min(counted, image.width() - left), std::min(unit, image.height() - top)));
        const int sheetX = static_cast<int>(i % tilesAcross) * tileWidth;
        const int sheetY = static_cast<int>(i / tilesAcross) * unit;
        for (int y = 0; y < unit; ++y) {
            const auto *source =
                reinterpret_cast<const QRgb *>(image.constScanLine(std::min(top + y, image.height() - 1)));
            auto *goal = reinterpret_cast<QRgb *>(m_sheet.scanLine(sheetY + y)) + sheetX;
            const int first = left - unit;
            if (first >= 0 && first + tileWidth <= image.width()) {
                std::memcpy(goal, source + first, tileWidth * sizeof(QRgb));
                continue;
            }
            for (int x = 0; x < tileWidth; ++x) {
                goal[x] = source[std::clamp(first + x, 0, image.width() - 1)];
            }
        }
    }
}

JpegSizeSample::Transformed JpegSizeSample::transformed(int subsampling) const
{
    const bool half = subsampling == TJSAMP_420;
    const std::unique_ptr<void, int (*)(tjhandle)> handle(tjInitCompress(), tjDestroy);
    const int width = m_sheet.width();
    const int height = static_cast<int>((m_tiles.size() + tilesAcross - 1) / tilesAcross) * unit;
    std::array<PooledBuffer, 3> memory;
    std::array<unsigned char *, 3> planes{};
    for (int i = 0; i < 3; ++i) {
        memory.at(static_cast<size_t>(i)) = PooledBuffer(tjPlaneSizeYUV(i, width, 0, height, subsampling));
        planes.at(static_cast<size_t>(i)) = memory.at(static_cast<size_t>(i)).data();
    }
    if (!handle ||
        tjEncodeYUVPlanes(handle.get(), m_sheet.constBits(), width, static_cast<int>(m_sheet.bytesPerLine()),
                          height, TJPF_BGRX, planes.data(), nullptr, subsampling, TJFLAG_ACCURATEDCT) != 0) {
        throw std::bad_alloc();
    }
    Transformed made;
    // A unit is what the file codes together: of sixteen pixels a side with half the colour, of eight with
    // all.
    const int side = half ? unit : blockSide;
    const auto unitsIn = [side](int length) { return (length + side - 1) / side; };
    made.allUnits = double(unitsIn(m_image.width())) * unitsIn(m_image.height());
    // What is coded in full has more blocks for the same pixels.
    const size_t every = !half && qint64(m_image.width()) * m_image.height() > manyPixels ? 2 : 1;
    made.coefficients.reserve(m_tiles.size() / every * (half ? 12 : 24) * blockSamples);
    for (size_t tile = 0; tile < m_tiles.size(); tile += every) {
        const int across = unitsIn(m_tiles[tile].width());
        const int down = unitsIn(m_tiles[tile].height());
        const int left = static_cast<int>(tile % tilesAcross) * tileWidth;
        const int top = static_cast<int>(tile / tilesAcross) * unit;
        for (int row = 0; row < down; ++row) {
            for (size_t component = 0; component < 3; ++component) {
                const bool smaller = half && component > 0;
                const int blocks = half && component == 0 ? 2 : 1;
                const int stride = smaller ? width / 2 : width;
                const int divisor = smaller ? 2 : 1;
                const unsigned char *start = planes.at(component) +
                                             ptrdiff_t(top + row * side) / divisor * stride +
                                             (left + unit - side) / divisor;
                // Of the unit that leads, the last block is what the next one goes by.
                const ptrdiff_t lead = ptrdiff_t(blocks - 1) * blockSide * (stride + 1);
                Run run{made.coefficients.size() / blockSamples,
                        0,
                        meanLevel(start + lead, stride),
                        component == 0 ? across : 0,
                        component > 0,
                        tile};
                for (int column = 1; column <= across; ++column) {
                    for (int block = 0; block < blocks * blocks; ++block, ++run.count) {
                        const size_t at = made.coefficients.size();
                        made.coefficients.resize(at + blockSamples);
                        transformBlock(start + ptrdiff_t(block / blocks) * blockSide * stride +
                                           column * side / divisor + block % blocks * blockSide,
                                       stride, made.coefficients.data() + at);
                    }
                }
                made.runs.push_back(run);
            }
        }
    }
    return made;
}

JpegSizeSample::Estimate JpegSizeSample::estimate(int hundredths, size_t share)
{
    const bool full = JpegEncoder::storesColourInFull(hundredths / 100.0);
    std::optional<Transformed> &sample = full ? m_fullColour : m_halfColour;
    if (!sample) {
        sample = transformed(full ? TJSAMP_444 : TJSAMP_420);
    }
    const Codec codec(hundredths);
    std::array<Steps, 2> steps;
    for (size_t i = 0; i < blockSamples; ++i) {
        for (const bool chroma : {false, true}) {
            // The coefficients are eight times as large.
            steps[chroma ? 1 : 0].set(i, 8 * codec.step(chroma, i));
        }
    }
    std::map<size_t, double> tiles;
    BitCount count;
    double units = 0;
    for (const Run &run : sample->runs) {
        if (run.tile / 2 % share != 0) {
            continue;
        }
        units += run.units;
        const Steps &quantisation = steps[run.chroma ? 1 : 0];
        const qint64 before = count.bits();
        int level = quantisation.level(run.before, 0);
        for (size_t i = 0; i < run.count; ++i) {
            const int16_t *block = sample->coefficients.data() + (run.first + i) * blockSamples;
            const int next = quantisation.level(block[0], 0);
            count.add(codec.levelCodes(run.chroma), 0, next - level);
            addDetail(count, block, quantisation, codec.detailCodes(run.chroma));
            level = next;
        }
        tiles[run.tile] += static_cast<double>(count.bits() - before);
    }
    double sum = 0;
    double squares = 0;
    for (const auto &[tile, bits] : tiles) {
        sum += bits;
        squares += bits * bits;
    }
    const auto number = static_cast<double>(tiles.size());
    const double mean = sum / number;
    const double variance = std::max(squares / number - mean * mean, 0.0) / number;
    const bool isWhole = units >= sample->allUnits;
    return {static_cast<double>(headerBytes()) + sum / 8 * sample->allUnits / units,
            isWhole || mean <= 0 ? 0 : std::sqrt(variance) / mean};
}

} // namespace tarnovel
