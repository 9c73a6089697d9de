#pragma once

#include <algorithm>
#include <cmath>

namespace tarnovel {

/// `value` held to at most `high`, then to at least `low`: the lower bound wins when the two cross, where
/// std::clamp is undefined.
inline double held(double value, double low, double high)
{
    return std::max(std::min(value, high), low);
}

} // namespace tarnovel
