#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace tarnovel::cli {

/// The K-th of N parts of a list: the positions K, K + N, K + 2N, …, counted from 1.
struct Shard {
    qsizetype part = 1;
    qsizetype parts = 1;

    /// From "K/N". Throws a UsageError unless 1 ≤ K ≤ N.
    static Shard from(const QString &typed);
    bool has(qsizetype index) const { return index % parts == part - 1; }
    qsizetype count(qsizetype whole) const { return whole < part ? 0 : (whole - part) / parts + 1; }
};

/// Which photos a command is to take, as typed.
struct PhotoSelection {
    QStringList photos;
    /// A folder stands for the pictures below it.
    bool recursive = false;
    /// A file with more photos, "-" for standard input; empty for none.
    QString listFile;
    /// They are ended by NUL instead of a line break.
    bool nulEnded = false;

    bool isEmpty() const { return photos.isEmpty() && listFile.isEmpty(); }
};

/// The names of a batch's photos in their order, packed: a hundred thousand take a few megabytes.
class PhotoList {
public:
    /// What the selection stands for. `destination` is never looked into. Throws a UsageError where it is the
    /// folder that is to be framed, and a Refusal for a list that cannot be read or names nothing.
    PhotoList(const PhotoSelection &selection, const QString &destination);
    PhotoList() = default;

    qsizetype size() const { return m_ends.size(); }
    QString at(qsizetype index) const;
    void append(const QString &photo);

    /// Folders in which there was no picture.
    const QStringList &emptyFolders() const { return m_emptyFolders; }
    /// Folders that may not be looked into.
    const QStringList &closedFolders() const { return m_closedFolders; }

private:
    void add(const QString &photo, bool recursive, const QString &destination);

    QByteArray m_names;
    QList<qint64> m_ends;
    QStringList m_emptyFolders;
    QStringList m_closedFolders;
};

/// The pictures in a folder, or below it, in the order of their paths. Hidden ones and links to folders are
/// left out, so that there are no loops, and so is the folder `leftOut`, a canonical path.
struct PicturesBelow {
    QStringList pictures;
    /// The folders that were looked into, and those that the system keeps closed.
    QStringList folders;
    QStringList closed;

    PicturesBelow(const QString &folder, bool recursive, const QString &leftOut);
};

bool isSameFolder(const QString &one, const QString &other);

/// What is said before the name of a folder that is to be framed into itself.
QString ownFolderText();

} // namespace tarnovel::cli
