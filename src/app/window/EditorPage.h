#pragma once

#include <QPointer>

#include "app/EditorContext.h"
#include "app/FileChooser.h"

class QStackedWidget;

namespace tarnovel {
class PhotoLibrary;
}

namespace tarnovel::app {

class CanvasView;
class EditorActions;
class ExportPanel;
class FilmStrip;
class HomeScreen;
class ToolPanel;
class ToolRail;
class TopBar;

/// The window's first page: home, or the picture between strip, panel and rail.
class EditorPage : public QWidget {
    Q_OBJECT

public:
    EditorPage(const EditorContext &context, EditorActions &actions, const FileChooser &chooser,
               PhotoLibrary &library);

    bool atHome() const;
    void showHome();
    void showEditor();
    void showExport(bool shown);
    bool exportShown() const;
    /// Where the window is narrow, the panel is a drawer: it takes its width from the picture's stage only
    /// while it is wanted.
    void showDrawer(bool shown);
    bool drawerShown() const { return m_folded && m_drawer; }

    HomeScreen *home() const { return m_home; }
    CanvasView *canvas() const { return m_canvas; }
    FilmStrip *strip() const { return m_strip; }
    ToolPanel *panel() const { return m_panel; }
    TopBar *bar() const { return m_bar; }
    ExportPanel *exporting() const { return m_export; }
    /// What the veil of a drag covers: stage and strip, or all of home.
    QRect dropArea() const;
    /// Where messages hang: the bottom centre of the picture.
    QPoint toastAnchor() const;
    int stageWidth() const;
    /// The keyboard goes to the next part of the page.
    void focusNextPart(bool forward);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void fold(bool folded);
    void updatePanel();

    EditorContext m_context;
    TopBar *m_bar;
    QStackedWidget *m_body;
    HomeScreen *m_home;
    QWidget *m_editor;
    CanvasView *m_canvas;
    FilmStrip *m_strip;
    ToolPanel *m_panel;
    ToolRail *m_rail;
    ExportPanel *m_export;
    /// Where the keyboard was when the export panel came.
    QPointer<QWidget> m_beforeExport;
    bool m_folded = false;
    bool m_drawer = false;
    /// The tool that the drawer shows, so that a second choice of it closes it.
    std::optional<Tool> m_drawerTool;
};

} // namespace tarnovel::app
