#include "cli/Interruption.h"

#include <csignal>
#include <pthread.h>

namespace tarnovel::cli {

namespace {

/// Without those that whoever started the program has it ignore, as `nohup` does.
sigset_t endingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction inherited = {};
        if (sigaction(signal, nullptr, &inherited) != 0 || inherited.sa_handler != SIG_IGN) {
            sigaddset(&signals, signal);
        }
    }
    return signals;
}

/// Wakes the listener at the end of the command; no one else sends it.
int wakeSignal()
{
    return SIGRTMIN;
}

} // namespace

Interruption::Interruption()
{
    sigset_t signals = endingSignals();
    sigaddset(&signals, wakeSignal());
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    ignoreBrokenWrites();
    m_listener = std::jthread([this, signals](const std::stop_token &over) {
        while (!over.stop_requested()) {
            const int signal = sigwaitinfo(&signals, nullptr);
            if (signal > 0 && signal != wakeSignal()) {
                m_signal = signal;
                m_source.request_stop();
            }
        }
    });
}

void Interruption::ignoreBrokenWrites()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

Interruption::~Interruption()
{
    m_listener.request_stop();
    pthread_kill(m_listener.native_handle(), wakeSignal());
    m_listener.join();
}

int Interruption::exitStatus() const
{
    return m_signal == 0 ? 0 : 128 + m_signal;
}

} // namespace tarnovel::cli
