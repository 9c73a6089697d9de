#pragma once

#include <optional>

#include "model/SetAsideSessions.h"

namespace tarnovel {

/// The documents of earlier sessions that could not be read and are kept in a library, as they were when the
/// folder was last read.
class SetAsideDocuments {
public:
    explicit SetAsideDocuments(const QString &libraryFolder) : m_folder(libraryFolder) {}

    void readFolder();
    /// Newest first.
    const QList<SetAsideSession> &all() const { return m_all; }
    /// What they need of the library.
    const std::set<QString> &neededFiles() const { return m_needed; }

    /// What can be read of a document and is not in the session yet.
    SalvagedSession missingFrom(const Session &session, const SetAsideSession &document) const;
    /// Removes the documents that say nothing but what the session does, as one that was brought back just
    /// before the program ended. Returns the files that they alone needed.
    std::set<QString> removeKnown(const Session &session);
    /// Deletes a document and returns the files that it alone needed; none when it cannot be deleted.
    std::optional<std::set<QString>> remove(const QString &path);

private:
    QString m_folder;
    QList<SetAsideSession> m_all;
    std::set<QString> m_needed;
};

} // namespace tarnovel
