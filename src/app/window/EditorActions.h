#pragma once

#include <array>
#include <functional>
#include <utility>

#include <QObject>

class QAction;
class QWidget;

namespace tarnovel::app {

/// What the editor's window can be told to do, with names and keys.
enum class Act {
    AddPhotos,
    Export,
    Undo,
    Redo,
    ApplyToAll,
    SaveStyle,
    Collage,
    PreviewSet,
    Manage,
    Guide,
    Settings,
    Paste,
    Close,
    Quit,
    FullScreen,
    Count
};

class EditorActions : public QObject {
    Q_OBJECT

public:
    /// The actions belong to `window`, whose keys they answer.
    explicit EditorActions(QWidget *window);

    QAction *action(Act act) const { return m_actions.at(static_cast<size_t>(act)); }
    /// While this holds, the keys do nothing.
    void blockWhen(std::function<bool()> blocked) { m_blocked = std::move(blocked); }
    void connectTo(Act act, const std::function<void()> &done);
    /// The same for what concerns the window itself, which is never blocked.
    void connectAlways(Act act, const std::function<void()> &done);
    void setEnabled(Act act, bool enabled);
    /// Asks for the names again.
    void retranslate();

private:
    std::function<bool()> m_blocked = [] { return false; };
    std::array<QAction *, static_cast<size_t>(Act::Count)> m_actions = {};
};

} // namespace tarnovel::app
