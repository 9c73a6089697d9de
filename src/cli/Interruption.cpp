#include "cli/Interruption.h"

#include <csignal>
#include <ctime>
#include <pthread.h>

namespace tarnovel::cli {

namespace {

sigset_t endingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGHUP);
    return signals;
}

} // namespace

Interruption::Interruption()
{
    const sigset_t signals = endingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    // A reader that goes away shows as a failed write, not as our sudden end.
    std::signal(SIGPIPE, SIG_IGN);
    // The same for a file that grows past what the user's limits allow.
    std::signal(SIGXFSZ, SIG_IGN);
    m_listener = std::jthread([this, signals](const std::stop_token &over) {
        constexpr timespec pause = {0, 50'000'000};
        while (!over.stop_requested()) {
            const int signal = sigtimedwait(&signals, nullptr, &pause);
            if (signal > 0) {
                m_signal = signal;
                m_source.request_stop();
            }
        }
    });
}

Interruption::~Interruption()
{
    m_listener.request_stop();
    m_listener.join();
}

int Interruption::exitStatus() const
{
    return m_signal == 0 ? 0 : 128 + m_signal;
}

} // namespace tarnovel::cli
