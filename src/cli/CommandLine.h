#pragma once

namespace tarnovel::cli {

/// Whether the arguments ask for a headless command. Nothing, and names of files, ask for the editor; a bare
/// word that is neither is a command gone wrong.
bool isCommand(int argc, char **argv);

/// Runs a headless command and returns the exit status: 0 all done, 1 something failed, 2 wrong usage, 128
/// and the signal's number after an interruption. It needs no display and changes neither library nor
/// preferences.
int runCommandLine(int argc, char **argv);

} // namespace tarnovel::cli
