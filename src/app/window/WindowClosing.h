#pragma once

#include <QObject>

#include "app/EditorContext.h"
#include "model/Drafts.h"

namespace tarnovel::app {

class MainWindow;
class Overlay;

/// What stands between a window and its end: each thing that would be lost is asked about, one after another;
/// and what is kept when nobody can be asked.
class WindowClosing : public QObject {
    Q_OBJECT

public:
    WindowClosing(MainWindow &window, const EditorContext &context);

    /// Whether the window may close now. Otherwise a question is open, whose answer closes it.
    bool mayClose();
    /// The program has to end: photos that have come in stay, studios leave drafts, edits are saved.
    void saveNow();

    /// Asks whether to go on with the drafts of an earlier end, one after another.
    void offerDrafts();
    /// The studio has been left, or its work has become part of the session.
    void forgetDraft(Drafts::Kind kind);

private:
    bool askToStopExport();
    bool askToLeaveStudio();
    bool askToStopImport();
    bool askToLoseEdits();
    void centre(Overlay *question) const;
    void closeLater();
    void offer(Drafts::Kind kind);
    void resume(Drafts::Kind kind);

    MainWindow &m_window;
    EditorContext m_context;
    bool m_mayStopExport = false;
    bool m_mayLoseEdits = false;
};

} // namespace tarnovel::app
