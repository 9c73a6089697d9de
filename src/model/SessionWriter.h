#pragma once

#include <mutex>

#include <QString>
#include <QtGlobal>

#include "model/Session.h"

namespace tarnovel {

/// The one writer of "session.json". Any thread may call it; it takes one save at a time.
class SessionWriter {
public:
    explicit SessionWriter(QString libraryFolder);

    /// The writer of the user's library folder.
    static SessionWriter &shared();

    /// Writes the session whole and durably in place of the old document. False, with the old document
    /// untouched, when a later revision has been taken before or when the disk refuses.
    bool save(const Session &session, qint64 revision);

    /// The latest revision that has been taken; whoever begins to save goes on from there.
    qint64 latestRevision();

private:
    const QString m_folder;
    std::mutex m_mutex;
    qint64 m_latestRevision = 0;
};

} // namespace tarnovel
