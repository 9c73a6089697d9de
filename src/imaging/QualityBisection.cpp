#include "imaging/QualityBisection.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "imaging/ImageEncoder.h"

namespace tarnovel {
namespace {

constexpr double lowestQuality = 0.05;
constexpr double highestQuality = 0.95;
constexpr int lowest = 5;
constexpr int highest = 95;
constexpr int highestHalved = 89;
constexpr int halvings = 7;

// Of an encoding's time, so much at most goes into finding out whether it can be spared.
constexpr qint64 fewestPixels = 200'000;
// Between these a guess costs more of what an encoding does, and its sample is smaller.
constexpr qint64 manyPixels = 4'000'000;

// How far guesses were from the truth, on 46 pictures and 53,000 limits: next to a true size, for each
// hundredth of quality away from it, and at most; from a sample alone; and beyond what a sample's own chance
// explains.
constexpr double nearError = 0.006;
constexpr double errorPerStep = 0.0012;
constexpr double largestError = 0.03;
constexpr double fullColourGate = 0.06;
constexpr double hopelessError = 0.06;

int hundredths(double quality)
{
    return static_cast<int>(std::lround(quality * 100));
}

bool isFull(int quality)
{
    return JpegEncoder::storesColourInFull(quality / 100.0);
}

template<typename Fits>
double halved(Fits fits)
{
    double low = lowestQuality;
    double high = highestQuality;
    for (int i = 0; i < halvings; ++i) {
        const double mid = (low + high) / 2;
        (fits(hundredths(mid)) ? low : high) = mid;
    }
    return low;
}

} // namespace

/// The way that the bisection takes.
struct QualityBisection::Path {
    std::optional<double> best;
    std::vector<int> visited;
    /// Without these two nothing is certain: the quality it ends at, and its neighbour that does not fit.
    std::vector<int> deciding;
};

std::optional<double> QualityBisection::run()
{
    if (m_sizes.pixels < fewestPixels) {
        return plainly();
    }
    for (;;) {
        if (m_isHopeless || m_sizes.guessed(highestHalved).error > hopelessError) {
            return plainly();
        }
        const Path way = path();
        int next = 0;
        double nearest = 0;
        for (const int quality : way.visited) {
            const double away = std::abs(std::log(bytes(quality) / std::max<double>(double(m_limit), 1)));
            const bool isDeciding = std::ranges::find(way.deciding, quality) != way.deciding.end();
            if (!m_known.contains(quality) && (isDeciding || away < margin(quality)) &&
                (next == 0 || away < nearest)) {
                next = quality;
                nearest = away;
            }
        }
        if (next == 0) {
            return way.best;
        }
        encode(next);
    }
}

/// The bisection with no inference, but for qualities that it meets again.
std::optional<double> QualityBisection::plainly()
{
    if (trulyFits(highest)) {
        return highestQuality;
    }
    return trulyFits(lowest) ? std::optional(halved([this](int quality) { return trulyFits(quality); }))
                             : std::nullopt;
}

bool QualityBisection::trulyFits(int quality)
{
    if (!m_known.contains(quality)) {
        encode(quality);
    }
    return m_known.at(quality) <= m_limit;
}

QualityBisection::Path QualityBisection::path() const
{
    if (fits(highest)) {
        return {highestQuality, {highest}, {highest}};
    }
    if (!fits(lowest)) {
        return {std::nullopt, {highest, lowest}, {lowest}};
    }
    Path way{std::nullopt, {highest, lowest}, {}};
    int highestFitting = lowest;
    int lowestFailing = highest;
    way.best = halved([&](int quality) {
        const bool isFitting = fits(quality);
        way.visited.push_back(quality);
        (isFitting ? highestFitting : lowestFailing) = quality;
        return isFitting;
    });
    way.deciding = {highestFitting, lowestFailing};
    return way;
}

int QualityBisection::nearestKnown(int quality) const
{
    int nearest = 0;
    for (const auto &[known, size] : m_known) {
        if (isFull(known) == isFull(quality) &&
            (nearest == 0 || std::abs(known - quality) < std::abs(nearest - quality))) {
            nearest = known;
        }
    }
    return nearest;
}

double QualityBisection::bytes(int quality) const
{
    if (const auto known = m_known.find(quality); known != m_known.end()) {
        return static_cast<double>(known->second);
    }
    const auto guess = [this](int at) {
        const auto [place, isNew] = m_guesses.try_emplace(at);
        if (isNew) {
            place->second = m_sizes.guessed(at);
        }
        return place->second.bytes;
    };
    if (const int known = nearestKnown(quality); known != 0) {
        return guess(quality) * static_cast<double>(m_known.at(known)) / guess(known);
    }
    // The conversion to full colour alone costs as much as two encodings with half of it: where that is far
    // too large, this is larger still.
    if (isFull(quality)) {
        const double half = bytes(highestHalved);
        if (half > (1 + fullColourGate) * static_cast<double>(m_limit)) {
            return half * (1 + fullColourGate);
        }
    }
    return guess(quality);
}

double QualityBisection::margin(int quality) const
{
    const double wider = m_sizes.pixels < manyPixels ? 2 : 1;
    const int known = nearestKnown(quality);
    const double expected =
        known == 0 ? largestError
                   : std::min(nearError + errorPerStep * std::abs(known - quality), largestError);
    return std::max(wider * expected, 3 * m_worstError);
}

void QualityBisection::encode(int quality)
{
    const bool wasCalibrated = nearestKnown(quality) != 0;
    const auto guess = m_guesses.find(quality);
    const bool wasGuessed = guess != m_guesses.end() && !guess->second.isRough;
    const double expected = wasGuessed ? bytes(quality) : 0;
    const qint64 size = m_sizes.encoded(quality);
    m_known[quality] = size;
    if (wasGuessed && expected > 0 && size > 0) {
        const double error = std::abs(std::log(expected / static_cast<double>(size)));
        if (wasCalibrated) {
            m_worstError = std::max(m_worstError, error);
        }
        m_isHopeless = m_isHopeless || error > hopelessError;
    }
}

} // namespace tarnovel
