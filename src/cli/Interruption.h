#pragma once

#include <atomic>
#include <stop_token>
#include <thread>

namespace tarnovel::cli {

/// Turns Ctrl-C and a polite request to end into a stop request, so that the work at hand can end cleanly.
/// Made before any other thread, since it decides where those signals go.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption &) = delete;
    Interruption &operator=(const Interruption &) = delete;

    /// A reader that goes away, and a file that grows past what the user's limits allow, show as failed
    /// writes, not as a sudden end.
    static void ignoreBrokenWrites();

    std::stop_token token() const { return m_source.get_token(); }
    /// 128 and the number of the signal that came, as shells report it; 0 when none did.
    int exitStatus() const;

private:
    std::stop_source m_source;
    std::atomic<int> m_signal = 0;
    std::jthread m_listener;
};

} // namespace tarnovel::cli
