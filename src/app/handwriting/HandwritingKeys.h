#pragma once

#include <functional>
#include <vector>

#include <QKeyEvent>

#include "handwriting/HandwritingTool.h"

namespace tarnovel::app {

/// What keys can ask of the handwriting page.
struct HandwritingActs {
    std::function<void()> undo;
    std::function<void()> redo;
    std::function<void(HandwritingTool)> take;
    std::function<void(bool)> move;
    /// By so many sizes.
    std::function<void(int)> widen;
    std::function<void()> enlarge;
    std::function<void()> reduce;
    std::function<void()> fit;
    std::function<void()> leave;
    /// The space bar has gone down.
    std::function<void()> hold;
};

/// The page's keys: a table of what each does. Some are signs rather than keys, since they are elsewhere on
/// other keyboards.
class HandwritingKeys {
public:
    explicit HandwritingKeys(const HandwritingActs &acts);

    /// What the key stands for, or null.
    const std::function<void()> *find(const QKeyEvent &key) const;

private:
    struct Row {
        /// A Qt::Key where Control or no sign belongs to it, else the sign in lower case.
        int key = 0;
        enum class Kind { Key, Sign, Control, ControlShift } kind = Kind::Key;
        std::function<void()> act;
    };

    /// The first that stands for a key counts.
    std::vector<Row> m_rows;
};

} // namespace tarnovel::app
