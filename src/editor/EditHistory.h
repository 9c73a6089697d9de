#pragma once

#include <set>

#include <QHash>
#include <QUuid>

#include "editor/UndoSteps.h"
#include "model/Session.h"

namespace tarnovel {

/// The settings of some photos and the selection as they were at one moment.
struct EditSnapshot {
    QHash<QUuid, FrameSettings> settings;
    std::optional<QUuid> selected;

    QList<QUuid> ids() const { return settings.keys(); }
};

/// The steps back and forward. It covers settings and selection; which photos there are is not its matter.
class EditHistory : public UndoSteps<EditSnapshot> {
public:
    /// Steps that can be taken back.
    static constexpr qsizetype mostSteps = 40;

    EditHistory() : UndoSteps(mostSteps) {}

    /// A snapshot of no photo is no step.
    void record(const EditSnapshot &snapshot);

    /// The files that a step could bring back.
    std::set<QString> referencedFiles() const;
};

} // namespace tarnovel
