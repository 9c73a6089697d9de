#pragma once

#include <set>

#include <QString>

#include "model/Session.h"

namespace tarnovel {

/// What the start of the program finds in a library folder.
struct LoadedSession {
    Session session;
    /// Files that may be deleted once nothing needs them; none unless the document was read.
    std::set<QString> cleanupCandidates;
    /// The document was there and could be read.
    bool decoded = false;
    /// Where a document that could not be decoded was put, or empty.
    QString setAside;
};

enum class LibraryAccess {
    /// The one program that edits: what a killed one left half-written is swept away, and a damaged document
    /// is moved aside under another name, so that the next save does not overwrite it.
    Own,
    /// Nothing in the folder is changed.
    ReadOnly,
};

/// Loads the session of a library folder: photos whose files are gone are dropped, records are normalized,
/// and the selection and last style fall back to what is left. Never throws.
LoadedSession loadSession(const QString &libraryFolder, LibraryAccess access);

} // namespace tarnovel
