#pragma once

#include <functional>

#include "editor/EditorRules.h"

namespace tarnovel {

/// A change of the layer with this id; none when it has gone.
std::function<void(FrameSettings &)> inLayer(const QString &id, std::function<void(TextLayer &)> change);

/// How the screens change the selected photo's settings: each change is a step of the history, or joins the
/// one before it. A change that comes to nothing is none.
class SettingsEdits {
public:
    using Change = std::function<void(FrameSettings &settings)>;

    SettingsEdits(EditorModel &model, Clock &clock) : m_model(model), m_sliders(model, clock) {}

    /// A step of its own.
    void step(const Change &change);
    /// Joined with the last change of the same control, when that is not long ago.
    void adjust(const QString &key, const Change &change);
    /// The control has been let go: its next change is a new step.
    void endAdjusting() { m_sliders.end(); }

private:
    EditorModel &m_model;
    SliderCheckpoints m_sliders;
};

} // namespace tarnovel
