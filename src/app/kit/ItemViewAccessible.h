#pragma once

namespace tarnovel::app {

/// Lets screen readers see the items of an ItemView widget. May be called again.
void installItemViewAccessible();

} // namespace tarnovel::app
