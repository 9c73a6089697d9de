#include "export/PhotoLibrary.h"

#include <cerrno>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/Log.h"
#include "export/ExportNames.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

PicturesFolder::PicturesFolder()
    : PicturesFolder(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation))
{
}

PicturesFolder::PicturesFolder(const QString &picturesFolder) : m_album(picturesFolder + u"/Tarnovel"_s) {}

PhotoLibraryAccess PicturesFolder::requestAccess()
{
    m_refusal.reset();
    errno = 0;
    if (!QDir().mkpath(m_album)) {
        m_refusal.emplace(m_album, QFileInfo::exists(m_album) ? ENOTDIR : errno);
        return PhotoLibraryAccess::Denied;
    }
    sweepTemporaryFiles(m_album);
    try {
        StagedFiles(m_album).stage({});
    } catch (const FileError &error) {
        qCWarning(logExport) << "the photo library takes nothing:" << error.what();
        m_refusal = error;
        return PhotoLibraryAccess::Denied;
    }
    return PhotoLibraryAccess::Authorised;
}

QStringList PicturesFolder::add(const QList<Addition> &additions)
{
    StagedFiles staged(m_album);
    for (const Addition &addition : additions) {
        staged.stage(addition.file);
    }
    return staged.publish([&additions](qsizetype index, int attempt) {
        const Addition &addition = additions.at(index);
        return ExportNames::fileName(addition.photoName, QFileInfo(addition.file).suffix(), attempt);
    });
}

} // namespace tarnovel
