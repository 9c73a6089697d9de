#pragma once

#include <optional>

#include "handwriting/InkStroke.h"

namespace tarnovel {

/// One sample after smoothing.
struct SmoothSample {
    QPointF position;
    /// How heavily the pen is pressed, 0…1: the smoothed pressure, or what the speed suggests where the
    /// device knows no pressure. A slow pen is a heavy one.
    double force = 0.5;
    /// Logical pixels a second.
    double speed = 0;
    /// From upright, 0…1 for 0…90 degrees.
    double lean = 0;
};

/// Takes the tremor out of a slow hand and leaves a fast one alone: a low-pass whose cut-off rises with the
/// speed (the "1 € filter" of Casiez, Roussel and Vogel, 2012).
class StrokeSmoother {
public:
    /// `zoom` is in logical pixels per reference unit.
    explicit StrokeSmoother(double zoom) : m_zoom(zoom) {}

    SmoothSample next(const InkSample &sample);

private:
    void follow(const InkSample &sample, double interval);

    double m_zoom;
    std::optional<InkSample> m_last;
    SmoothSample m_state;
    QPointF m_velocity;
};

} // namespace tarnovel
