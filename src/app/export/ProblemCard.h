#pragma once

#include <QImage>
#include <QWidget>

#include "app/EditorContext.h"
#include "export/ExportRun.h"

namespace tarnovel::app {

class Button;
class Label;
class Switch;

/// What an export waits for: which photo was not written and why, and how to go on.
class ProblemCard : public QWidget {
    Q_OBJECT

public:
    explicit ProblemCard(Thumbnails &thumbnails);

    void show(const ExportProblem &problem);
    using QWidget::show;
    /// The keyboard on what goes on.
    void focusDefault();

Q_SIGNALS:
    void stopAsked();
    void skipAsked(tarnovel::ExportRun::Skipping which);
    void retryAsked();

private:
    class Tint;

    Tint *m_tint;
    Label *m_title;
    Label *m_reason;
    Switch *m_alike;
    Button *m_stop;
    Button *m_skip;
    Button *m_retry;
};

} // namespace tarnovel::app
