#include "editor/EditHistory.h"

namespace tarnovel {

void EditHistory::record(const EditSnapshot &snapshot)
{
    if (snapshot.settings.isEmpty()) {
        return;
    }
    m_undo.append(snapshot);
    if (m_undo.size() > mostSteps) {
        m_undo.removeFirst();
    }
    m_redo.clear();
}

void EditHistory::clear()
{
    m_undo.clear();
    m_redo.clear();
}

std::set<QString> EditHistory::referencedFiles() const
{
    std::set<QString> files;
    for (const QList<EditSnapshot> *stack : {&m_undo, &m_redo}) {
        for (const EditSnapshot &step : *stack) {
            for (const FrameSettings &settings : step.settings) {
                files.merge(settings.referencedFiles());
            }
        }
    }
    return files;
}

} // namespace tarnovel
