#pragma once

#include <QByteArray>
#include <QHash>
#include <QUuid>

#include "collage/CollageRenderer.h"

namespace tarnovel {

/// An unfinished collage as it is kept from one start of the program to the next.
struct CollageDraft {
    CollageDesign design;
    /// Where those of its photos are that are not the session's.
    QHash<QUuid, QString> files;
    bool operator==(const CollageDraft &) const = default;
};

QByteArray writeCollageDraft(const CollageDraft &draft);

/// Throws a JsonError with its path for anything that is missing or malformed, also for a layout that does not
/// exist.
CollageDraft readCollageDraft(const QByteArray &document);

} // namespace tarnovel
