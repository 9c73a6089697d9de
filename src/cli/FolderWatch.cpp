#include "cli/FolderWatch.h"

#include <algorithm>
#include <array>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>

#include "cli/PhotoList.h"

namespace tarnovel::cli {

namespace {

/// While a file is still being written.
constexpr int lookAgainMs = 250;
/// Some file systems, as of other machines, do not tell of changes.
constexpr int lookAnywayMs = 5000;

} // namespace

FolderWatch::FolderWatch(QString folder, bool recursive, QString leftOut)
    : m_folder(std::move(folder)),
      m_recursive(recursive),
      m_leftOut(std::move(leftOut)),
      m_changes(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
}

QStringList FolderWatch::next(const std::stop_token &stop)
{
    while (!stop.stop_requested()) {
        if (const QStringList found = ripe(); !found.isEmpty()) {
            return found;
        }
        wait(stop);
    }
    return {};
}

void FolderWatch::follow(const QString &folder)
{
    inotify_add_watch(m_changes.get(), QFile::encodeName(folder).constData(),
                      IN_CLOSE_WRITE | IN_MODIFY | IN_MOVED_TO | IN_CREATE | IN_ONLYDIR);
}

QStringList FolderWatch::ripe()
{
    const PicturesBelow below(m_folder, m_recursive, m_leftOut);
    for (const QString &folder : below.folders) {
        follow(folder);
    }
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QHash<QString, Seen> seen;
    QStringList found;
    m_waiting = false;
    for (const QString &path : below.pictures) {
        const QFileInfo file(path);
        const QDateTime modified = file.lastModified().toUTC();
        Seen each = m_seen.value(path);
        if (!each.since.isValid() || each.size != file.size() || each.modified != modified) {
            // What lies there when it is first looked at may have come to rest long ago.
            each = {file.size(), modified, std::min(now, modified), false};
        }
        if (!each.taken && each.since.msecsTo(now) >= restMs) {
            each.taken = true;
            found.append(path);
        }
        m_waiting = m_waiting || !each.taken;
        seen.insert(path, each);
    }
    m_seen = std::move(seen);
    return found;
}

void FolderWatch::wait(const std::stop_token &stop) const
{
    const OwnedDescriptor bell(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    const std::stop_callback ring(stop, [&bell] { eventfd_write(bell.get(), 1); });
    std::array<pollfd, 2> watched{pollfd{bell.get(), POLLIN, 0}, pollfd{m_changes.get(), POLLIN, 0}};
    // Files at work are looked at from time to time rather than at each of their changes.
    poll(watched.data(), m_waiting ? 1 : 2, m_waiting ? lookAgainMs : lookAnywayMs);
    std::array<char, 16384> events{};
    while (read(m_changes.get(), events.data(), events.size()) > 0) {
    }
}

} // namespace tarnovel::cli
