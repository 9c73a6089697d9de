#include "export/ExportFileLifetime.h"

#include <mutex>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace tarnovel {

QStringList ExportFileLifetime::files() const
{
    QStringList paths;
    for (const ExportedFile &file : m_files) {
        paths.append(file.path);
    }
    return paths;
}

void ExportFileLifetime::prepare(const QString &temporaryFolder)
{
    static std::once_flag once;
    std::call_once(once, [&] { sweep(temporaryFolder, QDateTime::currentMSecsSinceEpoch()); });
}

void ExportFileLifetime::sweep(const QString &temporaryFolder, qint64 nowMs)
{
    constexpr qint64 oneDayMs = 86'400'000;
    const QDir folder(temporaryFolder + u"/Exports"_s);
    for (const QFileInfo &entry :
         folder.entryInfoList({u"Kesmar-*"_s}, QDir::Files | QDir::NoSymLinks | QDir::CaseSensitive)) {
        const QDateTime modified = entry.lastModified();
        if (modified.isValid() && modified.toMSecsSinceEpoch() < nowMs - oneDayMs) {
            QFile::remove(entry.filePath());
        }
    }
}

} // namespace tarnovel
