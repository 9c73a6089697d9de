#pragma once

#include <optional>
#include <vector>

#include <QByteArray>

#include "base/OwnedDescriptor.h"

namespace tarnovel {

/// The longest message of a socket, in bytes.
constexpr qsizetype longestMessage = 64 << 10;

/// Sends one message of a sequenced-packet socket, and copies of open descriptors beside it. False when the
/// other end has gone.
bool sendMessage(int socket, const QByteArray &bytes, const std::vector<int> &descriptors = {});

struct ReceivedMessage {
    QByteArray bytes;
    std::vector<OwnedDescriptor> descriptors;
};

enum class Receiving {
    Message,
    /// The socket's own time to wait is over.
    Nothing,
    /// The other end has gone, or the message does not fit into what a message may be.
    Ended,
};

/// Waits for the next message. At most `mostDescriptors` come with it; any other is closed.
Receiving receiveMessage(int socket, ReceivedMessage &message, size_t mostDescriptors = 0);

} // namespace tarnovel
