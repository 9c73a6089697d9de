// What the model does with styles: those of new photos, of all photos, and the saved ones.

#include <algorithm>
#include <limits>

#include "editor/EditorModel.h"
#include "model/Styling.h"
#include "render/BuiltInTemplate.h"

namespace tarnovel {

std::optional<FrameSettings> EditorModel::autoApplied() const
{
    return autoApplyLastStyle() ? m_session.lastStyle : std::nullopt;
}

qsizetype EditorModel::importPhotos(const QList<PhotoItem> &items, const std::optional<FrameSettings> &style)
{
    const std::optional<FrameSettings> applied = style ? style : autoApplied();
    QList<PhotoItem> ready = items;
    if (applied) {
        for (qsizetype i = 0; i < ready.size(); ++i) {
            ready[i] = styled(ready.at(i), *applied, static_cast<int>(i));
        }
    }
    const qsizetype added = append(ready);
    if (applied && applied->style == FrameStyle::film) {
        m_session.lastStyle = applied;
        numberFilmFrame(*m_session.lastStyle, static_cast<int>(added));
    }
    scheduleSave();
    return added;
}

FrameSettings EditorModel::styleForImport() const
{
    return autoApplied().value_or(FrameSettings());
}

void EditorModel::applyToAll()
{
    QList<QUuid> ids;
    for (const PhotoItem &item : photos()) {
        ids.append(item.id);
    }
    record(snapshot(ids));
    const FrameSettings style = current() ? current()->settings : FrameSettings();
    for (qsizetype i = 0; i < m_session.photos.size(); ++i) {
        m_session.photos[i] = styled(photos().at(i), style, static_cast<int>(i));
    }
    edited();
    loadPreview();
    tell(SettingsChanged);
    scheduleSave();
}

void EditorModel::applyPreset(const SavedPreset &preset)
{
    FrameSettings settings = preset.settings;
    settings.normalize();
    const QUuid id = preset.id;
    step(settings);
    markPresetUsed(id);
}

bool EditorModel::savePreset(const QString &name)
{
    const PhotoItem *item = current();
    if (!item) {
        return false;
    }
    m_session.presets.append({QUuid::createUuid(), name, item->settings, m_services.clock.date()});
    edited();
    tell(PresetsChanged);
    scheduleSave();
    return true;
}

void EditorModel::deletePreset(const QUuid &id)
{
    m_session.presets.removeIf([&id](const SavedPreset &preset) { return preset.id == id; });
    tell(PresetsChanged);
    scheduleSave();
}

void EditorModel::markPresetUsed(const QUuid &id)
{
    for (SavedPreset &preset : m_session.presets) {
        if (preset.id == id) {
            preset.lastUsed = m_services.clock.date();
        }
    }
    tell(PresetsChanged);
    scheduleSave();
}

const SavedPreset *EditorModel::preferredPreset() const
{
    const auto latest = std::ranges::max_element(presets(), {}, [](const SavedPreset &preset) {
        return preset.lastUsed.value_or(-std::numeric_limits<double>::infinity());
    });
    return latest == presets().end() ? nullptr : &*latest;
}

std::optional<QString> EditorModel::activeTemplateID() const
{
    const PhotoItem *item = current();
    if (!item) {
        return FrameSettings().templateID;
    }
    if (item->settings.templateID) {
        return item->settings.templateID;
    }
    for (const BuiltInTemplate look : BuiltInTemplates::all()) {
        if (BuiltInTemplates::make(look, item->settings, previews().palette) == item->settings) {
            return BuiltInTemplates::id(look);
        }
    }
    return std::nullopt;
}

bool EditorModel::autoApplyLastStyle() const
{
    return m_services.preferences.get(PreferenceKeys::autoApplyLastStyle);
}

void EditorModel::setAutoApplyLastStyle(bool on)
{
    m_services.preferences.set(PreferenceKeys::autoApplyLastStyle, on);
}

} // namespace tarnovel
