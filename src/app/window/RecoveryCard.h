#pragma once

#include <QWidget>

#include "app/EditorContext.h"

namespace tarnovel::app {

class Button;
class Label;

/// A session that could not be read and is kept: what of it can be brought back, and what else can be done.
/// It is hidden where there is none.
class RecoveryCard : public QWidget {
    Q_OBJECT

public:
    RecoveryCard(const PhotosContext &context, EditorState &state);

    static constexpr int cardHeight = 208;
    /// Looks at what the model keeps.
    void refresh();
    bool offered() const { return !m_context.model.setAside().isEmpty(); }
    void focusDefault();

Q_SIGNALS:
    /// Photos are back in the session.
    void restored();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    class Frames;

    void restore();
    void askDiscard();

    PhotosContext m_context;
    EditorState &m_state;
    QString m_shown;
    SalvagedSession m_found;
    Label *m_summary;
    Label *m_file;
    Frames *m_frames;
    Button *m_discard;
    Button *m_show;
    Button *m_restore;
};

} // namespace tarnovel::app
