#pragma once

#include <array>
#include <cstdint>

namespace tarnovel {

/// The thresholds of ordered dither by pixel place, row by row: Bayer's 8 × 8 matrix, each of 0…63 once. The
/// same place takes the same threshold on every run, so that two drawings of one picture are equal.
constexpr int ditherSide = 8;
constexpr std::array<std::array<uint8_t, ditherSide>, ditherSide> ditherThresholds = [] {
    std::array<std::array<uint8_t, ditherSide>, ditherSide> thresholds{};
    for (unsigned y = 0; y < ditherSide; ++y) {
        for (unsigned x = 0; x < ditherSide; ++x) {
            unsigned value = 0;
            for (unsigned bit = 0; bit < 3; ++bit) {
                const unsigned across = (x >> bit) & 1U;
                const unsigned down = (y >> bit) & 1U;
                value |= ((across ^ down) << 1U | down) << (4 - 2 * bit);
            }
            thresholds.at(y).at(x) = static_cast<uint8_t>(value);
        }
    }
    return thresholds;
}();

} // namespace tarnovel
