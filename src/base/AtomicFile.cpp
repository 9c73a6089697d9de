#include "base/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

#include "base/FileError.h"

namespace tarnovel {

namespace {

const QString temporaryPrefix = QStringLiteral(".tarnovel-");
constexpr int temporaryDigits = 16;

/// Names tried for one file; nobody has that many of one name, and a name that never becomes free is a fault.
constexpr int mostAttempts = 100'000;

} // namespace

/// A hidden file beside its goal. It is removed unless it was moved into place. As long as its writer lives,
/// the writer holds a lock on it: that is how a left-over is told from a file in use, on shared folders too.
class TemporaryFile {
public:
    TemporaryFile(const QString &folder, Audience audience)
    {
        // Somebody who sweeps may come between the making and the lock: then it is made again.
        do {
            release();
            m_path = folder + u'/' + temporaryPrefix +
                     QUuid::createUuid().toString(QUuid::Id128).left(temporaryDigits);
            m_descriptor = open(encoded().constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                                audience == Audience::Owner ? 0600 : 0666);
            if (m_descriptor < 0) {
                throw FileError(folder, errno);
            }
        } while (!hold());
    }
    ~TemporaryFile() { release(); }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    QByteArray encoded() const { return QFile::encodeName(m_path); }

    void write(const char *bytes, qint64 count)
    {
        while (count > 0) {
            const ssize_t written = ::write(m_descriptor, bytes, static_cast<size_t>(count));
            if (written < 0 && errno == EINTR) {
                continue;
            }
            if (written <= 0) {
                throw FileError(m_path, written < 0 ? errno : ENOSPC);
            }
            bytes += written;
            count -= written;
            m_size += written;
        }
    }

    /// Shares the blocks of an open file where the file system can; false where it cannot.
    bool clone(int source)
    {
        struct stat status = {};
        if (ioctl(m_descriptor, FICLONE, source) != 0 || fstat(m_descriptor, &status) != 0) {
            return false;
        }
        m_size = status.st_size;
        return true;
    }

    void copy(int source, const QString &sourcePath)
    {
        QByteArray block(1 << 20, Qt::Uninitialized);
        while (true) {
            const ssize_t count = read(source, block.data(), static_cast<size_t>(block.size()));
            if (count == 0) {
                return;
            }
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0) {
                throw FileError(sourcePath, errno, FileAccess::Read);
            }
            write(block.constData(), count);
        }
    }

    /// What was written is as long as it should be, and on the disk where that is asked for; close() can
    /// report a late failure too.
    void finish(Durability durability)
    {
        struct stat status = {};
        if ((durability == Durability::Synced && fsync(m_descriptor) != 0) ||
            fstat(m_descriptor, &status) != 0) {
            throw FileError(m_path, errno);
        }
        if (status.st_size != m_size) {
            throw FileError(m_path, EIO);
        }
    }

    void replace(const QString &path)
    {
        if (rename(encoded().constData(), QFile::encodeName(path).constData()) != 0) {
            throw FileError(path, errno);
        }
        m_moved = true;
    }

    /// False when the name is taken.
    bool moveToFreeName(const QString &path)
    {
        const QByteArray goal = QFile::encodeName(path);
        // Some file systems know no exclusive rename, and some no hard link.
        if (syscall(SYS_renameat2, AT_FDCWD, encoded().constData(), AT_FDCWD, goal.constData(),
                    RENAME_NOREPLACE) == 0) {
            m_moved = true;
            return true;
        }
        if (errno == EINVAL || errno == ENOSYS) {
            return linkToFreeName(goal) || claimFreeName(goal);
        }
        if (errno == EEXIST) {
            return false;
        }
        throw FileError(path, errno);
    }

private:
    void release()
    {
        if (m_descriptor < 0) {
            return;
        }
        if (!m_moved) {
            unlink(encoded().constData());
        }
        close(m_descriptor);
    }

