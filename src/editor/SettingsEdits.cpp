#include "editor/SettingsEdits.h"

#include <utility>

#include "editor/EditorModel.h"

namespace tarnovel {

std::function<void(FrameSettings &)> inLayer(const QString &id, std::function<void(TextLayer &)> change)
{
    return [id, change = std::move(change)](FrameSettings &settings) {
        if (TextLayer *layer = settings.layer(id)) {
            change(*layer);
        }
    };
}

void SettingsEdits::step(const Change &change)
{
    const PhotoItem *photo = m_model.current();
    if (!photo) {
        return;
    }
    FrameSettings settings = photo->settings;
    change(settings);
    if (settings == photo->settings) {
        return;
    }
    m_sliders.end();
    m_model.step(settings);
}

void SettingsEdits::adjust(const QString &key, const Change &change)
{
    const PhotoItem *photo = m_model.current();
    if (!photo) {
        return;
    }
    FrameSettings settings = photo->settings;
    change(settings);
    if (settings == photo->settings) {
        return;
    }
    // Another photo's slider is another control.
    m_sliders.change(key + photo->id.toString());
    m_model.update(settings);
}

} // namespace tarnovel
