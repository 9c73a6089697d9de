#include "app/window/FileDrops.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

#include "model/PictureSuffixes.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app::FileDrops {

QStringList pictures(const QStringList &paths)
{
    QStringList files;
    for (const QString &path : paths) {
        if (!QFileInfo(path).isDir()) {
            files.append(path);
            continue;
        }
        for (const QFileInfo &inside : QDir(path).entryInfoList(QDir::Files, QDir::Name)) {
            if (hasPictureSuffix(inside.filePath())) {
                files.append(inside.filePath());
            }
        }
    }
    return files;
}

QStringList pictures(const QMimeData *data)
{
    QStringList paths;
    for (const QUrl &url : data->urls()) {
        const QString path = url.isLocalFile() ? url.toLocalFile() : QString();
        if (!path.isEmpty() && (QFileInfo(path).isDir() || hasPictureSuffix(path))) {
            paths.append(path);
        }
    }
    return pictures(paths);
}

QString pathOf(const QString &argument)
{
    const QUrl url(argument);
    return QFileInfo(url.isLocalFile() ? url.toLocalFile() : argument).absoluteFilePath();
}

bool hasFiles(const QMimeData *data)
{
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); });
}

bool hasWebAddress(const QMimeData *data)
{
    const QList<QUrl> urls = data->urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl &url) {
        return url.scheme() == u"http"_s || url.scheme() == u"https"_s;
    });
}

} // namespace tarnovel::app::FileDrops
