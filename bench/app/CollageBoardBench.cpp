// The collage board's own repaint, with its rings and handles, against drawing the collage alone: nine photos
// of 24 megapixels on the offscreen platform at device ratio 2.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPainter>

#include "app/collage/CollageBoard.h"
#include "app/collage/CollageScreen.h"
#include "app/kit/Motion.h"
#include "app/kit/Theme.h"
#include "support/LibraryWorld.h"

using namespace Qt::StringLiterals;

namespace tarnovel::bench {
namespace {

using namespace app;

constexpr int photoCount = 9;
constexpr int repaints = 120;

struct World : LibraryWorld {
    World() : LibraryWorld(EditorModel::Load::Empty) {}

    SettingsEdits edits{model, clock};
    ImportFlow imports{model, pipeline};
    Thumbnails thumbnails{pipeline};
    EditorState state;
    CollageScreen screen{{model, edits, imports, thumbnails, pipeline, preferences, clock, state}, {}};
};

void settle(World &world)
{
    while (!world.screen.studio()->settled()) {
        world.screen.board()->update();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
}

void open(World &world)
{
    for (int i = 0; i < photoCount; ++i) {
        world.append(u"%1.jpg"_s.arg(i));
    }
    world.screen.resize(1440, 920);
    world.screen.begin();
    world.screen.show();
    for (const PhotoItem &photo : world.model.photos()) {
        world.screen.studio()->toggle(photo.id);
    }
    world.screen.studio()->start();
    QCoreApplication::processEvents();
    settle(world);
}

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void send(CollageBoard &board, QEvent::Type type, QPointF at)
{
    QMouseEvent event(type, at, board.mapToGlobal(at), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
    QCoreApplication::sendEvent(&board, &event);
}

/// Repaints the widget after each move of the hand, and draws the same collage into a picture of its size.
void measure(const char *what, World &world, const std::function<void(int)> &move)
{
    CollageBoard &board = *world.screen.board();
    QImage canvas((QSizeF(board.size()) * 2).toSize(), QImage::Format_RGB32);
    std::vector<double> widget;
    std::vector<double> drawing;
    // By the clock: the painter shares its work with threads of its own.
    QElapsedTimer timer;
    for (int i = 0; i < repaints; ++i) {
        timer.start();
        move(i);
        board.repaint(board.boardRect().toAlignedRect().adjusted(-6, -6, 6, 6));
        widget.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        timer.start();
        QPainter painter(&canvas);
        world.screen.studio()->board().draw(painter);
        painter.end();
        drawing.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(widget.begin(), widget.end());
    std::printf("%-32s %5.1f ms (95 %%: %5.1f; budget 8) / %5.1f ms = %4.2f\n", what, median(widget),
                widget[widget.size() * 95 / 100], median(drawing), median(widget) / median(drawing));
}

void run(World &world)
{
    CollageBoard &board = *world.screen.board();
    const QPointF handle = QRectF(board.itemRect(photoCount)).center();
    std::printf("\nTime by the clock, medians: collage board of %.0f × %.0f points at ratio "
                "%.0f, event and repaint / collage alone\n",
                board.boardRect().width(), board.boardRect().height(), board.devicePixelRatioF());
    measure("at rest", world, [](int) {});
    send(board, QEvent::MouseButtonPress, handle);
    measure("dragging a divider", world, [&](int i) {
        const double way = 60 * std::sin(i * 0.05);
        send(board, QEvent::MouseMove, handle + QPointF(way, way));
    });
    send(board, QEvent::MouseButtonRelease, handle);
    const QPointF cell = QRectF(board.itemRect(4)).center();
    send(board, QEvent::MouseButtonPress, cell);
    measure("panning a photo", world,
            [&](int i) { send(board, QEvent::MouseMove, cell + QPointF(10 + 0.4 * i, 0)); });
    send(board, QEvent::MouseButtonRelease, cell);
}

} // namespace
} // namespace tarnovel::bench

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", "2");
    const QApplication application(argc, argv);
    tarnovel::app::applyTheme(false);
    tarnovel::app::Motion::setReduced(true);
    tarnovel::bench::World world;
    tarnovel::bench::open(world);
    tarnovel::bench::run(world);
    return 0;
}
