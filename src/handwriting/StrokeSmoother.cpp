#include "handwriting/StrokeSmoother.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarnovel {

namespace {

/// Cut-off of a resting hand, and how much it rises with each logical pixel a second. At 500 px/s the path is
/// then about 5 ms behind the pointer.
constexpr double restingCutOffHz = 5;
constexpr double cutOffPerSpeed = 0.05;
constexpr double velocityCutOffHz = 20;

/// The interval of an ordinary mouse, for reports whose times say nothing.
constexpr double usualInterval = 1.0 / 125;
/// A pen that stopped for longer has been where it is long enough.
constexpr double longestInterval = 0.1;

/// Time constants in which the ink answers the hand, in seconds.
constexpr double speedResponse = 0.035;
constexpr double pressureResponse = 0.012;

/// The speed, in logical pixels a second, at which a pen without pressure is half as heavy as at rest.
constexpr double easySpeed = 900;

double cutOffWeight(double cutOffHz, double interval)
{
    const double response = 1 / (2 * std::numbers::pi * cutOffHz);
    return 1 / (1 + response / interval);
}

double responseWeight(double response, double interval)
{
    return 1 - std::exp(-interval / response);
}

double leanOf(QPointF tilt)
{
    return std::clamp(std::hypot(tilt.x(), tilt.y()) / 90, 0.0, 1.0);
}

} // namespace

SmoothSample StrokeSmoother::next(const InkSample &sample)
{
    if (!m_last) {
        m_state = {sample.position, std::clamp(sample.pressure.value_or(0.6), 0.0, 1.0), 0,
                   leanOf(sample.tilt)};
    } else {
        const double passed = sample.seconds - m_last->seconds;
        follow(sample, passed > 0 ? std::min(passed, longestInterval) : usualInterval);
    }
    m_last = sample;
    return m_state;
}

void StrokeSmoother::follow(const InkSample &sample, double interval)
{
    const QPointF step = (sample.position - m_last->position) * m_zoom;
    m_velocity += (step / interval - m_velocity) * cutOffWeight(velocityCutOffHz, interval);
    const double cutOff = restingCutOffHz + cutOffPerSpeed * std::hypot(m_velocity.x(), m_velocity.y());
    m_state.position += (sample.position - m_state.position) * cutOffWeight(cutOff, interval);

    const double speed = std::hypot(step.x(), step.y()) / interval;
    m_state.speed += (speed - m_state.speed) * responseWeight(speedResponse, interval);
    if (sample.pressure) {
        m_state.force += (std::clamp(*sample.pressure, 0.0, 1.0) - m_state.force) *
                         responseWeight(pressureResponse, interval);
    } else {
        const double force = 1 / (1 + m_state.speed / easySpeed);
        m_state.force += (force - m_state.force) * responseWeight(speedResponse, interval);
    }
    m_state.lean += (leanOf(sample.tilt) - m_state.lean) * responseWeight(speedResponse, interval);
}

} // namespace tarnovel
