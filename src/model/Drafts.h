#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

/// Work of a studio that was not finished when the program had to end: one document a studio, in the library
/// folder, until it is finished or given up.
namespace tarnovel::Drafts {

enum class Kind { Collage, Handwriting };

/// False when it could not be written; an older draft is then untouched.
bool keep(const QString &libraryFolder, Kind kind, const QByteArray &document);

/// None where there is none, or none that can be read.
std::optional<QByteArray> read(const QString &libraryFolder, Kind kind);

void remove(const QString &libraryFolder, Kind kind);

} // namespace tarnovel::Drafts
