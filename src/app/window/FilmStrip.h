#pragma once

#include "app/EditorContext.h"
#include "app/window/StripView.h"

namespace tarnovel::app {

class Button;
class Label;

/// The strip with its header.
class FilmStrip : public QWidget {
    Q_OBJECT

public:
    FilmStrip(const PhotosContext &context, EditorState &state);

    StripView *view() const { return m_view; }
    QWidget *removeButton() const;

Q_SIGNALS:
    void previewSetAsked();
    void manageAsked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showPhoto();

    PhotosContext m_context;
    EditorState &m_state;
    Label *m_name;
    Label *m_place;
    StripView *m_view;
    Button *m_remove;
};

} // namespace tarnovel::app
