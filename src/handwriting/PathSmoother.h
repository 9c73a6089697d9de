#pragma once

#include <vector>

#include <QPointF>

namespace tarnovel {

/// A place on a stroke's course, with the pen's mark there in reference units.
struct CourseNode {
    QPointF position;
    double radius = 0;
    double flow = 1;
};

/// Takes the steps of whole pixels out of a course that a mouse or a finger reported: a Gaussian along the
/// path, of 3 logical pixels. The start and the newest report stay where they were reported, and nothing is
/// moved by more than one pixel, so that letters keep their corners.
class PathSmoother {
public:
    /// `zoom` is in logical pixels per reference unit.
    explicit PathSmoother(double zoom) : m_zoom(zoom) {}

    /// `calm` is the position without the hand's tremor: the path's length is measured along it. Only a
    /// sample that `isNode` comes back.
    void append(const CourseNode &reported, QPointF calm, bool isNode);

    /// The nodes that nothing to come can change any more; each is given once.
    std::vector<CourseNode> takeFinal();
    /// The nodes behind those, as they look so far.
    std::vector<CourseNode> rest() const;
    /// How many samples are kept: a few hundred at most, however long the pointer rests.
    size_t kept() const { return m_samples.size(); }

private:
    struct Sample {
        CourseNode reported;
        QPointF calm;
        /// Along the calm course, in logical pixels.
        double arc = 0;
        bool isNode = false;
    };

    CourseNode smoothed(size_t index) const;

    double m_zoom;
    /// From one kernel before the first that is not final.
    std::vector<Sample> m_samples;
    size_t m_nextFinal = 0;
};

} // namespace tarnovel
