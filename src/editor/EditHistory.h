#pragma once

#include <optional>
#include <set>

#include <QHash>
#include <QList>
#include <QUuid>

#include "model/Session.h"

namespace tarnovel {

/// The settings of some photos and the selection as they were at one moment.
struct EditSnapshot {
    QHash<QUuid, FrameSettings> settings;
    std::optional<QUuid> selected;

    QList<QUuid> ids() const { return settings.keys(); }
};

/// The steps back and forward. It covers settings and selection; which photos there are is not its matter.
class EditHistory {
public:
    /// Steps that can be taken back.
    static constexpr qsizetype mostSteps = 40;

    /// A new step: what could be redone is gone. A snapshot of no photo is none.
    void record(const EditSnapshot &snapshot);

    /// Takes the newest step back (forward); `present` tells the state of its photos now, which becomes the
    /// step of the other direction. None when there is no step.
    template<typename Present>
    std::optional<EditSnapshot> undo(Present present)
    {
        return move(m_undo, m_redo, present);
    }
    template<typename Present>
    std::optional<EditSnapshot> redo(Present present)
    {
        return move(m_redo, m_undo, present);
    }

    void clear();

    const QList<EditSnapshot> &undoStack() const { return m_undo; }
    const QList<EditSnapshot> &redoStack() const { return m_redo; }

    /// The files that a step could bring back.
    std::set<QString> referencedFiles() const;

private:
    template<typename Present>
    static std::optional<EditSnapshot> move(QList<EditSnapshot> &from, QList<EditSnapshot> &to,
                                            Present present)
    {
        if (from.isEmpty()) {
            return std::nullopt;
        }
        EditSnapshot step = from.takeLast();
        to.append(present(step.ids()));
        return step;
    }

    QList<EditSnapshot> m_undo;
    QList<EditSnapshot> m_redo;
};

} // namespace tarnovel
