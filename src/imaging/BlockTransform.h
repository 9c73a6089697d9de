#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarnovel {

/// The blocks that JPEG codes, of eight samples a side.
constexpr int blockSide = 8;
constexpr size_t blockSamples = 64;

/// From the order of the file to that of the block's rows (ISO 10918-1, figure A.6).
inline constexpr std::array<uint8_t, blockSamples> zigzag = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

/// Eight times the discrete cosine transform of the samples, in the file's order: to the last bit what the
/// codec library's accurate integer transform gives. `stride` is from one row to the next.
void transformBlock(const uint8_t *samples, int stride, int16_t *coefficients);

} // namespace tarnovel
