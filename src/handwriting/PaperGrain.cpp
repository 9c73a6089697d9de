#include "handwriting/PaperGrain.h"

#include <algorithm>
#include <cmath>

namespace tarnovel {

namespace {

/// Cells of the repeating tile, one a reference unit.
constexpr int side = 256;

constexpr quint32 seed = 20;

/// Two layers of grain: the fine tooth, and the felt's marks 2.7 times as broad. An export of 4096 pixels
/// enlarges both almost three times, and more of the marks would run together into blobs there.
constexpr double broadness = 2.7;
constexpr double broadShare = 0.12;

/// How far the heights reach about their middle.
constexpr double depth = 0.55;

/// A hash of the cell's place, spread evenly over 0…1 (the finalizer of MurmurHash3).
float noise(quint32 x, quint32 y)
{
    quint32 value = x * 0x9E3779B1U + y * 0x85EBCA77U + seed;
    value = (value ^ (value >> 16)) * 0x85EBCA6BU;
    value = (value ^ (value >> 13)) * 0xC2B2AE35U;
    value ^= value >> 16;
    return static_cast<float>(value >> 8) / static_cast<float>(1U << 24);
}

} // namespace

const PaperGrain &PaperGrain::shared()
{
    static const PaperGrain grain;
    return grain;
}

PaperGrain::PaperGrain() : m_heights(static_cast<size_t>(side) * side)
{
    auto cell = m_heights.begin();
    for (quint32 y = 0; y < side; ++y) {
        for (quint32 x = 0; x < side; ++x) {
            *cell++ = noise(x, y);
        }
    }
}

double PaperGrain::smooth(double x, double y) const
{
    const double left = std::floor(x);
    const double top = std::floor(y);
    const double u = x - left;
    const double v = y - top;
    const auto at = [this](qint64 column, qint64 row) {
        return static_cast<double>(
            m_heights[static_cast<size_t>((row & (side - 1)) * side + (column & (side - 1)))]);
    };
    const auto column = static_cast<qint64>(left);
    const auto row = static_cast<qint64>(top);
    const double upper = at(column, row) + u * (at(column + 1, row) - at(column, row));
    const double lower = at(column, row + 1) + u * (at(column + 1, row + 1) - at(column, row + 1));
    return upper + v * (lower - upper);
}

double PaperGrain::height(double x, double y) const
{
    // The broad layer is turned against the fine one, so that the tile's repeats do not line up.
    const double broad = smooth((0.8 * x - 0.6 * y) / broadness, (0.6 * x + 0.8 * y) / broadness);
    // A cell of the tooth is a pixel of the saved picture: read at its middle, it keeps its own height.
    const double tooth = smooth(x - 0.5, y - 0.5);
    return 0.5 + depth * ((1 - broadShare) * tooth + broadShare * broad - 0.5);
}

int PaperGrain::graphite(int ink, double x, double y) const
{
    constexpr double deepest = 0.95;
    constexpr double edge = 1.9;
    constexpr double darkest = 0.88;
    const double laid = ink / 255.0;
    const double caught = std::clamp((laid - deepest * (1 - height(x, y)) + 0.12) * edge, 0.0, 1.0);
    return static_cast<int>(std::lround(255 * darkest * caught * std::min(1.0, 0.25 + laid)));
}

} // namespace tarnovel
