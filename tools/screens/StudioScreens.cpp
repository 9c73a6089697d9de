#include <QApplication>
#include <QElapsedTimer>

#include "app/collage/CollagePanel.h"
#include "app/collage/CollageScreen.h"
#include "app/handwriting/HandwritingScreen.h"
#include "app/inspector/ColorDots.h"
#include "app/kit/Overlay.h"
#include "collage/CollageStudio.h"
#include "handwriting/HandwritingFinish.h"
#include "screens/Screen.h"
#include "support/RecordedSignature.h"

using namespace Qt::StringLiterals;

namespace tarnovel::screens {

using namespace app;

namespace {

/// Waits until the studio has its pictures.
void settleCollage(World &world)
{
    CollageStudio &studio = *world.window().collage()->studio();
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 10'000 && !studio.settled()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    world.settle();
}

/// A board of the session's first photos.
Screen board(const QString &name, int photos,
             const std::function<void(CollageStudio &, CollageScreen &)> &arrange)
{
    return {name, [photos, arrange](World &world) {
                world.window().showCollage();
                CollageScreen &screen = *world.window().collage();
                CollageStudio &studio = *screen.studio();
                studio.clearPicked();
                for (const PhotoItem &photo : world.model().photos().first(photos)) {
                    studio.toggle(photo.id);
                }
                studio.start();
                arrange(studio, screen);
                settleCollage(world);
                return [&world] { world.window().showEditor(); };
            }};
}

/// The recorded signature under the photo, as wide as half the page.
void sign(HandwritingController &studio)
{
    const QSizeF page = studio.viewport().reference();
    constexpr double recordedWidth = 620;
    const double scale = page.width() * 0.55 / recordedWidth;
    const QPointF corner(page.width() * 0.24, page.height() * 0.8);
    for (QList<InkSample> stroke : test::recordedSignature(TARNOVEL_SOURCE_DIR "/samples/signature.txt")) {
        for (InkSample &sample : stroke) {
            sample.position = corner + sample.position * scale;
        }
        studio.penDown(stroke.first());
        for (const InkSample &sample : stroke.sliced(1)) {
            studio.penMove(sample);
        }
        studio.penUp(stroke.last());
    }
}

/// The handwriting page lies over the window's own pages.
Screen handwriting(const QString &name, const std::function<void(HandwritingScreen &)> &prepare)
{
    return {u"handwriting-"_s + name, [prepare](World &world) {
                auto *screen = new HandwritingScreen(world.context());
                screen->setParent(&world.window());
                screen->setGeometry(world.window().rect());
                screen->show();
                screen->begin();
                prepare(*screen);
                return [screen, &world] {
                    for (Overlay *overlay : world.window().findChildren<Overlay *>()) {
                        overlay->close();
                    }
                    delete screen;
                };
            }};
}

} // namespace

QList<Screen> collageScreens()
{
    return {{u"collage-chooser"_s,
             [](World &world) {
                 world.window().showCollage();
                 CollageStudio &studio = *world.window().collage()->studio();
                 studio.clearPicked();
                 for (const int index : {2, 0, 5}) {
                     studio.toggle(world.model().photos().at(index).id);
                 }
                 return [&world] { world.window().showEditor(); };
             }},
            board(u"collage-board"_s, 5, [](CollageStudio &studio, CollageScreen &) { studio.select(1); }),
            board(u"collage-page"_s, 9,
                  [](CollageStudio &, CollageScreen &screen) {
                      screen.panel()->showTab(CollagePanel::Tab::Page);
                  }),
            board(u"collage-filmstrip"_s, 4, [](CollageStudio &studio, CollageScreen &screen) {
                for (const CollagePreset &preset : studio.presets()) {
                    if (preset.film) {
                        studio.choosePreset(preset.id);
                    }
                }
                screen.panel()->showTab(CollagePanel::Tab::FilmEdge);
            })};
}

QList<Screen> handwritingScreens()
{
    const auto finished = [](HandwritingFinish finish) {
        return [finish](HandwritingScreen &screen) {
            screen.studio()->setTool(HandwritingTool::Fountain);
            screen.studio()->setWidth(10);
            screen.studio()->setColor(inkSwatches().at(10).color);
            sign(*screen.studio());
            screen.studio()->setFinish(finish);
        };
    };
    QList<Screen> screens = {handwriting(u"empty"_s, [](HandwritingScreen &) {}),
                             handwriting(u"color"_s, finished(HandwritingFinish::color)),
                             handwriting(u"rainbow"_s, finished(HandwritingFinish::rainbow)),
                             handwriting(u"glitter"_s, finished(HandwritingFinish::glitter))};
    screens.append(handwriting(u"eraser"_s, [](HandwritingScreen &screen) {
        sign(*screen.studio());
        screen.studio()->setTool(HandwritingTool::Eraser);
    }));
    screens.append(handwriting(u"zoomed"_s, [](HandwritingScreen &screen) {
        sign(*screen.studio());
        screen.studio()->zoomTo(1.2, {200, 400});
        screen.studio()->setColor(inkSwatches().at(2).color);
    }));
    screens.append(handwriting(u"leave"_s, [](HandwritingScreen &screen) {
        sign(*screen.studio());
        screen.leave([] {});
    }));
    screens.append(handwriting(u"picker"_s, [](HandwritingScreen &screen) {
        auto *colors = screen.findChild<ColorDots *>();
        colors->choose(colors->count() - 1);
    }));
    return screens;
}

} // namespace tarnovel::screens
