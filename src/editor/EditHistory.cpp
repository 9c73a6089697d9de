#include "editor/EditHistory.h"

namespace tarnovel {

void EditHistory::record(const EditSnapshot &snapshot)
{
    if (!snapshot.settings.isEmpty()) {
        UndoSteps::record(snapshot);
    }
}

std::set<QString> EditHistory::referencedFiles() const
{
    std::set<QString> files;
    for (const EditSnapshot &step : all()) {
        for (const FrameSettings &settings : step.settings) {
            files.merge(settings.referencedFiles());
        }
    }
    return files;
}

} // namespace tarnovel