    /// Locks the file; false when somebody else has, or has taken it away. File systems without locks have no
    /// sweepers.
    bool hold() const
    {
        struct stat status = {};
        return (flock(m_descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) &&
               fstat(m_descriptor, &status) == 0 && status.st_nlink > 0;
    }

    bool linkToFreeName(const QByteArray &goal) const
    {
        return link(encoded().constData(), goal.constData()) == 0;
    }

    /// Without links, an empty file of ours holds the name until the whole one replaces it. False when it is
    /// taken.
    bool claimFreeName(const QByteArray &goal)
    {
        const int claim = open(goal.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (claim < 0) {
            if (errno == EEXIST) {
                return false;
            }
            throw FileError(QFile::decodeName(goal), errno);
        }
        close(claim);
        try {
            replace(QFile::decodeName(goal));
        } catch (const FileError &) {
            unlink(goal.constData());
            throw;
        }
        return true;
    }

    QString m_path;
    int m_descriptor = -1;
    qint64 m_size = 0;
    bool m_moved = false;
};

namespace {

void syncFolder(const QString &folder)
{
    const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        throw FileError(folder, errno);
    }
    // File systems that cannot sync a folder say EINVAL; there is nothing more to do on them.
    const int failure = fsync(descriptor) == 0 || errno == EINVAL ? 0 : errno;
    close(descriptor);
    if (failure != 0) {
        throw FileError(folder, failure);
    }
}

} // namespace

void replaceFile(const QString &path, const QByteArray &bytes, Durability durability, Audience audience)
{
    const QString folder = QFileInfo(path).path();
    TemporaryFile temporary(folder, audience);
    temporary.write(bytes.constData(), bytes.size());
    temporary.finish(durability);
    temporary.replace(path);
    if (durability == Durability::Synced) {
        syncFolder(folder);
    }
}

QString publishFile(const QString &source, const QString &folder, const std::function<QString(int)> &nameFor,
                    Audience audience)
{
    StagedFiles staged(folder, audience);
    staged.stage(source);
    return staged.publish([&nameFor](qsizetype, int attempt) { return nameFor(attempt); }).constFirst();
}

QString publishFile(const QString &source, const QString &folder, const std::function<QString(int)> &nameFor,
                    TakenNames &taken)
{
    StagedFiles staged(folder);
    staged.stage(source);
    return staged.publish([&nameFor](qsizetype, int attempt) { return nameFor(attempt); }, taken)
        .constFirst();
}

StagedFiles::StagedFiles(QString folder, Audience audience)
    : m_folder(std::move(folder)), m_audience(audience)
{
}

StagedFiles::~StagedFiles() = default;

void StagedFiles::stage(const QString &source)
{
    if (source.isEmpty()) {
        TemporaryFile(m_folder, m_audience).finish(Durability::Unsynced);
        return;
    }
    // Not blocking: a pipe without a writer would keep the caller for ever.
    const int input = open(QFile::encodeName(source).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (input < 0) {
        throw FileError(source, errno, FileAccess::Read);
    }
    const struct Closer {
        int descriptor;
        ~Closer() { close(descriptor); }
    } closer{input};
    struct stat status = {};
    if (fstat(input, &status) != 0 || !S_ISREG(status.st_mode)) {
        throw FileError(source, S_ISDIR(status.st_mode) ? EISDIR : EINVAL, FileAccess::Read);
    }
    auto temporary = std::make_unique<TemporaryFile>(m_folder, m_audience);
    if (!temporary->clone(input)) {
        temporary->copy(input, source);
    }
    temporary->finish(Durability::Synced);
    m_files.push_back(std::move(temporary));
}

QStringList StagedFiles::publish(const std::function<QString(qsizetype, int)> &nameFor)
{
    TakenNames taken;
    return publish(nameFor, taken);
}

QStringList StagedFiles::publish(const std::function<QString(qsizetype, int)> &nameFor, TakenNames &taken)
{
    const TakenNames before = taken;
    QStringList published;
    try {
        for (qsizetype index = 0; index < static_cast<qsizetype>(m_files.size()); ++index) {
            const QString wanted = nameFor(index, 0);
            for (int attempt = taken.first(wanted);; ++attempt) {
                if (attempt >= mostAttempts) {
                    throw FileError(m_folder, EEXIST);
                }
                const QString path = m_folder + u'/' + nameFor(index, attempt);
                if (m_files[static_cast<size_t>(index)]->moveToFreeName(path)) {
                    published.append(path);
                    taken.taken(wanted, attempt);
                    break;
                }
            }
        }
        syncFolder(m_folder);
    } catch (const FileError &) {
        for (const QString &path : published) {
            unlink(QFile::encodeName(path).constData());
        }
        taken = before;
        throw;
    }
    return published;
}

void sweepTemporaryFiles(const QString &folder)
{
    static const QRegularExpression shape(u'^' + QRegularExpression::escape(temporaryPrefix) +
                                          QStringLiteral("[0-9a-f]{%1}$").arg(temporaryDigits));
    const QStringList names = QDir(folder).entryList({temporaryPrefix + u'*'}, QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        const QByteArray path = QFile::encodeName(folder + u'/' + name);
        const int descriptor =
            shape.match(name).hasMatch() ? open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW) : -1;
        if (descriptor < 0) {
            continue;
        }
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
            unlink(path.constData());
        }
        close(descriptor);
    }
}

} // namespace tarnovel
