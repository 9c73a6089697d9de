#pragma once

namespace tarnovel {

/// Lets screen readers see the items of an Items widget. May be called again.
void installItemsAccessible();

} // namespace tarnovel
