#pragma once

namespace tarnovel {

/// Gives this process the library that reads all formats.
void useCodecs();

} // namespace tarnovel
