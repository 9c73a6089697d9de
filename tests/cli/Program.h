#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QList>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "base/Json.h"

namespace tarnovel::test {

/// What a run of the program came to.
struct Outcome {
    int status = -1;
    QByteArray output;
    QByteArray errors;

    /// Standard output as one JSON object a line.
    QList<Json> lines() const;
};

/// A folder with photos and an environment without a display, in which the program runs as a process.
class Program {
public:
    Program();

    /// Runs with these arguments, without a display and in English unless the environment says otherwise.
    Outcome run(const QStringList &arguments) const;

    QString path(const QString &name) const { return m_folder.filePath(name); }
    QProcessEnvironment &environment() { return m_environment; }

    /// Writes a photo of this size: a gradient, in the format of the name's ending.
    QString photo(const QString &name, int width = 300, int height = 200) const;
    QString file(const QString &name, const QByteArray &bytes) const;
    /// The names in a folder, hidden ones too.
    QStringList entries(const QString &folder) const;

    static QString executable();

private:
    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
};

/// The processes that a process has started.
QList<pid_t> childrenOf(qint64 process);

} // namespace tarnovel::test
