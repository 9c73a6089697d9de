#include "base/LocalSocket.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace tarnovel {

namespace {

constexpr int mostWaiting = 50;
constexpr size_t readAtOnce = 65536;

struct Address {
    sockaddr_un value = {};
    socklen_t length = 0;

    explicit Address(const QByteArray &name)
    {
        // A name that begins with a zero is the kernel's own.
        const size_t bytes = std::min(static_cast<size_t>(name.size()), sizeof(value.sun_path) - 1);
        value.sun_family = AF_UNIX;
        std::memcpy(value.sun_path + 1, name.constData(), bytes);
        length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + bytes);
    }
    const sockaddr *get() const { return reinterpret_cast<const sockaddr *>(&value); }
};

OwnedDescriptor made()
{
    return OwnedDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

/// What is left of a time to wait.
class Patience {
public:
    explicit Patience(int ms) : m_end(std::chrono::steady_clock::now() + std::chrono::milliseconds(ms)) {}
    int left() const
    {
        using std::chrono::milliseconds;
        const auto rest = std::chrono::duration_cast<milliseconds>(m_end - std::chrono::steady_clock::now());
        return static_cast<int>(std::max<milliseconds::rep>(rest.count(), 0));
    }

private:
    std::chrono::steady_clock::time_point m_end;
};

bool isReady(const OwnedDescriptor &socket, short events, const Patience &patience)
{
    pollfd waiting{socket.get(), events, 0};
    for (;;) {
        const int ready = poll(&waiting, 1, patience.left());
        if (ready >= 0 || errno != EINTR) {
            return ready > 0;
        }
    }
}

} // namespace

OwnedDescriptor listenLocally(const QByteArray &name)
{
    OwnedDescriptor server = made();
    const Address address(name);
    if (bind(server.get(), address.get(), address.length) != 0 || listen(server.get(), mostWaiting) != 0) {
        const int why = errno;
        server = {};
        errno = why;
    }
    return server;
}

OwnedDescriptor acceptedCaller(const OwnedDescriptor &server)
{
    return OwnedDescriptor(accept4(server.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
}

OwnedDescriptor calledLocally(const QByteArray &name, int waitMs)
{
    const Patience patience(waitMs);
    const Address address(name);
    OwnedDescriptor socket = made();
    constexpr int betweenCallsMs = 10;
    while (connect(socket.get(), address.get(), address.length) != 0) {
        // Who listens has more callers than it has taken.
        if ((errno != EAGAIN && errno != EINTR) || patience.left() == 0) {
            return {};
        }
        poll(nullptr, 0, std::min(betweenCallsMs, patience.left()));
    }
    return socket;
}

bool isOwnUser(const OwnedDescriptor &socket)
{
    ucred peer = {};
    socklen_t size = sizeof(peer);
    return getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == getuid();
}

bool sendAll(const OwnedDescriptor &socket, const QByteArray &bytes, int waitMs)
{
    const Patience patience(waitMs);
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t sent = send(socket.get(), bytes.constData() + done,
                                  static_cast<size_t>(bytes.size() - done), MSG_NOSIGNAL);
        if (sent >= 0) {
            done += sent;
        } else if (errno != EINTR && (errno != EAGAIN || !isReady(socket, POLLOUT, patience))) {
            return false;
        }
    }
    return true;
}

std::optional<QByteArray> receivedNow(const OwnedDescriptor &socket)
{
    QByteArray bytes(readAtOnce, Qt::Uninitialized);
    const ssize_t got = recv(socket.get(), bytes.data(), readAtOnce, 0);
    if (got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR)) {
        return std::nullopt;
    }
    bytes.truncate(std::max<ssize_t>(got, 0));
    return bytes;
}

QByteArray receivedWithin(const OwnedDescriptor &socket, int waitMs)
{
    const Patience patience(waitMs);
    return isReady(socket, POLLIN, patience) ? receivedNow(socket).value_or(QByteArray()) : QByteArray();
}

} // namespace tarnovel
