#pragma once

#include <QStringList>

namespace tarnovel {

/// The endings, in small letters, of the files that folders and dialogs offer as pictures. What a file is,
/// its first bytes say.
const QStringList &pictureSuffixes();
bool hasPictureSuffix(const QString &path);

} // namespace tarnovel
