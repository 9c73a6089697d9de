#pragma once

#include <functional>
#include <memory>
#include <stop_token>

#include <QUuid>
#include <QWidget>

#include "app/EditorContext.h"
#include "app/handwriting/HandwritingKeys.h"
#include "handwriting/HandwritingController.h"

namespace tarnovel::app {

class Button;
class HandwritingBar;
class HandwritingTools;
class InkCanvas;
class WritingGuide;
class ZoomControl;

/// The page where one signs on the frame of the current photo.
class HandwritingScreen : public QWidget {
    Q_OBJECT

public:
    explicit HandwritingScreen(const EditorContext &context);
    ~HandwritingScreen() override;

    /// Starts afresh over the current photo, unless the last visit was broken off with strokes on its page:
    /// that one goes on, on its own photo. False, with nothing begun, when there is no photo.
    bool begin();
    /// Begins with the strokes of a draft; false, with nothing begun, when it cannot be read or its photo has
    /// gone.
    bool resume(const QByteArray &draft);
    /// What `resume` goes on from; empty when nothing is written.
    QByteArray draft();
    /// Whether leaving now would lose strokes.
    bool hasUnsavedInk() const;
    /// Calls `then` once nothing is lost by it: at once for an empty page, otherwise when the user agrees to
    /// give the strokes up. While a signature is being saved it does nothing.
    void leave(std::function<void()> then);

    /// The running visit, or none.
    HandwritingController *studio() const { return m_studio.get(); }

Q_SIGNALS:
    /// The user leaves, and nothing has changed.
    void closeAsked();
    /// The signature is the photo's.
    void finished();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool event(QEvent *event) override;

private:
    bool resume();
    void connectBars();
    void connectStudio();
    void renderReference();
    void display(HandwritingController::Changes changes);
    void placeNotes();
    void openGuide();
    void close();
    void done();
    void end();
    HandwritingKeys makeKeys();
    void take(HandwritingTool tool);
    void hold(bool moving);

    EditorContext m_context;
    HandwritingKeys m_keys;
    QUuid m_photo;
    std::unique_ptr<HandwritingController> m_studio;
    std::stop_source m_stop;
    /// The space bar is down and moves the page.
    bool m_held = false;
    HandwritingBar *m_bar;
    InkCanvas *m_canvas;
    HandwritingTools *m_tools;
    WritingGuide *m_guide;
    Button *m_guideButton;
    ZoomControl *m_zoom;
};

} // namespace tarnovel::app
