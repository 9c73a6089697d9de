#include "decoding/Lockdown.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tarnovel {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Sanitizers take terabytes of addresses, and read files of their own when they report.
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

// 24 megapixels need 1.2 GB of addresses, the largest picture that is decoded as a whole about 3.
constexpr rlim_t mostAddresses = rlim_t(4) << 30;
constexpr rlim_t mostDescriptors = 32;

bool limit(__rlimit_resource what, rlim_t most)
{
    const rlimit both{most, most};
    return setrlimit(what, &both) == 0;
}

/// No file may be opened or changed by its path, by this thread and those that it starts: the decoding
/// thread. For those that the libraries have started, the filter of calls says the same. The kernel has this
/// from 5.13 on, and may have it turned off.
bool closeFileSystem()
{
    landlock_ruleset_attr rules{};
    rules.handled_access_fs =
        LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_READ_FILE |
        LANDLOCK_ACCESS_FS_READ_DIR | LANDLOCK_ACCESS_FS_REMOVE_DIR | LANDLOCK_ACCESS_FS_REMOVE_FILE |
        LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR | LANDLOCK_ACCESS_FS_MAKE_REG |
        LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
        LANDLOCK_ACCESS_FS_MAKE_SYM;
    const auto ruleset = static_cast<int>(syscall(SYS_landlock_create_ruleset, &rules, sizeof(rules), 0));
    if (ruleset < 0) {
        return false;
    }
    const bool restricted = syscall(SYS_landlock_restrict_self, ruleset, 0) == 0;
    close(ruleset);
    return restricted;
}

/// What the process was started with is the program's own.
bool dropStandardStreams()
{
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    const bool dropped = null >= 0 && dup2(null, STDIN_FILENO) >= 0 && dup2(null, STDOUT_FILENO) >= 0 &&
                         dup2(null, STDERR_FILENO) >= 0;
    if (null > STDERR_FILENO) {
        close(null);
    }
    return dropped;
}

/// The calls that decoding makes, over all formats.
class Filter {
public:
    explicit Filter(Unneeded unneeded)
        : m_context(
              seccomp_init(unneeded == Unneeded::Kills ? SCMP_ACT_KILL_PROCESS : SCMP_ACT_ERRNO(ENOSYS)))
    {
    }
    ~Filter() { seccomp_release(m_context); }
    Filter(const Filter &) = delete;
    Filter &operator=(const Filter &) = delete;

    bool load()
    {
        if (m_context == nullptr) {
            return false;
        }
        allowPlain();
        allowByArgument();
        killEscapes();
        seccomp_attr_set(m_context, SCMP_FLTATR_CTL_TSYNC, 1);
        return m_built && seccomp_load(m_context) == 0;
    }

private:
    template<typename... Conditions>
    void rule(uint32_t action, int call, Conditions... conditions)
    {
        const std::array<scmp_arg_cmp, sizeof...(conditions)> all{conditions...};
        const int failed = seccomp_rule_add_array(m_context, action, call, sizeof...(conditions), all.data());
        // A call that this processor's kernel does not have needs no rule.
        m_built = m_built && (failed == 0 || failed == -EDOM);
    }

    void allowPlain()
    {
        for (const int call : {SCMP_SYS(futex),          SCMP_SYS(read),
                               SCMP_SYS(pread64),        SCMP_SYS(lseek),
                               SCMP_SYS(munmap),         SCMP_SYS(madvise),
                               SCMP_SYS(mremap),         SCMP_SYS(brk),
                               SCMP_SYS(getrusage),      SCMP_SYS(close),
                               SCMP_SYS(fstat),          SCMP_SYS(sendmsg),
                               SCMP_SYS(recvmsg),        SCMP_SYS(rt_sigprocmask),
                               SCMP_SYS(rt_sigreturn),   SCMP_SYS(dup),
                               SCMP_SYS(rseq),           SCMP_SYS(set_robust_list),
                               SCMP_SYS(exit),           SCMP_SYS(exit_group),
                               SCMP_SYS(eventfd2),       SCMP_SYS(sched_getaffinity),
                               SCMP_SYS(sched_yield),    SCMP_SYS(sysinfo),
                               SCMP_SYS(clock_gettime),  SCMP_SYS(clock_nanosleep),
                               SCMP_SYS(gettimeofday),   SCMP_SYS(getrandom),
                               SCMP_SYS(getpid),         SCMP_SYS(gettid),
                               SCMP_SYS(restart_syscall)}) {
            rule(SCMP_ACT_ALLOW, call);
        }
    }

