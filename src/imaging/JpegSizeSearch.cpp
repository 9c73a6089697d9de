#include <algorithm>
#include <cmath>
#include <map>

#include "base/Cancellation.h"
#include "imaging/ImageEncoder.h"

namespace tarnovel {
namespace {

constexpr double lowestQuality = 0.05;
constexpr double highestQuality = 0.95;
constexpr int halvings = 7;
// How a file shrinks as its quantisation steps grow, before two sizes of the picture at hand tell better:
// measured on photographs between qualities 40 and 95.
constexpr double typicalExponent = -0.7;

// From one hundredth of quality to the next; photographs grow by one to four parts in a hundred.
constexpr double leastGrowth = 1.008;
// Small or nearly flat pictures: sizes jump about, and every encoding is quick.
constexpr qint64 fewestPixels = 200'000;
constexpr double leastBytesPerPixel = 0.05;

int hundredths(double quality)
{
    return static_cast<int>(std::lround(quality * 100));
}

/// The logarithm of the factor by which libjpeg multiplies its quantisation tables.
double logStep(int quality)
{
    return std::log(quality < 50 ? 5000.0 / quality : 200.0 - 2.0 * quality);
}

/// The way that a bisection takes, given what fits.
struct Path {
    double best = lowestQuality;
    /// In hundredths: the highest visited quality that fits (the start counts), and the lowest that does not.
    int highestFitting = hundredths(lowestQuality);
    int lowestFailing = hundredths(highestQuality);
};

template<typename Fits>
Path bisect(Fits fits)
{
    Path path;
    double low = lowestQuality;
    double high = highestQuality;
    for (int i = 0; i < halvings; ++i) {
        const double mid = (low + high) / 2;
        if (fits(hundredths(mid))) {
            path.best = low = mid;
            path.highestFitting = hundredths(mid);
        } else {
            high = mid;
            path.lowestFailing = hundredths(mid);
        }
    }
    return path;
}

/// Encodes as few qualities as decide where the bisection ends: one that fits, and its neighbour on the path
/// that does not. Which two that are is guessed from the sizes seen so far. A higher quality gives no smaller
/// file.
class Search {
public:
    Search(const QImage &image, qint64 limit, const std::stop_token &stop)
        : m_encoder(image), m_pixels(qint64(image.width()) * image.height()), m_limit(limit), m_stop(stop)
    {
    }

    JpegSearchResult run()
    {
        if (encodingFits(hundredths(highestQuality))) {
            return result(highestQuality);
        }
        if (m_pixels < fewestPixels || double(m_limit) < leastBytesPerPixel * double(m_pixels)) {
            return plainly();
        }
        for (;;) {
            const double threshold = expectedThreshold();
            const Path path = bisect([&](int quality) { return fits(quality, threshold); });
            if (!m_sizes.contains(path.lowestFailing)) {
                encodingFits(path.lowestFailing);
            } else if (!m_sizes.contains(path.highestFitting)) {
                encodingFits(path.highestFitting);
            } else if (knownToFail(hundredths(lowestQuality))) {
                return nothing();
            } else {
                return growsSteadily(path) ? result(path.best) : plainly();
            }
        }
    }

private:
    /// The bisection with no inference, but for qualities that it meets again.
    JpegSearchResult plainly()
    {
        if (!sizeFits(hundredths(lowestQuality))) {
            return nothing();
        }
        return result(bisect([&](int quality) { return sizeFits(quality); }).best);
    }

    bool knownToFit(int quality) const { return m_highestFitting >= quality; }
    bool knownToFail(int quality) const { return m_lowestFailing <= quality; }

    bool fits(int quality, double threshold) const
    {
        return knownToFit(quality) || (!knownToFail(quality) && quality <= threshold);
    }

    /// Whether sizes differ enough between qualities that a higher one cannot give a smaller file by chance.
    /// Flat graphics are not like that.
    bool growsSteadily(const Path &path) const
    {
        const double steps = path.lowestFailing - path.highestFitting;
        const double growth =
            double(m_sizes.at(path.lowestFailing)) / double(m_sizes.at(path.highestFitting));
        return steps > 0 && growth >= std::pow(leastGrowth, steps);
    }

    bool sizeFits(int quality)
    {
        return m_sizes.contains(quality) ? m_sizes[quality] <= m_limit : encodingFits(quality);
    }

    bool encodingFits(int quality)
    {
        throwIfCancelled(m_stop);
        QByteArray bytes = m_encoder.encode(quality / 100.0);
        ++m_encodings;
        m_sizes[quality] = bytes.size();
        if (bytes.size() > m_limit) {
            m_lowestFailing = std::min(m_lowestFailing, quality);
            return false;
        }
        m_highestFitting = std::max(m_highestFitting, quality);
        m_fitting[quality] = std::move(bytes);
        return true;
    }

    JpegSearchResult nothing() const { return {std::nullopt, 0, m_encodings}; }

    JpegSearchResult result(double quality)
    {
        return {m_fitting.at(hundredths(quality)), quality, m_encodings};
    }

    /// The quality whose file would have just the size of the limit, along the line through the two known
    /// sizes next to it.
    double expectedThreshold() const
    {
        const double goal = std::log(std::max<double>(static_cast<double>(m_limit), 1));
        const auto above = m_sizes.find(m_lowestFailing);
        auto other = m_sizes.find(m_highestFitting);
        if (other == m_sizes.end()) {
            other = std::next(above);
        }
        double exponent = typicalExponent;
        if (other != m_sizes.end()) {
            exponent = std::log(double(other->second) / double(above->second)) /
                       (logStep(other->first) - logStep(above->first));
        }
        const double wanted =
            logStep(above->first) + (goal - std::log(double(above->second))) / std::min(exponent, -0.05);
        const double step = std::exp(wanted);
        return step > 100 ? 5000 / step : (200 - step) / 2;
    }

    JpegEncoder m_encoder;
    qint64 m_pixels;
    qint64 m_limit;
    const std::stop_token &m_stop;
    std::map<int, qint64> m_sizes;
    std::map<int, QByteArray> m_fitting;
    int m_highestFitting = 0;
    int m_lowestFailing = 101;
    int m_encodings = 0;
};

} // namespace

JpegSearchResult searchJpegQuality(const QImage &image, qint64 limit, const std::stop_token &stop)
{
    return Search(image, limit, stop).run();
}

} // namespace tarnovel
