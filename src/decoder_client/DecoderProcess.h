#pragma once

#include <chrono>
#include <optional>
#include <stop_token>
#include <vector>

#include <QByteArray>
#include <QString>

#include "decoder_protocol/MessageSocket.h"

namespace tarnovel {

/// The decoder's process and the socket to it. It ends with this.
class DecoderProcess {
public:
    /// Starts the program. Throws an ImageError (NoDecoder) when it cannot be started.
    explicit DecoderProcess(const QString &program);
    ~DecoderProcess();
    DecoderProcess(const DecoderProcess &) = delete;
    DecoderProcess &operator=(const DecoderProcess &) = delete;

    /// False when the process has ended.
    bool send(const QByteArray &bytes, const std::vector<int> &descriptors = {});

    enum class Outcome { Message, Ended, Hung, Exhausted, Stopped, TimedOut };
    struct Patience {
        /// How long the decoder's own processor clock may stand still before it counts as hung.
        std::chrono::milliseconds still{10'000};
        /// How long a thread of it may wait for a disk, as while one spins up.
        std::chrono::milliseconds disk{60'000};
        /// How much processor time one request may take: the largest pictures need about a minute.
        std::chrono::milliseconds work{180'000};
        /// How long to wait at all; for ever where none.
        std::optional<std::chrono::milliseconds> wait = {};
    };
    /// Waits for a message, which goes into `bytes`, or for what keeps it from coming.
    Outcome receive(QByteArray &bytes, const Patience &patience, const std::stop_token &stop);

    /// Ends the process without waiting for that.
    void kill() const;
    /// Ends the process, waits, and says how it ended: "exit status 1", "signal 11".
    QByteArray end();

private:
    std::chrono::nanoseconds processorTime() const;
    bool waitsForDisk() const;

    pid_t m_pid = -1;
    OwnedDescriptor m_socket;
    OwnedDescriptor m_process;
};

} // namespace tarnovel
