#include "model/SessionStore.h"

#include <algorithm>

#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/Json.h"
#include "base/Log.h"
#include "model/LibraryCleanup.h"
#include "model/LibraryPaths.h"
#include "model/SetAsideSessions.h"

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
    const auto tidy = [](FrameSettings &settings) {
        dropForeignFiles(settings);
        settings.normalize();
    };
    for (PhotoItem &photo : session.photos) {
        tidy(photo.settings);
    }
    for (SavedPreset &preset : session.presets) {
        tidy(preset.settings);
    }
    if (session.lastStyle) {
        tidy(*session.lastStyle);
    }
}

} // namespace

LoadedSession loadSession(const QString &libraryFolder, LibraryAccess access)
{
    if (access == LibraryAccess::Own) {
        sweepTemporaryFiles(libraryFolder);
    }
    LoadedSession loaded;
    const QString document = libraryFolder + u'/' + LibraryPaths::sessionFileName();
    const QFileInfo entry(document);
    // A folder of that name is no document: it stays, and saves say that they cannot take its place.
    if ((!entry.exists() && !entry.isSymLink()) || entry.isDir()) {
        return loaded;
    }
    try {
        loaded.session = readSession(readJsonFile(document));
        settle(loaded.session, libraryFolder);
        loaded.cleanupCandidates = LibraryCleanup::candidates(libraryFolder);
        loaded.decoded = true;
        return loaded;
    } catch (const JsonError &error) {
        qCWarning(logModel) << "the session cannot be read:" << document << error.what();
    } catch (const FileError &error) {
        qCWarning(logModel) << "the session cannot be read:" << error.what();
    }
    // It may be readable again some day, or by another version: the next save must not take its place.
    if (access == LibraryAccess::Own) {
        loaded.setAside = SetAsideSessions::setAside(document);
        qCWarning(logModel) << "it was set aside as" << loaded.setAside;
    }
    return loaded;
}

} // namespace tarnovel
