#pragma once

#include <QStringList>

class QMimeData;

namespace tarnovel::app::FileDrops {

/// The files of a drag or a clipboard that may be pictures, as paths. Folders give the pictures directly in
/// them.
QStringList pictures(const QMimeData *data);

/// Whether the drag carries files at all.
bool hasFiles(const QMimeData *data);

} // namespace tarnovel::app::FileDrops
