#include "imaging/BlockTransform.h"

#include <cstring>

namespace tarnovel {
namespace {

/// Eight numbers at once, which every compiler turns into what its processor has.
using Eight [[gnu::vector_size(blockSide * sizeof(int32_t))]] = int32_t;
using Block = std::array<Eight, blockSide>;

// Of the transform: the bits behind the point of its constants, and those kept between its two passes.
constexpr int constantBits = 13;
constexpr int passBits = 2;

constexpr int32_t fixed(double value)
{
    return static_cast<int32_t>(value * (2 << constantBits) + 1) / 2; // rounded
}

/// One pass of the codec library's accurate integer transform, to the last bit (Loeffler, Ligtenberg and
/// Moschytz, 1989). `down` is by how many bits the mean is reduced, `downOdd` all that is multiplied.
void pass(Block &d, int up, int down, int downOdd)
{
    // By reference: how a vector of this length is passed by value depends on the processor.
    const auto reduce = [](Eight &value, int bits) { value = (value + (1 << bits >> 1)) >> bits; };
    const Eight sum0 = d[0] + d[7];
    const Eight sum1 = d[1] + d[6];
    const Eight sum2 = d[2] + d[5];
    const Eight sum3 = d[3] + d[4];
    const Eight away4 = d[3] - d[4];
    const Eight away5 = d[2] - d[5];
    const Eight away6 = d[1] - d[6];
    const Eight away7 = d[0] - d[7];

    const Eight outer = sum0 + sum3;
    const Eight inner = sum1 + sum2;
    const Eight outerAway = sum0 - sum3;
    const Eight innerAway = sum1 - sum2;
    const Eight turned = (innerAway + outerAway) * fixed(0.541196100);
    d[0] = (outer + inner) << up;
    reduce(d[0], down);
    d[4] = (outer - inner) << up;
    reduce(d[4], down);
    d[2] = turned + outerAway * fixed(0.765366865);
    reduce(d[2], downOdd);
    d[6] = turned - innerAway * fixed(1.847759065);
    reduce(d[6], downOdd);

    const Eight all = (away4 + away6 + away5 + away7) * fixed(1.175875602);
    const Eight z1 = (away4 + away7) * -fixed(0.899976223);
    const Eight z2 = (away5 + away6) * -fixed(2.562915447);
    const Eight z3 = (away4 + away6) * -fixed(1.961570560) + all;
    const Eight z4 = (away5 + away7) * -fixed(0.390180644) + all;
    d[7] = away4 * fixed(0.298631336) + z1 + z3;
    reduce(d[7], downOdd);
    d[5] = away5 * fixed(2.053119869) + z2 + z4;
    reduce(d[5], downOdd);
    d[3] = away6 * fixed(3.072711026) + z2 + z3;
    reduce(d[3], downOdd);
    d[1] = away7 * fixed(1.501321110) + z1 + z4;
    reduce(d[1], downOdd);
}

} // namespace

void transformBlock(const uint8_t *pixels, int stride, int16_t *coefficients)
{
    std::array<int32_t, blockSamples> samples{};
    for (size_t y = 0; y < blockSide; ++y) {
        for (size_t x = 0; x < blockSide; ++x) {
            samples[x * blockSide + y] =
                pixels[static_cast<ptrdiff_t>(y) * stride + static_cast<ptrdiff_t>(x)] - 128;
        }
    }
    Block block{};
    std::memcpy(block.data(), samples.data(), sizeof(block));
    pass(block, passBits, 0, constantBits - passBits);
    std::array<int32_t, blockSamples> turned{};
    std::memcpy(turned.data(), block.data(), sizeof(block));
    for (size_t k = 0; k < blockSide; ++k) {
        for (size_t y = 0; y < blockSide; ++y) {
            samples[y * blockSide + k] = turned[k * blockSide + y];
        }
    }
    std::memcpy(block.data(), samples.data(), sizeof(block));
    pass(block, 0, passBits, constantBits + passBits);
    std::memcpy(samples.data(), block.data(), sizeof(block));
    for (size_t i = 0; i < blockSamples; ++i) {
        coefficients[i] = static_cast<int16_t>(samples[zigzag[i]]);
    }
}

} // namespace tarnovel
