#pragma once

#include "app/EditorContext.h"
#include "app/kit/Swatches.h"

namespace tarnovel::app {

/// A row of colours whose wheel opens a picker for any other.
class ColorDots : public Swatches {
    Q_OBJECT

public:
    ColorDots(EditorState &state, QList<Entry> entries);

    void setColor(const QColor &color);

Q_SIGNALS:
    void chosenColor(const QColor &color);
    /// While the picker is being dragged.
    void dragged(const QColor &color);

private:
    void openPicker();

    EditorState &m_state;
    QColor m_shown;
};

} // namespace tarnovel::app
