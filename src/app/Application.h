#pragma once

namespace tarnovel::app {

/// Opens the editor with the photos of the arguments, and returns the exit status when its window is closed.
int runEditor(int argc, char **argv);

} // namespace tarnovel::app
