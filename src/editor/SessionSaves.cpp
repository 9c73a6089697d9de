#include "editor/SessionSaves.h"

#include <utility>

#include "model/LibraryCleanup.h"

namespace tarnovel {

SessionSaves::SessionSaves(SessionWriter &writer, Clock &clock, const QString &libraryFolder,
                           std::set<QString> candidates, Owner owner)
    : m_libraryFolder(libraryFolder),
      m_candidates(std::move(candidates)),
      m_owner(std::move(owner)),
      m_scheduler(writer, clock, [this](bool saved) { finished(saved); })
{
}

void SessionSaves::schedule(const Session &session, std::set<QString> files, SaveScheduler::Moment moment)
{
    addCandidates(std::move(files));
    m_scheduler.schedule(session, moment);
}

void SessionSaves::finished(bool saved)
{
    m_owner.finished(saved);
    if (!saved) {
        return;
    }
    for (const QString &name :
         LibraryCleanup::removeUnused(m_candidates, m_owner.retained(), m_libraryFolder)) {
        m_candidates.erase(name);
    }
}

} // namespace tarnovel
