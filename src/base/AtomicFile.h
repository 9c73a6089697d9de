#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

namespace tarnovel {

class TemporaryFile;

enum class Durability {
    /// The bytes and the folder's entry have reached the disk on return.
    Synced,
    /// Whole for every reader, but a power cut may lose it: for files that live only for moments.
    Unsynced,
};

/// Who may read a new file.
enum class Audience {
    /// Whoever the user's umask lets.
    Everyone,
    /// The user alone.
    Owner,
};

/// Replaces the file by `bytes`, whole or not at all. A FileError is thrown when the disk refuses: the old
/// file is then untouched, unless only the folder's sync failed after the new one had taken its place.
void replaceFile(const QString &path, const QByteArray &bytes, Durability durability = Durability::Synced,
                 Audience audience = Audience::Everyone);

/// Which names of one folder a run has already found taken, so that the n-th file of a name does not try the
/// n − 1 before it again.
class TakenNames {
public:
    /// From which attempt on a name may be free, for files that would like to be called `name`.
    int first(const QString &name) const { return m_next.value(name); }
    void taken(const QString &name, int attempt) { m_next[name] = attempt + 1; }
    void clear() { m_next.clear(); }

private:
    QHash<QString, int> m_next;
};

/// Copies `source` into `folder` under the first of nameFor(0), nameFor(1), … that no entry has, and returns
/// the path it got. The file appears whole or not at all, and never takes the place of another one, not even
/// of one that another process makes at the same moment. Throws a FileError, and leaves nothing behind, when
/// the source cannot be read (FileAccess::Read) or the disk refuses.
QString publishFile(const QString &source, const QString &folder, const std::function<QString(int)> &nameFor,
                    Audience audience = Audience::Everyone);
/// The same for one of many files of a run, which remember together what is taken.
QString publishFile(const QString &source, const QString &folder, const std::function<QString(int)> &nameFor,
                    TakenNames &taken);

/// Copies of several files that appear in a folder together. Until then, and for ever when something fails,
/// the folder shows none of them.
class StagedFiles {
public:
    explicit StagedFiles(QString folder, Audience audience = Audience::Everyone);
    ~StagedFiles();
    StagedFiles(const StagedFiles &) = delete;
    StagedFiles &operator=(const StagedFiles &) = delete;

    /// Copies a file beside its goal, durably; an empty path only tries whether the folder can be written.
    /// Throws a FileError.
    void stage(const QString &source);

    /// Gives every copy the first of nameFor(index, 0), nameFor(index, 1), … that is free. When one of them
    /// cannot have it, those that already appeared are taken back, and a FileError is thrown.
    QStringList publish(const std::function<QString(qsizetype index, int attempt)> &nameFor);
    QStringList publish(const std::function<QString(qsizetype index, int attempt)> &nameFor,
                        TakenNames &taken);

private:
    QString m_folder;
    Audience m_audience;
    std::vector<std::unique_ptr<TemporaryFile>> m_files;
};

/// Removes the temporary files that writes of these functions left in `folder` when their process was killed.
/// A write that another process is still making is left alone.
void sweepTemporaryFiles(const QString &folder);

} // namespace tarnovel
