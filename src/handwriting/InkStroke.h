#pragma once

#include <optional>

#include <QList>
#include <QPointF>

#include "model/FrameSettings.h"

namespace tarnovel {

/// What draws a stroke.
enum class InkPen {
    /// Monoline: an even width with round ends.
    signature,
    /// A broad nib held at an angle: pressure (or slowness) widens it, a flick tapers it.
    fountain,
    /// Graphite on paper grain.
    pencil,
    /// A broad tip that lays one even, translucent layer a stroke.
    marker,
};

/// One report of the pointer.
struct InkSample {
    /// In reference coordinates.
    QPointF position;
    /// Time since any fixed moment. Repeated or falling times count as an ordinary device's interval.
    double seconds = 0;
    /// 0…1; none, or not finite, for a device that has no such sense.
    std::optional<double> pressure = {};
    /// Lean of the pen from upright along x and y, in degrees.
    QPointF tilt = {};
    bool operator==(const InkSample &) const = default;
};

/// One stroke as it came from the pointer; all that is drawn is derived from it.
struct InkStroke {
    InkPen pen = InkPen::signature;
    Ink color = softBlack;
    /// In reference units.
    double width = 6;
    /// Logical pixels on the screen per reference unit while it was written: the hand trembles and hurries in
    /// those.
    double zoom = 1;
    QList<InkSample> samples = {};
    bool operator==(const InkStroke &) const = default;
};

/// Across the mark that a pen at ordinary pressure leaves, in reference units.
double tipDiameter(InkPen pen, double width);

} // namespace tarnovel
