#pragma once

#include <QObject>

namespace tarnovel {
class EditorModel;
}

namespace tarnovel::app {

class EditorPage;
class EditorState;

/// What is asked before something is done to the shown photo or its style, and what is said of it afterwards.
class PhotoQuestions : public QObject {
    Q_OBJECT

public:
    PhotoQuestions(EditorModel &model, EditorState &state, const EditorPage &page);

    void askRemove();
    void askStyleName();
    void applyToAll();

private:
    EditorModel &m_model;
    EditorState &m_state;
    const EditorPage &m_page;
};

} // namespace tarnovel::app
