#pragma once

#include <utility>

#include <unistd.h>

namespace tarnovel {

/// A descriptor that is closed with this.
class OwnedDescriptor {
public:
    OwnedDescriptor() = default;
    explicit OwnedDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~OwnedDescriptor()
    {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }
    OwnedDescriptor(OwnedDescriptor &&other) noexcept : m_descriptor(other.release()) {}
    OwnedDescriptor &operator=(OwnedDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }
    /// Gives the descriptor up.
    int release() { return std::exchange(m_descriptor, -1); }

private:
    int m_descriptor = -1;
};

} // namespace tarnovel
