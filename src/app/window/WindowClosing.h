#pragma once

#include <optional>

#include <QObject>
#include <QPointer>

#include "app/EditorContext.h"
#include "app/kit/Overlay.h"
#include "model/Drafts.h"

namespace tarnovel::app {

class MainWindow;

/// What stands between a window and its end: each thing that would be lost is asked about, one after another;
/// and what is kept when nobody can be asked.
class WindowClosing : public QObject {
    Q_OBJECT

public:
    WindowClosing(MainWindow &window, const EditorContext &context);

    /// Whether the window may close now. Otherwise a question is open, whose answer closes it.
    bool mayClose();
    enum class Ending { Certain, Possible };
    /// The program has to end: photos that have come in stay, studios leave drafts, edits are saved. An
    /// import goes on where the end may still be called off.
    void saveNow(Ending ending);

    /// Asks whether to go on with the drafts of an earlier end, one after another.
    void offerDrafts();
    /// The studio has been left, or its work has become part of the session: a draft that it went on with is
    /// over.
    void endVisit(Drafts::Kind kind);

private:
    bool askToStopExport();
    bool askToLeaveStudio();
    bool askToStopImport();
    bool askToLoseEdits();
    bool asking();
    void centre(Overlay *question);
    void closeLater();
    void offer(Drafts::Kind kind);
    void resume(Drafts::Kind kind);
    void forgetDraft(Drafts::Kind kind);

    MainWindow &m_window;
    EditorContext m_context;
    QPointer<Overlay> m_question;
    bool m_mayStopExport = false;
    bool m_mayLoseEdits = false;
    /// The draft that the open studio went on with, or left when the program was last told to end.
    std::optional<Drafts::Kind> m_resumed;
};

} // namespace tarnovel::app
