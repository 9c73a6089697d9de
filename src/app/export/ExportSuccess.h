#pragma once

#include <QObject>
#include <QPointer>

namespace tarnovel::app {

class EditorState;
class ExportPanel;
class Overlay;

/// Shows what each export has come to, over the window.
class ExportSuccess : public QObject {
    Q_OBJECT

public:
    ExportSuccess(QWidget &window, ExportPanel &panel, EditorState &state);

private:
    void showFolder();
    void showLibrary();
    void say(const QString &text);

    QWidget &m_window;
    ExportPanel &m_panel;
    EditorState &m_state;
    QPointer<Overlay> m_sheet;
};

} // namespace tarnovel::app
