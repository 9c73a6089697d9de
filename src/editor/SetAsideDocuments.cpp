#include "editor/SetAsideDocuments.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <QFile>

#include "base/Log.h"

namespace tarnovel {

void SetAsideDocuments::readFolder()
{
    m_all = SetAsideSessions::in(m_folder);
    m_needed = SetAsideSessions::neededFiles(m_folder);
}

SalvagedSession SetAsideDocuments::missingFrom(const Session &session, const SetAsideSession &document) const
{
    SalvagedSession found = SetAsideSessions::salvage(document, m_folder);
    found.known = found.session.photos.removeIf([&session](const PhotoItem &item) {
        return std::ranges::any_of(session.photos, [&item](const PhotoItem &known) {
            return known.id == item.id || known.file == item.file;
        });
    });
    found.known += found.session.presets.removeIf([&session](const SavedPreset &preset) {
        return std::ranges::any_of(session.presets,
                                   [&preset](const SavedPreset &known) { return known.id == preset.id; });
    });
    return found;
}

std::set<QString> SetAsideDocuments::removeKnown(const Session &session)
{
    const auto allIn = [](const auto &items, const auto &list) {
        return std::ranges::all_of(items, [&list](const auto &item) { return list.contains(item); });
    };
    std::set<QString> alone;
    for (const SetAsideSession &document : QList(m_all)) {
        const SalvagedSession found = SetAsideSessions::salvage(document, m_folder);
        if (found.whole() && !found.session.photos.isEmpty() && allIn(found.session.photos, session.photos) &&
            allIn(found.session.presets, session.presets)) {
            alone.merge(remove(document.path).value_or(std::set<QString>()));
        }
    }
    return alone;
}

std::optional<std::set<QString>> SetAsideDocuments::remove(const QString &path)
{
    if (!QFile::remove(path)) {
        qCWarning(logEditor) << "a set-aside session could not be removed:" << path;
        return std::nullopt;
    }
    const std::set<QString> before = std::exchange(m_needed, {});
    readFolder();
    std::set<QString> alone;
    std::ranges::set_difference(before, m_needed, std::inserter(alone, alone.end()));
    return alone;
}

} // namespace tarnovel
