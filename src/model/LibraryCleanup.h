#pragma once

#include <set>

#include <QString>

namespace tarnovel::LibraryCleanup {

/// The entries that a clean-up may ever delete: regular files, not links, whose name without its extension is
/// a UUID or "handwriting-" and a UUID. A folder that cannot be listed has none.
std::set<QString> candidates(const QString &folder);

/// Deletes the candidates that are not retained and still are regular files of a candidate's shape. Returns
/// the names that were deleted; what could not be is passed over.
std::set<QString> removeUnused(const std::set<QString> &candidates, const std::set<QString> &retaining,
                               const QString &folder);

} // namespace tarnovel::LibraryCleanup
