#pragma once

#include <functional>
#include <memory>
#include <set>

#include "editor/SaveScheduler.h"
#include "model/Session.h"

namespace tarnovel {

/// Saves the session after its changes, and clears the library of what nothing needs any more once a save has
/// reached the disk.
class SessionSaves {
public:
    struct Owner {
        /// The files that a clean-up leaves alone.
        std::function<std::set<QString>()> retained;
        /// A save that no later one has overtaken has reached the disk, or failed.
        std::function<void(bool saved)> finished;
    };

    /// `candidates` are the files that a clean-up looks at besides those of the session's own history.
    SessionSaves(SessionWriter &writer, Clock &clock, const QString &libraryFolder,
                 std::set<QString> candidates, Owner owner);

    void schedule(const Session &session, std::set<QString> files, SaveScheduler::Moment moment);
    bool flush() { return m_scheduler.flush(); }
    /// The next clean-up looks at these too.
    void addCandidates(std::set<QString> files) { m_candidates.merge(files); }

private:
    void finished(bool saved);

    QString m_libraryFolder;
    std::set<QString> m_candidates;
    Owner m_owner;
    SaveScheduler m_scheduler;
};

} // namespace tarnovel
