#include "editor/SettingsEdits.h"

#include "editor/EditorModel.h"

namespace tarnovel {

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
    m_model.checkpoint();
    m_model.update(settings);
}

void SettingsEdits::slide(const QString &key, const Change &change)
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
