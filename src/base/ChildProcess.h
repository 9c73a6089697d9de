#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "base/MessageSocket.h"

namespace tarnovel {

/// A process that works for this one, and the socket to it, which it finds as its descriptor
/// `ChildProcess::socketOfChild`. It ends with this.
class ChildProcess {
public:
    /// Null when the program cannot be started.
    static std::unique_ptr<ChildProcess> started(const QString &program, const QStringList &arguments = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    static constexpr int socketOfChild = 3;

    /// False when the process has ended.
    bool send(const QByteArray &bytes, const std::vector<int> &descriptors = {});

    enum class Outcome { Message, Ended, Hung, Exhausted, Stopped, TimedOut };
    struct Patience {
        /// How long the process's own processor clock, and those of the processes that it has started, may
        /// stand still before it counts as hung.
        std::chrono::milliseconds still{10'000};
        /// How long a thread of it may wait for a disk, as while one spins up.
        std::chrono::milliseconds disk{60'000};
        /// How much processor time one request may take: decoding the largest pictures needs about a
        /// minute.
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
    ChildProcess(pid_t pid, OwnedDescriptor socket);

    pid_t m_pid;
    OwnedDescriptor m_socket;
    OwnedDescriptor m_process;
};

} // namespace tarnovel
