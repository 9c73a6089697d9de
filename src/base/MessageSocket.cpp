#include "base/MessageSocket.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>

namespace tarnovel {

namespace {

constexpr size_t mostSent = 2;
constexpr size_t controlBytes = CMSG_SPACE(mostSent * sizeof(int));

std::vector<OwnedDescriptor> descriptorsOf(msghdr &header)
{
    std::vector<OwnedDescriptor> found;
    for (cmsghdr *part = CMSG_FIRSTHDR(&header); part != nullptr; part = CMSG_NXTHDR(&header, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) {
            continue;
        }
        const size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
        for (size_t i = 0; i < count; ++i) {
            int descriptor = -1;
            std::memcpy(&descriptor, CMSG_DATA(part) + i * sizeof(int), sizeof(int));
            found.emplace_back(descriptor);
        }
    }
    return found;
}

} // namespace

bool sendMessage(int socket, const QByteArray &bytes, const std::vector<int> &descriptors)
{
    iovec content{const_cast<char *>(bytes.constData()), static_cast<size_t>(bytes.size())};
    msghdr header{};
    header.msg_iov = &content;
    header.msg_iovlen = 1;
    alignas(cmsghdr) char control[controlBytes] = {};
    if (!descriptors.empty()) {
        const size_t length = std::min(descriptors.size(), mostSent) * sizeof(int);
        header.msg_control = control;
        header.msg_controllen = CMSG_SPACE(length);
        cmsghdr *part = CMSG_FIRSTHDR(&header);
        part->cmsg_level = SOL_SOCKET;
        part->cmsg_type = SCM_RIGHTS;
        part->cmsg_len = CMSG_LEN(length);
        std::memcpy(CMSG_DATA(part), descriptors.data(), length);
    }
    ssize_t sent = -1;
    do {
        sent = sendmsg(socket, &header, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == bytes.size();
}

Receiving receiveMessage(int socket, ReceivedMessage &message, size_t mostDescriptors)
{
    QByteArray bytes(longestMessage, Qt::Uninitialized);
    iovec content{bytes.data(), static_cast<size_t>(bytes.size())};
    msghdr header{};
    header.msg_iov = &content;
    header.msg_iovlen = 1;
    alignas(cmsghdr) char control[controlBytes] = {};
    if (mostDescriptors > 0) {
        header.msg_control = control;
        header.msg_controllen = CMSG_SPACE(std::min(mostDescriptors, mostSent) * sizeof(int));
    }
    ssize_t got = -1;
    do {
        got = recvmsg(socket, &header, MSG_CMSG_CLOEXEC);
    } while (got < 0 && errno == EINTR);
    if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
        return Receiving::Nothing;
    }
    if (got <= 0 || (header.msg_flags & MSG_TRUNC) != 0) {
        return Receiving::Ended;
    }
    bytes.truncate(got);
    message.bytes = bytes;
    message.descriptors = descriptorsOf(header);
    return Receiving::Message;
}

} // namespace tarnovel
