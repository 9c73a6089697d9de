#include "imaging/PixelRows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "base/OrderedDither.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tarnovel {
namespace {

// The JFIF matrix, in parts of 32768. The factors above one are split into one and a rest, so that every rest
// fits a signed 16-bit multiplication.
constexpr int crToRedRest = 13173;  // 1.402 − 1
constexpr int cbToBlueRest = 25297; // 1.772 − 1
constexpr int cbToGreen = -11277;   // −0.344136
constexpr int crToGreen = -23401;   // −0.714136

uint8_t level(int value64)
{
    return static_cast<uint8_t>(std::clamp((value64 + 32) >> 6, 0, 255));
}

uint8_t rounded(uint16_t value)
{
    return static_cast<uint8_t>(std::min((value + 128) >> 8, 255));
}

#if defined(__SSE2__)
__m128i load(const uint16_t *row)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(row));
}

/// The whole levels of eight samples, in 16 bits each.
__m128i roundedEight(const uint16_t *row)
{
    return _mm_srli_epi16(_mm_adds_epu16(load(row), _mm_set1_epi16(128)), 8);
}

/// Eight packed pixels from channels in 16 bits each, clamped to a byte.
void storeEight(__m128i red, __m128i green, __m128i blue, uint8_t *packed)
{
    const __m128i blueGreen = _mm_unpacklo_epi8(_mm_packus_epi16(blue, blue), _mm_packus_epi16(green, green));
    const __m128i redAlpha = _mm_unpacklo_epi8(_mm_packus_epi16(red, red), _mm_set1_epi8(-1));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(packed), _mm_unpacklo_epi16(blueGreen, redAlpha));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(packed + 16), _mm_unpackhi_epi16(blueGreen, redAlpha));
}

void packYcbcrEight(const uint16_t *luma, const uint16_t *cb, const uint16_t *cr, uint8_t *packed)
{
    const __m128i centre = _mm_set1_epi16(8192);
    const __m128i y = _mm_add_epi16(_mm_srli_epi16(load(luma), 2), _mm_set1_epi16(32));
    const __m128i u = _mm_sub_epi16(_mm_srli_epi16(load(cb), 2), centre);
    const __m128i v = _mm_sub_epi16(_mm_srli_epi16(load(cr), 2), centre);
    const __m128i u2 = _mm_add_epi16(u, u);
    const __m128i v2 = _mm_add_epi16(v, v);
    const auto times = [](__m128i value, int factor) {
        return _mm_mulhi_epi16(value, _mm_set1_epi16(static_cast<short>(factor)));
    };
    const __m128i red = _mm_add_epi16(_mm_add_epi16(y, v), times(v2, crToRedRest));
    const __m128i green = _mm_add_epi16(_mm_add_epi16(y, times(u2, cbToGreen)), times(v2, crToGreen));
    const __m128i blue = _mm_add_epi16(_mm_add_epi16(y, u), times(u2, cbToBlueRest));
    storeEight(_mm_srai_epi16(red, 6), _mm_srai_epi16(green, 6), _mm_srai_epi16(blue, 6), packed);
}
#endif

/// The dither of a row as what is added to samples of 255 · 65536 ÷ 255 units a level before they are cut.
std::array<uint32_t, ditherSide> addends(RowPlace place)
{
    std::array<uint32_t, ditherSide> row{};
    for (unsigned i = 0; i < ditherSide; ++i) {
        const auto &thresholds = ditherThresholds.at(static_cast<unsigned>(place.y) % ditherSide);
        row.at(i) = thresholds.at((static_cast<unsigned>(place.x) + i) % ditherSide) * 1024U + 512U;
    }
    return row;
}

/// 65535 is 255 levels: (sample · 255) ÷ 65536 falls short of a whole level by less than the least addend.
uint32_t dithered(uint16_t sample, uint32_t addend)
{
    return (sample * 255U + addend) >> 16U;
}

void store(uint8_t red, uint8_t green, uint8_t blue, uint8_t *packed)
{
    packed[0] = blue;
    packed[1] = green;
    packed[2] = red;
    packed[3] = 255;
}

} // namespace

