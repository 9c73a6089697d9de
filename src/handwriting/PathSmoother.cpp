#include "handwriting/PathSmoother.h"

#include <algorithm>
#include <cmath>

namespace tarnovel {

namespace {

/// All in logical pixels. Of the Gaussian, and where it ends.
constexpr double sigma = 3;
constexpr double kernel = 2.5 * sigma;
/// The farthest that a place is moved: twice what rounding to whole pixels does, and no more than a corner
/// bears.
constexpr double farthestMove = 1;
/// In what pieces a line is summed up; a hand is never so fast that there are more.
constexpr double longestPiece = 1;
constexpr int mostPieces = 1000;
/// A shorter way says nothing of the course.
constexpr double leastPiece = 0.05;
/// Beside an end that is held there is too little path for a Gaussian.
constexpr double leastSigma = 0.05;

} // namespace

void PathSmoother::append(const CourseNode &reported, QPointF calm, bool isNode)
{
    double arc = 0;
    if (!m_samples.empty()) {
        const QPointF step = (calm - m_samples.back().calm) * m_zoom;
        arc = m_samples.back().arc + std::hypot(step.x(), step.y());
    }
    // A pointer at rest reports for ever: of what it says there, the last is enough.
    const size_t count = m_samples.size();
    if (count >= 2 && !isNode && !m_samples.back().isNode && arc - m_samples[count - 2].arc < leastPiece) {
        m_samples.pop_back();
    }
    m_samples.push_back({reported, calm, arc, isNode});
}

CourseNode PathSmoother::smoothed(size_t index) const
{
    const Sample &own = m_samples[index];
    const double free = std::min(own.arc, m_samples.back().arc - own.arc);
    const double width = sigma * std::min(1.0, free / kernel);
    CourseNode made = own.reported;
    if (width < leastSigma) {
        return made;
    }
    // Along the straight lines between the reports, however far apart these are.
    QPointF sum;
    double weights = 0;
    const double reach = kernel / sigma * width;
    for (size_t i = 1; i < m_samples.size(); ++i) {
        const Sample &from = m_samples[i - 1];
        const Sample &to = m_samples[i];
        const double length = to.arc - from.arc;
        if (to.arc < own.arc - reach || from.arc > own.arc + reach || !(length > 0)) {
            continue;
        }
        const int pieces = std::min(static_cast<int>(std::ceil(length / longestPiece)), mostPieces);
        for (int piece = 0; piece < pieces; ++piece) {
            const double part = (piece + 0.5) / pieces;
            const double away = from.arc + part * length - own.arc;
            if (std::abs(away) <= reach) {
                const double weight = length / pieces * std::exp(-away * away / (2 * width * width));
                sum += weight *
                       (from.reported.position + part * (to.reported.position - from.reported.position));
                weights += weight;
            }
        }
    }
    if (weights > 0) {
        const QPointF move = sum / weights - own.reported.position;
        const double length = std::hypot(move.x(), move.y()) * m_zoom;
        made.position += move * (length > farthestMove ? farthestMove / length : 1);
    }
    return made;
}

std::vector<CourseNode> PathSmoother::takeFinal()
{
    std::vector<CourseNode> made;
    while (m_nextFinal < m_samples.size() && m_samples[m_nextFinal].arc + kernel <= m_samples.back().arc) {
        if (m_samples[m_nextFinal].isNode) {
            made.push_back(smoothed(m_nextFinal));
        }
        ++m_nextFinal;
    }
    // What is final is forgotten but for what the kernels of the rest still read.
    size_t gone = 0;
    while (gone + 1 < m_nextFinal && m_samples[gone + 1].arc + 2 * kernel < m_samples[m_nextFinal - 1].arc) {
        ++gone;
    }
    m_samples.erase(m_samples.begin(), m_samples.begin() + static_cast<std::ptrdiff_t>(gone));
    m_nextFinal -= gone;
    return made;
}

std::vector<CourseNode> PathSmoother::rest() const
{
    std::vector<CourseNode> made;
    for (size_t i = m_nextFinal; i < m_samples.size(); ++i) {
        if (m_samples[i].isNode) {
            made.push_back(smoothed(i));
        }
    }
    return made;
}

} // namespace tarnovel
