#include "pipeline/ThumbnailStore.h"

#include <utility>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QUrl>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/Log.h"
#include "imaging/ImageEncoder.h"
#include "imaging/ImageError.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

ThumbnailStore::ThumbnailStore(QString folder) : m_folder(std::move(folder)) {}

QString ThumbnailStore::path(const QString &photo, const FileIdentity &state) const
{
    const QByteArray uri = QUrl::fromLocalFile(QDir::cleanPath(photo)).toEncoded(QUrl::FullyEncoded);
    const QByteArray named =
        uri + '\n' + QByteArray::number(state.modified) + '\n' + QByteArray::number(state.size);
    const QByteArray sum = QCryptographicHash::hash(named, QCryptographicHash::Md5).toHex();
    return m_folder + u'/' + QString::fromLatin1(sum) + u".png"_s;
}

void ThumbnailStore::write(const QString &path, const QImage &thumbnail) const
{
    constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QDir().mkpath(m_folder)) {
        return;
    }
    QFile::setPermissions(m_folder, ownerOnly);
    try {
        replaceFile(path, encodePng(thumbnail), Durability::Unsynced);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    } catch (const FileError &error) {
        qCInfo(logImaging) << "no thumbnail kept:" << error.what();
    }
}

void ThumbnailStore::prune(const QString &photoFolder) const
{
    const QDir folder(m_folder);
    const QStringList kept = folder.entryList({u"*.png"_s}, QDir::Files);
    if (!isKept() || kept.isEmpty()) {
        return;
    }
    QSet<QString> wanted;
    const QDir photos(photoFolder);
    for (const QString &photo : photos.entryList(QDir::Files)) {
        try {
            wanted.insert(path(photos.filePath(photo), RegularFile(photos.filePath(photo)).identity()));
        } catch (const ImageError &) {
            continue; // unreadable: its thumbnail goes, too
        }
    }
    for (const QString &thumbnail : kept) {
        if (!wanted.contains(folder.filePath(thumbnail))) {
            QFile::remove(folder.filePath(thumbnail));
        }
    }
}

} // namespace tarnovel