void packYcbcr(const uint16_t *luma, const uint16_t *cb, const uint16_t *cr, int count, uint8_t *packed)
{
    int i = 0;
#if defined(__SSE2__)
    for (; i + 8 <= count; i += 8) {
        packYcbcrEight(luma + i, cb + i, cr + i, packed + i * 4);
    }
#endif
    for (; i < count; ++i) {
        const int y = luma[i] >> 2;
        const int u = (cb[i] >> 2) - 8192;
        const int v = (cr[i] >> 2) - 8192;
        // Two shifts, as the vector path does it: the same pixel wherever a row is cut.
        store(level(y + v + ((v * 2 * crToRedRest) >> 16)),
              level(y + ((u * 2 * cbToGreen) >> 16) + ((v * 2 * crToGreen) >> 16)),
              level(y + u + ((u * 2 * cbToBlueRest) >> 16)), packed + i * 4);
    }
}

void packGrey(const uint16_t *luma, int count, uint8_t *packed)
{
    packRgb(luma, luma, luma, count, packed);
}

void packRgb(const uint16_t *red, const uint16_t *green, const uint16_t *blue, int count, uint8_t *packed)
{
    int i = 0;
#if defined(__SSE2__)
    for (; i + 8 <= count; i += 8) {
        storeEight(roundedEight(red + i), roundedEight(green + i), roundedEight(blue + i), packed + i * 4);
    }
#endif
    for (; i < count; ++i) {
        store(rounded(red[i]), rounded(green[i]), rounded(blue[i]), packed + i * 4);
    }
}

void packAlpha(const uint16_t *alpha, int count, uint8_t *packed)
{
    for (int i = 0; i < count; ++i) {
        uint8_t *pixel = packed + i * 4;
        const uint8_t opacity = rounded(alpha[i]);
        for (int channel = 0; channel < 3; ++channel) {
            pixel[channel] = std::min(pixel[channel], opacity);
        }
        pixel[3] = opacity;
    }
}

void takeChannel(const uint8_t *packed, int step, int offset, int count, uint8_t *plane)
{
    const uint8_t *from = packed + offset;
    for (int i = 0; i < count; ++i) {
        plane[i] = from[i * step];
    }
}

void packRgbDithered(const uint16_t *red, const uint16_t *green, const uint16_t *blue, int count,
                     RowPlace place, uint8_t *packed)
{
    const std::array<uint32_t, ditherSide> row = addends(place);
    auto *pixels = reinterpret_cast<uint32_t *>(packed);
    const auto pixel = [&](int i, unsigned column) {
        const uint32_t addend = row[column];
        return 0xff000000U | dithered(red[i], addend) << 16U | dithered(green[i], addend) << 8U |
               dithered(blue[i], addend);
    };
    int i = 0;
    for (; i + ditherSide <= count; i += ditherSide) {
        for (int k = 0; k < ditherSide; ++k) {
            pixels[i + k] = pixel(i + k, static_cast<unsigned>(k));
        }
    }
    for (; i < count; ++i) {
        pixels[i] = pixel(i, static_cast<unsigned>(i) % ditherSide);
    }
}

void packAlphaDithered(const uint16_t *alpha, int count, RowPlace place, uint8_t *packed)
{
    const std::array<uint32_t, ditherSide> row = addends(place);
    for (int i = 0; i < count; ++i) {
        uint8_t *pixel = packed + i * 4;
        const auto opacity =
            static_cast<uint8_t>(dithered(alpha[i], row[static_cast<unsigned>(i) % ditherSide]));
        for (int channel = 0; channel < 3; ++channel) {
            pixel[channel] = std::min(pixel[channel], opacity);
        }
        pixel[3] = opacity;
    }
}

void packDeepRgb(const uint16_t *red, const uint16_t *green, const uint16_t *blue, int count,
                 uint16_t *packed)
{
    for (int i = 0; i < count; ++i) {
        packed[i * 4] = red[i];
        packed[i * 4 + 1] = green[i];
        packed[i * 4 + 2] = blue[i];
        packed[i * 4 + 3] = 0xffff;
    }
}

void packDeepAlpha(const uint16_t *alpha, int count, uint16_t *packed)
{
    for (int i = 0; i < count; ++i) {
        for (int channel = 0; channel < 3; ++channel) {
            packed[i * 4 + channel] = std::min(packed[i * 4 + channel], alpha[i]);
        }
        packed[i * 4 + 3] = alpha[i];
    }
}

void takeDeepChannel(const uint8_t *packed, int step, int offset, int count, uint16_t *plane)
{
    const uint8_t *from = packed + offset;
    for (int i = 0; i < count; ++i) {
        std::memcpy(plane + i, from + static_cast<ptrdiff_t>(i) * step, sizeof(uint16_t));
    }
}

} // namespace tarnovel
