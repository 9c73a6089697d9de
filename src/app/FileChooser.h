#pragma once

#include <functional>

#include <QStringList>

class QWidget;

namespace tarnovel {
class Preferences;
}

namespace tarnovel::app {

/// Asks the user for files and folders with the desktop's own dialog, without stopping the window. `chosen`
/// is called with what was chosen, or not at all. Tests put their own in its place.
struct FileChooser {
    using Files = std::function<void(const QStringList &files)>;
    using Folder = std::function<void(const QString &folder)>;

    std::function<void(QWidget *window, Files chosen)> photos;
    /// One picture.
    std::function<void(QWidget *window, Files chosen)> picture;
    std::function<void(QWidget *window, Folder chosen)> folder;

    /// The preferences remember where one was last, for photos and for exports apart.
    static FileChooser dialogs(Preferences &preferences);
};

} // namespace tarnovel::app
