#pragma once

#include <QWidget>

#include "app/EditorContext.h"
#include "collage/CollageStudio.h"

class QStackedWidget;

namespace tarnovel::app {

class Segments;

/// The board's settings: of the selected cell, of the page, and of a film strip's edge.
class CollagePanel : public QWidget {
    Q_OBJECT

public:
    CollagePanel(EditorState &state, CollageStudio &studio);

    enum class Tab { Cells, Page, FilmEdge };
    /// A tab that the collage has not counts as the first.
    void showTab(Tab tab);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void showState();

    CollageStudio &m_studio;
    Segments *m_tabs;
    QStackedWidget *m_pages;
    bool m_film = false;
};

} // namespace tarnovel::app
