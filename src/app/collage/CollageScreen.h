#pragma once

#include <memory>

#include <QPointer>
#include <QWidget>

#include "app/EditorContext.h"
#include "app/FileChooser.h"
#include "collage/CollageStudio.h"

class QStackedWidget;
class QVBoxLayout;

namespace tarnovel::app {

class CollageBar;
class CollageBoard;
class CollageChooser;
class CollagePanel;
class LayoutStrip;
class LimitNotice;
class Overlay;
class PhotoColumn;

/// The collage studio, which fills the window: the chooser, then the board. Each visit has a studio of its
/// own.
class CollageScreen : public QWidget {
    Q_OBJECT

public:
    CollageScreen(const EditorContext &context, FileChooser chooser);
    ~CollageScreen() override;

    /// Starts a visit with nothing chosen; one that is still open is given up.
    void begin();
    /// Files that were dropped on the window: they join the photos on offer and those chosen.
    void addFiles(const QStringList &paths);
    /// Leaves, after a question if an arranged board would be lost.
    /// `then` is called once the visit has ended.
    void askToClose(const std::function<void()> &then = {});

    /// Null before the first visit and after each.
    CollageStudio *studio() const { return m_studio.get(); }
    /// For the current visit.
    CollageBoard *board() const { return m_board; }
    CollagePanel *panel() const { return m_panel; }

Q_SIGNALS:
    /// The visit is over without a collage.
    void closeAsked();
    /// The collage is the session's first photo.
    void finished();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;

private:
    QWidget *makeBoardPage();
    void studioChanged(CollageStudio::Changes changes);
    void showPhase();
    void chooseFiles();
    void replaceFromFile(int slot);
    void leave();
    /// Lets go of the visit's screens and studio.
    void end();
    void place();

    EditorContext m_context;
    FileChooser m_files;
    std::unique_ptr<CollageStudio> m_studio;
    /// A save that was given up may still be in one of its steps; its studio waits for that off the screen's
    /// way, until the next visit.
    std::shared_ptr<CollageStudio> m_retired;
    QVBoxLayout *m_column;
    QWidget *m_visit = nullptr;
    QStackedWidget *m_pages = nullptr;
    CollageBar *m_bar = nullptr;
    CollageChooser *m_chooser = nullptr;
    PhotoColumn *m_photos = nullptr;
    CollageBoard *m_board = nullptr;
    LayoutStrip *m_layouts = nullptr;
    CollagePanel *m_panel = nullptr;
    Toast *m_toast;
    LimitNotice *m_limit;
    QPointer<Overlay> m_question;
    /// There is something on the board that closing would lose.
    bool m_arranged = false;
};

} // namespace tarnovel::app
