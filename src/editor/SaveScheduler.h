#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include <QObject>

#include "base/Worker.h"
#include "editor/Clock.h"
#include "model/SessionWriter.h"

namespace tarnovel {

/// Saves the session after a moment of quiet, on a thread of its own; each later request takes the place of
/// one that still waits.
class SaveScheduler : public QObject {
    Q_OBJECT

public:
    enum class Moment { AfterAPause, AtOnce };

    /// `finished` hears of each save that no later one has overtaken, on the thread of this object.
    SaveScheduler(SessionWriter &writer, Clock &clock, std::function<void(bool saved)> finished);
    /// Waits for a save that is being written; one that still waits for its pause is written now.
    ~SaveScheduler() override;

    void schedule(const Session &session, Moment moment);

    /// Writes what still waits, tries once more what could not be saved, and returns when that is done: false
    /// when the latest state is not on the disk.
    bool flush();
    /// The latest finished save failed.
    bool failed() const { return m_failed; }

private:
    void write();

    SessionWriter &m_writer;
    Clock &m_clock;
    std::function<void(bool)> m_finished;
    qint64 m_revision = 0;
    Session m_latest;
    /// Set on the writing thread.
    std::atomic<bool> m_failed = false;
    std::unique_ptr<PendingCall> m_pause;
    Worker m_worker;
};

} // namespace tarnovel
