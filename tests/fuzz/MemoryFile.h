#pragma once

#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

#include <QString>

namespace tarnovel::fuzz {

/// A file without a name that holds these bytes: readers take paths, and the disk is too slow for millions of
/// them.
class MemoryFile {
public:
    MemoryFile(const uint8_t *bytes, size_t count) : m_descriptor(memfd_create("fuzz", MFD_CLOEXEC))
    {
        if (m_descriptor < 0 || write(m_descriptor, bytes, count) != static_cast<ssize_t>(count)) {
            std::abort();
        }
    }
    ~MemoryFile() { close(m_descriptor); }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor); }

private:
    int m_descriptor;
};

} // namespace tarnovel::fuzz
