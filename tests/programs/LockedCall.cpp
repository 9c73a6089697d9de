// Closes the decoder's locks on itself and then tries the call that is named. Ends with 0 where the call was
// refused.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <linux/io_uring.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include "decoding/Lockdown.h"

namespace {

bool isRefused(std::string_view call)
{
    if (call == "open") {
        return open("/etc/passwd", O_RDONLY) < 0;
    }
    if (call == "create") {
        return open("/tmp/tarnovel-locked-call", O_WRONLY | O_CREAT, 0600) < 0;
    }
    if (call == "unlink") {
        return unlink("/tmp/tarnovel-locked-call") < 0 && errno == ENOSYS;
    }
    if (call == "socket") {
        return socket(AF_INET, SOCK_STREAM, 0) < 0;
    }
    if (call == "fork") {
        return fork() < 0;
    }
    if (call == "vfork") {
        return syscall(SYS_vfork) < 0;
    }
    if (call == "execve") {
        char *const none[] = {nullptr};
        return execve("/bin/false", none, none) < 0; // which ends with 1
    }
    if (call == "ptrace") {
        return ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) < 0;
    }
    if (call == "kill") {
        return syscall(SYS_kill, getppid(), 0) < 0;
    }
    if (call == "signal another") {
        return syscall(SYS_tgkill, getppid(), getppid(), 0) < 0;
    }
    if (call == "executable memory") {
        return mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) == MAP_FAILED;
    }
    if (call == "look up a path") {
        struct stat found {};
        return syscall(SYS_newfstatat, AT_FDCWD, "/etc", &found, 0) < 0;
    }
    if (call == "too much memory") {
        return mmap(nullptr, size_t(5) << 30, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) == MAP_FAILED;
    }
    if (call == "more limits") {
        const rlimit wide{RLIM_INFINITY, RLIM_INFINITY};
        return setrlimit(RLIMIT_CORE, &wide) < 0 && errno == ENOSYS;
    }
    if (call == "io_uring") {
        io_uring_params parameters{};
        return syscall(SYS_io_uring_setup, 1, &parameters) < 0;
    }
    if (call == "another process's memory") {
        char byte = 0;
        const iovec here{&byte, 1};
        const iovec there{&byte, 1};
        return syscall(SYS_process_vm_readv, getpid(), &here, 1, &there, 1, 0) < 0;
    }
    return false;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        return 2;
    }
    const QByteArrayList missing = tarnovel::lockDown(tarnovel::Unneeded::Fails);
    if (missing.contains("seccomp")) {
        _exit(3); // without the sanitizer's own end, which the lock is in the way of
    }
    _exit(isRefused(argv[1]) ? 0 : 1);
}
