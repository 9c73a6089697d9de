#pragma once

#include <QString>

namespace tarnovel::LibraryPaths {

/// Where the user's library folder is, whether or not it exists.
QString location();

/// The library folder of the user. It is made, with its parents, on first use; a failure to make it shows in
/// the reads and writes that follow.
QString root();

/// Makes a library folder where there is none, with its parents, and closes it to other users. Whether it
/// worked shows in the reads and writes that follow.
void make(const QString &folder);

/// "session.json", the name of the session's document in a library folder.
QString sessionFileName();

/// Whether a name stands for a file directly inside the library folder: neither a path nor a dot entry.
bool isBareName(const QString &name);

} // namespace tarnovel::LibraryPaths