    void allowByArgument()
    {
        const auto equals = [](unsigned argument, scmp_datum_t value) {
            return scmp_arg_cmp{argument, SCMP_CMP_EQ, value, 0};
        };
        const auto hasBits = [](unsigned argument, scmp_datum_t mask, scmp_datum_t value) {
            return scmp_arg_cmp{argument, SCMP_CMP_MASKED_EQ, mask, value};
        };
        // Memory that can be run as a program is what an intruder wants.
        rule(SCMP_ACT_ALLOW, SCMP_SYS(mmap), hasBits(2, PROT_EXEC, 0));
        rule(SCMP_ACT_ALLOW, SCMP_SYS(mprotect), hasBits(2, PROT_EXEC, 0));
        // Meant for descriptors. The filter cannot see a path beside the flag, which would tell at most that
        // a file is there.
        rule(SCMP_ACT_ALLOW, SCMP_SYS(newfstatat), hasBits(3, AT_EMPTY_PATH, AT_EMPTY_PATH));
        for (const int command : {F_GETFD, F_SETFD, F_GETFL, F_DUPFD_CLOEXEC}) {
            rule(SCMP_ACT_ALLOW, SCMP_SYS(fcntl), equals(1, static_cast<scmp_datum_t>(command)));
        }
        // The allocator asks how the system overcommits, and does without an answer.
        rule(SCMP_ACT_ERRNO(EACCES), SCMP_SYS(openat));
        // Threads, but no processes.
        rule(SCMP_ACT_ALLOW, SCMP_SYS(clone), hasBits(0, CLONE_THREAD | CLONE_VM, CLONE_THREAD | CLONE_VM));
        // Its flags cannot be seen; the C library then takes the other one.
        if (isUnneededKilling()) {
            rule(SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3));
        }
        rule(SCMP_ACT_ALLOW, SCMP_SYS(prctl), equals(0, PR_SET_NAME));
        rule(SCMP_ACT_ALLOW, SCMP_SYS(tgkill), equals(0, static_cast<scmp_datum_t>(getpid())));
    }

    bool isUnneededKilling() const
    {
        uint32_t action = 0;
        return seccomp_attr_get(m_context, SCMP_FLTATR_ACT_DEFAULT, &action) == 0 &&
               action == SCMP_ACT_KILL_PROCESS;
    }

    /// Nothing that decodes a picture does any of these.
    void killEscapes()
    {
        for (const int call :
             {SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(ptrace), SCMP_SYS(socket), SCMP_SYS(connect),
              SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(bpf), SCMP_SYS(io_uring_setup),
              SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev)}) {
            if (!isUnneededKilling()) {
                rule(SCMP_ACT_KILL_PROCESS, call);
            }
        }
    }

    scmp_filter_ctx m_context;
    bool m_built = true;
};

} // namespace

QByteArrayList lockDown(Unneeded unneeded)
{
    QByteArrayList missing;
    const auto lock = [&missing](bool held, const char *name) {
        if (!held) {
            missing.append(name);
        }
    };
    lock(limit(RLIMIT_CORE, 0) && limit(RLIMIT_NOFILE, mostDescriptors), "limits");
    lock(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0, "no new privileges");
    lock(prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0, "no memory dumps");
    lock(isSanitized || dropStandardStreams(), "standard streams");
    lock(closeFileSystem(), "Landlock");
    if constexpr (isSanitized) {
        return missing << "memory limit"
                       << "seccomp";
    }
    lock(limit(RLIMIT_AS, mostAddresses), "memory limit");
    lock(Filter(unneeded).load(), "seccomp");
    return missing;
}

} // namespace tarnovel
