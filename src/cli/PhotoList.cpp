#include "cli/PhotoList.h"

#include <algorithm>
#include <cerrno>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "cli/Console.h"
#include "cli/Grammar.h"
#include "cli/OutputOptions.h"
#include "language/AppLanguage.h"
#include "model/PictureSuffixes.h"
#include "pipeline/PipelineError.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

QString canonical(const QString &folder)
{
    const QString whole = QFileInfo(folder).canonicalFilePath();
    return whole.isEmpty() ? QDir::cleanPath(QFileInfo(folder).absoluteFilePath()) : whole;
}

void collect(const QString &folder, bool recursive, const QString &leftOut, PicturesBelow &found)
{
    found.folders.append(folder);
    const QDir directory(folder);
    if (!directory.isReadable()) {
        found.closed.append(folder);
        return;
    }
    const auto entries = directory.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const QString path = folder.endsWith(u'/') ? folder + entry.fileName() : entry.filePath();
        if (!entry.isDir()) {
            if (hasPictureSuffix(path)) {
                found.pictures.append(path);
            }
        } else if (recursive && !entry.isSymLink() && entry.canonicalFilePath() != leftOut) {
            collect(path, recursive, leftOut, found);
        }
    }
}

QString calledList(const QString &listFile)
{
    return listFile == u"-"_s ? localized({"标准输入", "standard input", "entrée standard"}) : listFile;
}

QByteArray bytesOfList(const QString &listFile)
{
    QFile file(listFile);
    const bool standardInput = listFile == u"-"_s;
    const QString called = calledList(listFile);
    errno = 0;
    const bool open = standardInput ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!open || (!standardInput && QFileInfo(listFile).isDir())) {
        const int code = QFileInfo(listFile).isDir() ? EISDIR : errno;
        throw Refusal{called, errorDescription(FileError(listFile, code, FileAccess::Read))};
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFile::NoError) {
        throw Refusal{called, errorDescription(FileError(listFile, EIO, FileAccess::Read))};
    }
    return bytes;
}

} // namespace

PicturesBelow::PicturesBelow(const QString &folder, bool recursive, const QString &leftOut)
{
    collect(folder, recursive, leftOut, *this);
    std::ranges::sort(pictures);
}

bool isSameFolder(const QString &one, const QString &other)
{
    return canonical(one) == canonical(other);
}

QString ownFolderText()
{
    return localized({"成品不能放进要加框的文件夹：",
                      "The results cannot go into the folder that is framed: ",
                      "Les résultats ne peuvent pas aller dans le dossier à encadrer : "});
}

Shard Shard::from(const QString &typed)
{
    const QStringList sides = typed.split(u'/');
    bool partIsNumber = false;
    bool partsIsNumber = false;
    Shard shard;
    if (sides.size() == 2) {
        shard.part = sides.first().toInt(&partIsNumber);
        shard.parts = sides.last().toInt(&partsIsNumber);
    }
    const bool signs = typed.contains(u'+') || typed.contains(u'-');
    if (signs || !partIsNumber || !partsIsNumber || shard.part < 1 || shard.part > shard.parts) {
        throw UsageError{localized({"--shard 应写成 K/N，1 ≤ K ≤ N：", "--shard takes K/N with 1 ≤ K ≤ N: ",
                                    "--shard prend K/N avec 1 ≤ K ≤ N : "}) +
                         typed};
    }
    return shard;
}

PhotoList::PhotoList(const PhotoSelection &selection, const QString &destination)
{
    const QString into = canonical(destination);
    for (const QString &photo : selection.photos) {
        add(photo, selection.recursive, into);
    }
    if (selection.listFile.isEmpty()) {
        return;
    }
    QByteArray bytes = bytesOfList(selection.listFile);
    if (!selection.nulEnded && bytes.startsWith("\xef\xbb\xbf")) {
        bytes.remove(0, 3);
    }
    bool named = false;
    for (qsizetype begin = 0; begin < bytes.size();) {
        const qsizetype found = bytes.indexOf(selection.nulEnded ? '\0' : '\n', begin);
        const qsizetype end = found < 0 ? bytes.size() : found;
        qsizetype length = end - begin;
        if (!selection.nulEnded && length > 0 && bytes.at(end - 1) == '\r') {
            --length;
        }
        if (length > 0) {
            add(fromArgument(bytes.mid(begin, length).toStdString()), selection.recursive, into);
            named = true;
        }
        begin = end + 1;
    }
    if (!named && selection.photos.isEmpty()) {
        throw Refusal{
            calledList(selection.listFile),
            localized({"列表里没有照片。", "The list names no photo.", "La liste ne nomme aucune photo."})};
    }
}

void PhotoList::add(const QString &photo, bool recursive, const QString &destination)
{
    if (!recursive || !QFileInfo(photo).isDir()) {
        append(photo);
        return;
    }
    if (canonical(photo) == destination) {
        throw UsageError{ownFolderText() + photo};
    }
    const PicturesBelow found(photo, true, destination);
    for (const QString &path : found.pictures) {
        append(path);
    }
    m_closedFolders += found.closed;
    if (found.pictures.isEmpty() && found.closed.isEmpty()) {
        m_emptyFolders.append(photo);
    }
}

void PhotoList::append(const QString &photo)
{
    m_names += photo.toUtf8();
    m_ends.append(m_names.size());
}

QString PhotoList::at(qsizetype index) const
{
    const qint64 begin = index == 0 ? 0 : m_ends.at(index - 1);
    return QString::fromUtf8(m_names.mid(begin, m_ends.at(index) - begin));
}

} // namespace tarnovel::cli
