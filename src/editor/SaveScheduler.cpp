#include "editor/SaveScheduler.h"

#include <utility>

namespace tarnovel {

namespace {

constexpr std::chrono::milliseconds quiet(350);

} // namespace

SaveScheduler::SaveScheduler(SessionWriter &writer, Clock &clock, std::function<void(bool)> finished)
    : m_writer(writer), m_clock(clock), m_finished(std::move(finished)), m_revision(writer.latestRevision())
{
    m_thread.setMaxThreadCount(1);
}

SaveScheduler::~SaveScheduler()
{
    flush();
}

void SaveScheduler::schedule(const Session &session, Moment moment)
{
    m_pause.reset();
    ++m_revision;
    m_waiting = session;
    if (moment == Moment::AtOnce) {
        write();
    } else {
        m_pause = m_clock.after(quiet, [this] { write(); });
    }
}

void SaveScheduler::flush()
{
    if (m_pause) {
        write();
    }
    m_thread.waitForDone();
}

void SaveScheduler::write()
{
    // The pause may be what called: it must not be destroyed while it does.
    const std::shared_ptr<PendingCall> over = std::move(m_pause);
    QMetaObject::invokeMethod(
        this, [over] {}, Qt::QueuedConnection);
    m_thread.start([this, session = std::exchange(m_waiting, {}), revision = m_revision] {
        const bool saved = m_writer.save(session, revision);
        QMetaObject::invokeMethod(
            this,
            [this, saved, revision] {
                if (revision == m_revision && m_finished) {
                    m_finished(saved);
                }
            },
            Qt::QueuedConnection);
    });
}

} // namespace tarnovel
