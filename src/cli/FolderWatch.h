#pragma once

#include <stop_token>

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>

#include "base/OwnedDescriptor.h"

namespace tarnovel::cli {

/// The pictures of a folder, each once it has come to rest. Files that change later count as new.
class FolderWatch {
public:
    /// `leftOut` is a folder that is never looked into.
    FolderWatch(QString folder, bool recursive, QString leftOut);

    /// How long nothing may have written to a file before it is taken.
    static constexpr int restMs = 2000;

    /// Waits for pictures, and gives them in the order of their paths; none where `stop` came first.
    QStringList next(const std::stop_token &stop);

private:
    struct Seen {
        qint64 size = 0;
        QDateTime modified;
        /// When it was first seen like this.
        QDateTime since;
        bool taken = false;
    };

    QStringList ripe();
    void follow(const QString &folder);
    void wait(const std::stop_token &stop) const;

    const QString m_folder;
    const bool m_recursive;
    const QString m_leftOut;
    const OwnedDescriptor m_changes;
    QHash<QString, Seen> m_seen;
    bool m_waiting = false;
};

} // namespace tarnovel::cli
