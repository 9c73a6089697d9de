#pragma once

#include <functional>
#include <memory>

#include <QList>
#include <QStringList>
#include <QTemporaryDir>

#include "support/AppWorld.h"

namespace tarnovel::screens {

/// A library of its own, filled with the photos of the command line in different looks, as a finished set
/// has.
class World : public test::AppWorld {
public:
    World(const QStringList &photos, int count) : World(std::make_unique<QTemporaryDir>(), photos, count) {}

    /// The next start over a world whose document speaks of something that this version does not know.
    static std::unique_ptr<World> withSessionSetAside(const QStringList &photos, int count);

private:
    World(std::unique_ptr<QTemporaryDir> folder, const QStringList &photos, int count);

    void dress();

    std::unique_ptr<QTemporaryDir> m_folder;
};

/// A state of the window that is drawn.
struct Screen {
    QString name;
    /// Brings the window into the state; what it returns takes it back.
    std::function<std::function<void()>(World &)> show;
};

/// Closes what lies over the window: one that was closed before may not be gone yet.
std::function<void()> closingSheets(World &world);

QList<Screen> homeScreens();
QList<Screen> editorScreens();
/// The editor and home with a signature and a logo on the frame.
QList<Screen> signedScreens();
QList<Screen> collageScreens();
QList<Screen> handwritingScreens();

} // namespace tarnovel::screens
