#pragma once

#include <cstdint>

namespace tarnovel {

// Rows of the resampler's planes hold 16 bits a sample, of which the upper eight are the whole level and the
// lower eight its fraction. Packed rows are those of QImage's 32-bit formats: blue, green, red, alpha in
// memory.

/// Full-range BT.601 YCbCr, as JFIF defines it, to opaque packed pixels.
void packYcbcr(const uint16_t *luma, const uint16_t *cb, const uint16_t *cr, int count, uint8_t *packed);

/// Grey levels to opaque packed pixels.
void packGrey(const uint16_t *luma, int count, uint8_t *packed);

/// Red, green and blue to opaque packed pixels.
void packRgb(const uint16_t *red, const uint16_t *green, const uint16_t *blue, int count, uint8_t *packed);

/// Replaces the alpha of premultiplied packed pixels, and lowers colours that exceed it.
void packAlpha(const uint16_t *alpha, int count, uint8_t *packed);

// Samples of deep sources are QImage's: 65535 is full, a level of eight bits is 257.

/// The target's place of a row's first sample, on which the dither depends.
struct RowPlace {
    int x = 0;
    int y = 0;
};

/// Red, green and blue of a deep source to opaque packed pixels, with ordered dither. A whole level stays.
void packRgbDithered(const uint16_t *red, const uint16_t *green, const uint16_t *blue, int count,
                     RowPlace place, uint8_t *packed);

/// Replaces the alpha of premultiplied packed pixels like packAlpha, with ordered dither.
void packAlphaDithered(const uint16_t *alpha, int count, RowPlace place, uint8_t *packed);

/// Red, green and blue to opaque pixels of QImage's 64-bit formats.
void packDeepRgb(const uint16_t *red, const uint16_t *green, const uint16_t *blue, int count,
                 uint16_t *packed);

/// Replaces the alpha of premultiplied 64-bit pixels, and lowers colours that exceed it.
void packDeepAlpha(const uint16_t *alpha, int count, uint16_t *packed);

/// The byte at `offset` of every pixel of `step` bytes (3 or 4) to a plane.
void takeChannel(const uint8_t *packed, int step, int offset, int count, uint8_t *plane);

/// The 16-bit sample at `offset` of every pixel of `step` bytes to a plane.
void takeDeepChannel(const uint8_t *packed, int step, int offset, int count, uint16_t *plane);

} // namespace tarnovel
