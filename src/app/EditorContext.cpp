#include "app/EditorContext.h"

#include <utility>

namespace tarnovel::app {

void EditorState::setTool(Tool tool)
{
    endPicking();
    if (m_tool == tool) {
        return;
    }
    m_tool = tool;
    Q_EMIT toolChanged();
}

void EditorState::selectLayer(const std::optional<QString> &id)
{
    if (m_layer == id) {
        return;
    }
    m_layer = id;
    Q_EMIT layerChanged();
}

void EditorState::pickColor(std::function<void(const QColor &)> taken)
{
    m_taker = std::move(taken);
    Q_EMIT pickingChanged();
}

void EditorState::endPicking()
{
    if (m_taker) {
        m_taker = nullptr;
        Q_EMIT pickingChanged();
    }
}

} // namespace tarnovel::app
