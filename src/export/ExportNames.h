#pragma once

#include <QString>

/// How exported files are called.
namespace tarnovel::ExportNames {

/// The name of a photo's file: its own name, "-framed", from the second attempt on a number from 2, and the
/// extension. Characters that part folders become "_", a name is cut to 120 characters and further until it
/// fits the 255 bytes of a file system, between characters; an empty one is "Photo".
QString fileName(const QString &photoName, const QString &extension, int attempt);

} // namespace tarnovel::ExportNames
