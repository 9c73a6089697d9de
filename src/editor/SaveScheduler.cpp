#include "editor/SaveScheduler.h"

#include <utility>

namespace tarnovel {

namespace {

constexpr std::chrono::milliseconds quiet(350);

} // namespace

SaveScheduler::SaveScheduler(SessionWriter &writer, Clock &clock, std::function<void(bool)> finished)
    : m_writer(writer), m_clock(clock), m_finished(std::move(finished)), m_revision(writer.latestRevision())
{
}

SaveScheduler::~SaveScheduler()
{
    flush();
}

void SaveScheduler::schedule(const Session &session, Moment moment)
{
    m_pause.reset();
    ++m_revision;
    m_latest = session;
    if (moment == Moment::AtOnce) {
        write();
    } else {
        m_pause = m_clock.after(quiet, [this] { write(); });
    }
}

bool SaveScheduler::flush()
{
    if (m_pause) {
        write();
    }
    m_worker.wait();
    if (m_failed) {
        write();
        m_worker.wait();
    }
    return !m_failed;
}

void SaveScheduler::write()
{
    // The pause may be what called: it must not be destroyed while it does.
    const std::shared_ptr<PendingCall> over = std::move(m_pause);
    QMetaObject::invokeMethod(
        this, [over] {}, Qt::QueuedConnection);
    m_worker.run(
        [this, session = m_latest, revision = m_revision] {
            const bool saved = m_writer.save(session, revision);
            m_failed = !saved;
            return saved;
        },
        [this, revision = m_revision](bool saved) {
            if (revision == m_revision && m_finished) {
                m_finished(saved);
            }
        });
}

} // namespace tarnovel
