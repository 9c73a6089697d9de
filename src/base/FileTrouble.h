#pragma once

#include <optional>

#include "base/FileError.h"

namespace tarnovel {

/// Why a file cannot be read as a picture whatever is in it: it is not there, a folder (EISDIR), a pipe or a
/// device (EINVAL), empty (ENODATA), closed to this user, or has a name that is not UTF-8 (EILSEQ). None for an
/// ordinary file that opens.
std::optional<FileError> fileTrouble(const QString &path);

} // namespace tarnovel
