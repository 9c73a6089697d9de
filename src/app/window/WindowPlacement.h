#pragma once

#include <QObject>

#include "model/Preferences.h"

class QWidget;

namespace tarnovel::app {

/// Where the window stands: as it was left, and on the first start of all at a size that shows the program
/// well.
class WindowPlacement : public QObject {
    Q_OBJECT

public:
    WindowPlacement(QWidget &window, Preferences &preferences);

    /// To be called before the window is first shown.
    void restore();
    /// To be called once it has been shown.
    void shown();
    void remember();

private:
    void sizeFirstWindow();

    QWidget &m_window;
    Preferences &m_preferences;
};

} // namespace tarnovel::app
