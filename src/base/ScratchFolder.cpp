#include "base/ScratchFolder.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include "base/FileError.h"

namespace tarnovel {

namespace {

/// Between a folder's making and its locking passes less than this.
constexpr qint64 youngestSeconds = 60;

int openFolder(const QString &path)
{
    return open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

} // namespace

ScratchFolder::ScratchFolder(const QString &prefix)
{
    sweep(prefix, youngestSeconds);
    QByteArray name = QFile::encodeName(QDir::tempPath() + u'/' + prefix) + "XXXXXX";
    if (!mkdtemp(name.data())) {
        throw FileError(QDir::tempPath(), errno);
    }
    m_path = QFile::decodeName(name);
    m_lock = openFolder(m_path);
    flock(m_lock, LOCK_EX | LOCK_NB);
}

ScratchFolder::~ScratchFolder()
{
    QDir(m_path).removeRecursively();
    close(m_lock);
}

void ScratchFolder::sweep(const QString &prefix, qint64 ageSeconds)
{
    const QDir temporary(QDir::tempPath());
    const QRegularExpression shape(u'^' + QRegularExpression::escape(prefix) + QStringLiteral("\\w{6}$"));
    const qint64 latest = QDateTime::currentSecsSinceEpoch() - ageSeconds;
    for (const QString &name : temporary.entryList({prefix + u'*'}, QDir::Dirs | QDir::NoSymLinks)) {
        const int folder = shape.match(name).hasMatch() ? openFolder(temporary.filePath(name)) : -1;
        struct stat status = {};
        if (folder >= 0 && fstat(folder, &status) == 0 && status.st_uid == getuid() &&
            status.st_mtime <= latest && flock(folder, LOCK_EX | LOCK_NB) == 0) {
            QDir(temporary.filePath(name)).removeRecursively();
        }
        if (folder >= 0) {
            close(folder);
        }
    }
}

} // namespace tarnovel
