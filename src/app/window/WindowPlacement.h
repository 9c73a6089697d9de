#pragma once

#include <QMargins>
#include <QObject>
#include <QRect>

#include "model/Preferences.h"

class QWidget;

namespace tarnovel::app {

/// Where the window stands: as it was left, and on the first start of all at a size that shows the program
/// well. It stays on the screen with its frame, and may be as small as the screen makes it.
class WindowPlacement : public QObject {
    Q_OBJECT

public:
    WindowPlacement(QWidget &window, Preferences &preferences);

    /// To be called before the window is first shown.
    void restore();
    /// To be called once it has been shown.
    void shown();
    void remember();

    /// The window's smallest size where this much room is on the screen, its frame not counted.
    static QSize smallestSize(QSize room);
    /// `geometry` moved, and made smaller where it must be, until it lies in `available` with a frame of
    /// these margins around it.
    static QRect held(const QRect &geometry, const QRect &available, const QMargins &frame);

private:
    void sizeFirstWindow();
    void followScreen();
    QRect available() const;
    QMargins frame() const;
    void hold();

    QWidget &m_window;
    Preferences &m_preferences;
    /// As restored, until the window is shown.
    QSize m_restored;
};

} // namespace tarnovel::app
