#include "model/SetAsideSessions.h"

#include <algorithm>
#include <optional>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimeZone>

#include "base/FileError.h"
#include "base/Json.h"
#include "model/LibraryCleanup.h"
#include "model/LibraryPaths.h"

using namespace Qt::StringLiterals;

namespace tarnovel::SetAsideSessions {

namespace {

const QString prefix = QStringLiteral("session-damaged-");
const QString dateFormat = QStringLiteral("yyyyMMdd-HHmmss");

void collectNames(const Json &value, std::set<QString> &names)
{
    if (value.is_string()) {
        const QString name = QString::fromStdString(value.get_ref<const std::string &>());
        if (LibraryPaths::isBareName(name)) {
            names.insert(name);
        }
    } else if (value.is_structured()) {
        for (const Json &member : value) {
            collectNames(member, names);
        }
    }
}

/// Nothing for a file that cannot be read at all.
std::optional<PartialJson> parsed(const QString &path)
{
    try {
        return parseJsonUpToFault(readJsonFile(path));
    } catch (const FileError &) {
        return std::nullopt; // told when it was set aside
    } catch (const JsonError &) {
        return std::nullopt;
    }
}

bool isThere(const QString &file, const QString &folder)
{
    return LibraryPaths::isBareName(file) && QFileInfo(folder + u'/' + file).isFile();
}

} // namespace

QString setAside(const QString &document)
{
    const QString stem =
        QFileInfo(document).path() + u'/' + prefix + QDateTime::currentDateTimeUtc().toString(dateFormat);
    for (int attempt = 1; attempt < 100; ++attempt) {
        const QString goal = stem + (attempt == 1 ? QString() : u'-' + QString::number(attempt)) + u".json"_s;
        if (!QFileInfo::exists(goal)) {
            return QFile::rename(document, goal) ? goal : QString();
        }
    }
    return {};
}

QList<SetAsideSession> in(const QString &libraryFolder)
{
    QList<SetAsideSession> documents;
    const QDir folder(libraryFolder);
    // A link that leads nowhere counts: its disk may come back.
    for (const QFileInfo &entry : folder.entryInfoList({prefix + u"*.json"_s}, QDir::Files | QDir::System)) {
        QDateTime when =
            QDateTime::fromString(entry.fileName().sliced(prefix.size()).left(dateFormat.size()), dateFormat);
        when.setTimeZone(QTimeZone::utc());
        documents.append(
            {entry.filePath(), when.isValid() ? when.toLocalTime() : entry.lastModified(), entry.size()});
    }
    std::ranges::sort(documents, [](const SetAsideSession &a, const SetAsideSession &b) {
        return a.when == b.when ? a.path > b.path : a.when > b.when;
    });
    return documents;
}

std::set<QString> neededFiles(const QString &libraryFolder)
{
    std::set<QString> files;
    for (const SetAsideSession &document : in(libraryFolder)) {
        const std::optional<PartialJson> json = parsed(document.path);
        if (json) {
            collectNames(json->value, files);
        }
        if (json && !json->fault) {
            continue;
        }
        // The name tells whole seconds.
        const QDateTime latest = document.when.addSecs(1);
        for (const QString &name : LibraryCleanup::candidates(libraryFolder)) {
            if (QFileInfo(libraryFolder + u'/' + name).lastModified() <= latest) {
                files.insert(name);
            }
        }
    }
    return files;
}

SalvagedSession salvage(const SetAsideSession &document, const QString &libraryFolder)
{
    SalvagedSession salvaged;
    const std::optional<PartialJson> json = parsed(document.path);
    if (!json) {
        salvaged.cutShort = true;
        return salvaged;
    }
    salvaged = salvageSession(json->value);
    salvaged.cutShort = json->fault.has_value();
    salvaged.lostPhotos += erase_if(salvaged.session.photos, [&libraryFolder](const PhotoItem &photo) {
        return !isThere(photo.file, libraryFolder);
    });
    return salvaged;
}

} // namespace tarnovel::SetAsideSessions
