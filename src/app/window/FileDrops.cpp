#include "app/window/FileDrops.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace tarnovel::app::FileDrops {

namespace {

bool looksLikePicture(const QString &path)
{
    static const QStringList suffixes = {u"jpg"_s, u"jpeg"_s, u"jpe"_s,  u"png"_s, u"heic"_s, u"heif"_s,
                                         u"hif"_s, u"avif"_s, u"webp"_s, u"tif"_s, u"tiff"_s};
    return suffixes.contains(QFileInfo(path).suffix().toLower());
}

} // namespace

QStringList pictures(const QMimeData *data)
{
    QStringList files;
    for (const QUrl &url : data->urls()) {
        if (!url.isLocalFile()) {
            continue;
        }
        const QFileInfo info(url.toLocalFile());
        if (info.isDir()) {
            for (const QFileInfo &inside : QDir(info.filePath()).entryInfoList(QDir::Files, QDir::Name)) {
                if (looksLikePicture(inside.filePath())) {
                    files.append(inside.filePath());
                }
            }
        } else if (looksLikePicture(info.filePath())) {
            files.append(info.filePath());
        }
    }
    return files;
}

bool hasFiles(const QMimeData *data)
{
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); });
}

} // namespace tarnovel::app::FileDrops
