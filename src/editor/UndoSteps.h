#pragma once

#include <limits>
#include <optional>

#include <QList>

namespace tarnovel {

/// The states that steps back and forward lead to. What the state is now, the owner knows.
template<typename State>
class UndoSteps {
public:
    /// The oldest step goes when there are more than `most`.
    explicit UndoSteps(qsizetype most = std::numeric_limits<qsizetype>::max()) : m_most(most) {}

    bool canUndo() const { return !m_undo.isEmpty(); }
    bool canRedo() const { return !m_redo.isEmpty(); }

    /// A new step, which leads back to `state`: what could be redone is gone.
    void record(const State &state)
    {
        m_undo.append(state);
        if (m_undo.size() > m_most) {
            m_undo.removeFirst();
        }
        m_redo.clear();
    }

    /// Takes the newest step back (forward) and returns where it leads; none when there is no step.
    /// `present(step)` is the state that a step the other way leads to.
    template<typename Present>
    std::optional<State> undo(Present present)
    {
        return move(m_undo, m_redo, present);
    }
    template<typename Present>
    std::optional<State> redo(Present present)
    {
        return move(m_redo, m_undo, present);
    }

    void clear()
    {
        m_undo.clear();
        m_redo.clear();
    }

    /// Every state that a step leads to.
    QList<State> all() const { return m_undo + m_redo; }

private:
    template<typename Present>
    static std::optional<State> move(QList<State> &from, QList<State> &to, Present present)
    {
        if (from.isEmpty()) {
            return std::nullopt;
        }
        State step = from.takeLast();
        to.append(present(step));
        return step;
    }

    qsizetype m_most;
    QList<State> m_undo;
    QList<State> m_redo;
};

} // namespace tarnovel
