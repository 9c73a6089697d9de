#pragma once

#include <QStringList>

class QMimeData;

namespace tarnovel::app::FileDrops {

/// The files of a drag or a clipboard that may be pictures, as paths. Folders give the pictures directly in
/// them.
QStringList pictures(const QMimeData *data);

/// The same for paths, where a file is taken as it is: whoever names it means it.
QStringList pictures(const QStringList &paths);

/// The absolute path that an argument of the program means, which may be a path or a file:// address.
QString pathOf(const QString &argument);

/// Whether the drag carries files at all.
bool hasFiles(const QMimeData *data);
/// Whether it carries something on the web instead.
bool hasWebAddress(const QMimeData *data);

} // namespace tarnovel::app::FileDrops
