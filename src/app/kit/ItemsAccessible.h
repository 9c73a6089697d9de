#pragma once

namespace tarnovel::app {

/// Lets screen readers see the items of an Items widget. May be called again.
void installItemsAccessible();

} // namespace tarnovel::app
