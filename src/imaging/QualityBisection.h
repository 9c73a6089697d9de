#pragma once

#include <functional>
#include <map>
#include <optional>

#include <QtGlobal>

namespace tarnovel {

/// What is known of the sizes that a picture's files have at each quality, in whole hundredths.
struct QualitySizes {
    /// Encodes the picture: the file's true size.
    std::function<qint64(int)> encoded;
    struct Guess {
        double bytes = 0;
        /// The standard error that the guess itself states, as a part of the size.
        double error = 0;
        /// Good for no more than to tell that the size is far from the limit.
        bool isRough = false;
    };
    std::function<Guess(int)> guessed;
    qint64 pixels = 0;
};

/// Finds where the bisection for the best quality under a size limit ends, with as few encodings as make it
/// certain. The bisection: 0.95 when its file has at most `limit` bytes; nothing when that of 0.05 has more;
/// else the last quality that fits of seven halvings of 0.05…0.95, where one that fits raises the lower end.
/// Sizes need not grow with quality.
class QualityBisection {
public:
    QualityBisection(QualitySizes sizes, qint64 limit) : m_sizes(std::move(sizes)), m_limit(limit) {}

    /// None when nothing fits. The file of the quality that comes back has been encoded.
    std::optional<double> run();

    /// How many times the picture was encoded.
    int encodings() const { return static_cast<int>(m_known.size()); }

private:
    struct Path;

    std::optional<double> plainly();
    Path path() const;
    bool fits(int quality) const { return bytes(quality) <= static_cast<double>(m_limit); }
    bool trulyFits(int quality);
    /// The true size, or else what is expected.
    double bytes(int quality) const;
    /// The known quality of the same subsampling that is nearest; 0 for none.
    int nearestKnown(int quality) const;
    /// How far a guess may be from the limit, as a part of it, and still be wrong about what fits.
    double margin(int quality) const;
    void encode(int quality);

    QualitySizes m_sizes;
    qint64 m_limit;
    std::map<int, qint64> m_known;
    mutable std::map<int, QualitySizes::Guess> m_guesses;
    /// The worst that a guess next to a true size has been wrong.
    double m_worstError = 0;
    bool m_isHopeless = false;
};

} // namespace tarnovel
