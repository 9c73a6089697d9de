#pragma once

#include <QEasingCurve>

/// How things move. Lengths of time are in milliseconds.
namespace tarnovel::app::Motion {

/// The user has asked the desktop for less motion: things fade instead, or change at once.
bool reduced();
/// What the desktop says; until then the widget style's word holds.
void setReduced(bool reduced);

/// A change of layout.
constexpr int relayoutMs = 220;
/// A fade in the place of motion.
constexpr int reducedMs = 120;
/// A spring with damping 1 comes to rest within about twice its response.
constexpr int springMs = 480;
/// A critically damped spring with a response of 0.24 s, over `springMs`.
QEasingCurve spring();

} // namespace tarnovel::app::Motion
