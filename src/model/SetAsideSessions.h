#pragma once

#include <set>

#include <QDateTime>
#include <QList>
#include <QString>

#include "model/Session.h"

namespace tarnovel {

/// A session's document that could not be read and was moved out of the way. It lies in the library folder,
/// and keeps the files that it needs from the clean-up, until it is restored or discarded.
struct SetAsideSession {
    QString path;
    /// When it was set aside, in local time.
    QDateTime when;
    qint64 bytes = 0;
};

namespace SetAsideSessions {

/// Moves a document to the first free name "session-damaged-DATE.json" beside it. Empty when that fails.
QString setAside(const QString &document);

/// Those of a library folder, newest first.
QList<SetAsideSession> in(const QString &libraryFolder);

/// The files that the set-aside documents of a folder need: all that one names, and where it cannot be parsed,
/// all of a clean-up candidate's shape that are not younger than it.
std::set<QString> neededFiles(const QString &libraryFolder);

/// Every photo and style of the document that can be read and whose file is there. Never throws.
SalvagedSession salvage(const SetAsideSession &document, const QString &libraryFolder);

} // namespace SetAsideSessions

} // namespace tarnovel
