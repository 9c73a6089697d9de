#include "base/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <utility>

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArrayList>
#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;
using std::chrono::steady_clock;

constexpr milliseconds lookEvery{250};
/// What a process that does nothing may use by the way.
constexpr milliseconds leastMovement{1};
/// What a new process takes over from this one, and what not.
class SpawnPlan {
public:
    explicit SpawnPlan(int socket)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, socket, ChildProcess::socketOfChild);
        posix_spawnattr_init(&m_attributes);
        // A session of its own: Ctrl-C in the terminal is for the program, which ends its children.
        posix_spawnattr_setflags(&m_attributes,
                                 POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
    }
    ~SpawnPlan()
    {
        posix_spawnattr_destroy(&m_attributes);
        posix_spawn_file_actions_destroy(&m_actions);
    }
    SpawnPlan(const SpawnPlan &) = delete;
    SpawnPlan &operator=(const SpawnPlan &) = delete;

    pid_t start(const QString &program, const QStringList &arguments) const
    {
        const QByteArray path = QFile::encodeName(program);
        QByteArrayList encoded = {path};
        for (const QString &argument : arguments) {
            encoded.append(QFile::encodeName(argument));
        }
        std::vector<char *> pointers;
        for (QByteArray &argument : encoded) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        pid_t pid = -1;
        const int failed =
            posix_spawn(&pid, path.constData(), &m_actions, &m_attributes, pointers.data(), environ);
        return failed == 0 ? pid : -1;
    }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

QList<pid_t> childrenOf(pid_t process)
{
    QList<pid_t> found;
    const QDir tasks(u"/proc/%1/task"_s.arg(process));
    for (const QString &thread : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile children(tasks.filePath(thread + u"/children"_s));
        if (children.open(QIODevice::ReadOnly)) {
            for (const QByteArray &child : children.readAll().simplified().split(' ')) {
                if (const pid_t pid = child.toInt(); pid > 0) {
                    found.append(pid);
                }
            }
        }
    }
    return found;
}

nanoseconds processorTime(pid_t process)
{
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
        return {};
    }
    return std::chrono::seconds(time.tv_sec) + nanoseconds(time.tv_nsec);
}

nanoseconds processorTimeOfAll(pid_t process)
{
    nanoseconds sum = processorTime(process);
    for (const pid_t child : childrenOf(process)) {
        sum += processorTime(child);
    }
    return sum;
}

bool waitsForDisk(pid_t process)
{
    const QDir tasks(u"/proc/%1/task"_s.arg(process));
    const QStringList threads = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return std::ranges::any_of(threads, [&tasks](const QString &thread) {
        QFile stat(tasks.filePath(thread + u"/stat"_s));
        // The state stands behind the name, which is in parentheses.
        return stat.open(QIODevice::ReadOnly) && stat.readAll().contains(") D ");
    });
}

bool anyWaitsForDisk(pid_t process)
{
    return waitsForDisk(process) || std::ranges::any_of(childrenOf(process), waitsForDisk);
}

} // namespace

std::unique_ptr<ChildProcess> ChildProcess::started(const QString &program, const QStringList &arguments)
{
    std::array<int, 2> ends = {-1, -1};
    if (program.isEmpty() || socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return nullptr;
    }
    OwnedDescriptor socket(ends[0]);
    const OwnedDescriptor other(ends[1]);
    const pid_t pid = SpawnPlan(other.get()).start(program, arguments);
    return pid < 0 ? nullptr : std::unique_ptr<ChildProcess>(new ChildProcess(pid, std::move(socket)));
}

ChildProcess::ChildProcess(pid_t pid, OwnedDescriptor socket)
    : m_pid(pid),
      m_socket(std::move(socket)),
      m_process(OwnedDescriptor(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))))
{
}

ChildProcess::~ChildProcess()
{
    end();
}

void ChildProcess::kill() const
{
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
    }
}

QByteArray ChildProcess::end()
{
    if (m_pid < 0) {
        return {};
    }
    siginfo_t ended{};
    // What has ended by itself keeps its own status.
    if (waitid(P_PID, static_cast<id_t>(m_pid), &ended, WEXITED | WNOHANG | WNOWAIT) != 0 ||
        ended.si_pid == 0) {
        ::kill(m_pid, SIGKILL);
    }
    while (waitid(P_PID, static_cast<id_t>(m_pid), &ended, WEXITED) != 0 && errno == EINTR) {
    }
    m_pid = -1;
    const char *what = ended.si_code == CLD_EXITED ? "exit status " : "signal ";
    return what + QByteArray::number(ended.si_status);
}

bool ChildProcess::send(const QByteArray &bytes, const std::vector<int> &descriptors)
{
    return sendMessage(m_socket.get(), bytes, descriptors);
}

ChildProcess::Outcome ChildProcess::receive(QByteArray &bytes, const Patience &patience,
                                            const std::stop_token &stop)
{
    const OwnedDescriptor bell(stop.stop_possible() ? eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK) : -1);
    const std::stop_callback ring(stop, [&bell] { eventfd_write(bell.get(), 1); });
    // A process that has gone may have left a copy of its end of the socket behind.
    std::array<pollfd, 3> watched{pollfd{m_socket.get(), POLLIN, 0}, pollfd{m_process.get(), POLLIN, 0},
                                  pollfd{bell.get(), POLLIN, 0}};
    const steady_clock::time_point began = steady_clock::now();
    const nanoseconds before = processorTimeOfAll(m_pid);
    nanoseconds last = before;
    steady_clock::time_point moved = began;
    for (;;) {
        const auto left = patience.wait ? *patience.wait - (steady_clock::now() - began) : nanoseconds::max();
        const auto pause = std::clamp<nanoseconds>(left, milliseconds(1), lookEvery);
        const int events = poll(watched.data(), watched.size(),
                                static_cast<int>(std::chrono::ceil<milliseconds>(pause).count()));
        if (events < 0 && errno != EINTR) {
            return Outcome::Ended;
        }
        if (events > 0 && watched[0].revents != 0) {
            ReceivedMessage message;
            const bool whole = receiveMessage(m_socket.get(), message) == Receiving::Message;
            bytes = message.bytes;
            return whole ? Outcome::Message : Outcome::Ended;
        }
        if (events > 0 && watched[1].revents != 0) {
            return Outcome::Ended;
        }
        if (stop.stop_requested()) {
            return Outcome::Stopped;
        }
        const steady_clock::time_point now = steady_clock::now();
        const nanoseconds used = processorTimeOfAll(m_pid);
        if (std::chrono::abs(used - last) >= leastMovement) {
            last = used;
            moved = now;
        }
        if (now - moved > patience.still && (now - moved > patience.disk || !anyWaitsForDisk(m_pid))) {
            return Outcome::Hung;
        }
        if (used - before > patience.work) {
            return Outcome::Exhausted;
        }
        if (patience.wait && now - began > *patience.wait) {
            return Outcome::TimedOut;
        }
    }
}

} // namespace tarnovel
