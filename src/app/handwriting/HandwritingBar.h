#pragma once

#include "app/screens/PageBar.h"

namespace tarnovel {
class HandwritingController;
}

namespace tarnovel::app {

class Button;
class Segments;

/// The bar over the page: leave, draw or move, undo, redo, clear, done.
class HandwritingBar : public PageBar {
    Q_OBJECT

public:
    HandwritingBar();

    /// Shows what the studio has; nobody is told.
    void display(const HandwritingController &studio);

Q_SIGNALS:
    void movingChosen(bool moving);
    void undoAsked();
    void redoAsked();
    void clearAsked();
    void doneAsked();

protected:
    void changeEvent(QEvent *event) override;

private:
    void name();

    Segments *m_mode;
    Button *m_undo;
    Button *m_redo;
    Button *m_clear;
    Button *m_done;
};

} // namespace tarnovel::app
