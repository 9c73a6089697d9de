#include "model/SessionStore.h"

#include <algorithm>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/Json.h"
#include "model/LibraryCleanup.h"
#include "model/LibraryPaths.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

/// Drops what the folder no longer has, then lets selection and last style fall back to what is left.
void settle(Session &session, const QString &folder)
{
    erase_if(session.photos, [&folder](const PhotoItem &photo) {
        return !LibraryPaths::isBareName(photo.file) || !QFileInfo(folder + u'/' + photo.file).isFile();
    });
    const auto selected = std::ranges::find_if(
        session.photos, [&session](const PhotoItem &photo) { return photo.id == session.selected; });
    if (!session.lastStyle && selected != session.photos.end()) {
        session.lastStyle = selected->settings;
    }
    if (selected == session.photos.end()) {
        session.selected = session.photos.isEmpty() ? std::nullopt : std::optional(session.photos.first().id);
    }
    for (PhotoItem &photo : session.photos) {
        photo.settings.normalize();
    }
    for (SavedPreset &preset : session.presets) {
        preset.settings.normalize();
    }
    if (session.lastStyle) {
        session.lastStyle->normalize();
    }
}

/// The first free name "session-damaged-DATE.json", or empty when the document could not be moved.
QString setAside(const QString &path)
{
    const QString stem = QFileInfo(path).path() + u"/session-damaged-"_s +
                         QDateTime::currentDateTimeUtc().toString(u"yyyyMMdd-HHmmss"_s);
    for (int attempt = 1; attempt < 100; ++attempt) {
        const QString goal = stem + (attempt == 1 ? QString() : u'-' + QString::number(attempt)) + u".json"_s;
        if (!QFileInfo::exists(goal)) {
            return QFile::rename(path, goal) ? goal : QString();
        }
    }
    return {};
}

} // namespace

LoadedSession loadSession(const QString &libraryFolder, LibraryAccess access)
{
    if (access == LibraryAccess::Own) {
        sweepTemporaryFiles(libraryFolder);
    }
    LoadedSession loaded;
    QFile file(libraryFolder + u'/' + LibraryPaths::sessionFileName());
    if (!QFileInfo(file.fileName()).isFile()) {
        return loaded;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        // It may be readable again some day: the next save must not take its place.
        loaded.setAside = access == LibraryAccess::Own ? setAside(file.fileName()) : QString();
        return loaded;
    }
    const QByteArray document = file.readAll();
    const bool whole = file.error() == QFile::NoError;
    file.close();
    if (!whole) {
        loaded.setAside = access == LibraryAccess::Own ? setAside(file.fileName()) : QString();
        return loaded;
    }
    try {
        loaded.session = readSession(document);
        settle(loaded.session, libraryFolder);
        loaded.cleanupCandidates = LibraryCleanup::candidates(libraryFolder);
        loaded.decoded = true;
    } catch (const JsonError &) {
        if (access == LibraryAccess::Own) {
            loaded.setAside = setAside(file.fileName());
        }
    }
    return loaded;
}

} // namespace tarnovel
