#pragma once

#include <QByteArrayList>

namespace tarnovel {

/// What happens at a call of the kernel that the decoder has no need of.
enum class Unneeded {
    /// It fails as one that does not exist: friendlier when a library changes.
    Fails,
    /// It ends the process: for tests, which find out so what a library needs.
    Kills,
};

/// Takes from this process what a decoder has no need of: files, network, other programs, new privileges,
/// memory beyond 4 GB and core dumps. All that the libraries open must have been opened before. Returns which
/// of the locks the kernel does not have.
QByteArrayList lockDown(Unneeded unneeded);

} // namespace tarnovel
