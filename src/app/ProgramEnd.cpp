#include "app/ProgramEnd.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <utility>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QSessionManager>

#include "base/Log.h"

namespace tarnovel::app {

namespace {

constexpr std::array endingSignals = {SIGTERM, SIGHUP, SIGINT};

std::array<int, 2> signalPipe = {-1, -1};

/// What is still to be saved when the program is left by `exit`, as Qt leaves it when the display has gone.
std::function<void(bool)> lastSave;

void noteSignal(int signal)
{
    const auto number = static_cast<char>(signal);
    // A full pipe holds enough signals already.
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &number, 1);
}

} // namespace

ProgramEnd::ProgramEnd(std::function<void(bool certain)> save) : m_save(std::move(save))
{
    static const bool registered = std::atexit([] {
                                       if (lastSave) {
                                           std::exchange(lastSave, nullptr)(true);
                                       }
                                   }) == 0;
    if (!registered || pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        qCWarning(logApp) << "ends of the program cannot be watched";
        return;
    }
    lastSave = m_save;
    m_notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &ProgramEnd::signalled);
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : endingSignals) {
        struct sigaction inherited = {};
        sigaction(signal, &action, &inherited);
        // Whoever started the program may have it ignore a signal, as `nohup` does.
        if (inherited.sa_handler == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
    // Where a file may not grow on, or nobody reads, the write that fails says so.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager &) { m_save(false); },
        Qt::DirectConnection);
}

ProgramEnd::~ProgramEnd()
{
    lastSave = nullptr;
    for (const int signal : endingSignals) {
        std::signal(signal, SIG_DFL);
    }
    m_notifier.reset();
    for (int &end : signalPipe) {
        if (end >= 0) {
            close(std::exchange(end, -1));
        }
    }
}

void ProgramEnd::signalled()
{
    char number = 0;
    if (read(signalPipe[0], &number, 1) != 1) {
        return;
    }
    qCInfo(logApp) << "ended by signal" << static_cast<int>(number);
    m_save(true);
    // As shells report a program that a signal ended.
    QCoreApplication::exit(128 + number);
}

} // namespace tarnovel::app
