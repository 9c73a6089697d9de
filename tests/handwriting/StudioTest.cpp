#include <atomic>
#include <thread>

#include <QDeadlineTimer>
#include <QRegularExpression>

#include "base/Cancellation.h"
#include "handwriting/HandwritingReference.h"
#include "handwriting/Strokes.h"
#include "handwriting/Studio.h"
#include "imaging/ImageEncoder.h"
#include "language/AppLanguage.h"
#include "model/Signature.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tarnovel::test {
namespace {

using Tools = Studio;
using Preview = Studio;

TEST_F(Tools, BeginAsTheDesignHasThem)
{
    EXPECT_EQ(m_studio.tool(), HandwritingTool::Signature);
    EXPECT_EQ(m_studio.color(), softBlack);
    EXPECT_EQ(m_studio.width(), 6);
    EXPECT_EQ(m_studio.finish(), HandwritingFinish::color);
    EXPECT_FALSE(m_studio.moving());
    m_studio.setWidth(99);
    EXPECT_EQ(m_studio.width(), 24);
    m_studio.setWidth(-1);
    EXPECT_EQ(m_studio.width(), 1);
    m_studio.setWidth(std::nan(""));
    EXPECT_EQ(m_studio.width(), 1);
    EXPECT_DOUBLE_EQ(m_studio.cursorDiameter(), m_studio.viewport().zoom());
    EXPECT_EQ(inkSwatches().size(), 14);
    for (const AppLanguage language : {AppLanguage::chinese, AppLanguage::english, AppLanguage::french}) {
        setLanguageSources({[language] { return languageName(language); }, {}});
        std::set<QString> titles = {handwritingGuide(), eraserHint()};
        for (const HandwritingTool tool : handwritingTools) {
            titles.insert(handwritingToolTitle(tool));
        }
        EXPECT_EQ(titles.size(), 7U);
    }
    setLanguageSources({});
}

TEST_F(Tools, WriteInTheirOwnWayAndMoveWithoutWriting)
{
    const Ink red = {1, 0, 0};
    m_studio.setColor(red);
    m_studio.setTool(HandwritingTool::Marker);
    m_studio.setWidth(10);
    write({100, 100}, {400, 100});
    ASSERT_EQ(m_studio.drawing().size(), 1);
    const InkStroke stroke = m_studio.drawing().first()->stroke;
    EXPECT_EQ(stroke.pen, InkPen::marker);
    EXPECT_EQ(stroke.color, red);
    EXPECT_EQ(stroke.width, 10);
    EXPECT_EQ(stroke.zoom, m_studio.viewport().zoom());
    EXPECT_EQ(stroke.samples.size(), 21);

    m_studio.setMoving(true);
    write({100, 200}, {400, 200});
    EXPECT_EQ(m_studio.drawing().size(), 1);
    m_studio.setMoving(false);

    // A second finger takes the first one's stroke back; changing the tool ends it.
    m_studio.penDown({{100, 300}, 0});
    m_studio.penMove({{200, 300}, 0.1});
    m_studio.penCancel();
    m_studio.penMove({{300, 300}, 0.2});
    EXPECT_EQ(m_studio.drawing().size(), 1);
    m_studio.penDown({{100, 300}, 0});
    m_studio.penMove({{200, 300}, 0.1});
    m_studio.setTool(HandwritingTool::Pencil);
    EXPECT_FALSE(m_studio.penIsDown());
    EXPECT_EQ(m_studio.drawing().size(), 2);
    EXPECT_EQ(m_studio.drawing().last()->stroke.pen, InkPen::marker);
    m_studio.penDown({{std::nan(""), 0}, 0});
    m_studio.penUp({{std::nan(""), 0}, 0});
    EXPECT_EQ(m_studio.drawing().size(), 2);
}

TEST_F(Tools, LeaveNothingBesideThePage)
{
    m_studio.setWidth(24);
    write({-60, 300}, {-60, 300});
    write({1300, 300}, {1200, 1500});
    write({-200, 40}, {40, -200}); // about the corner: only the bounds of it meet the page
    EXPECT_TRUE(m_studio.isEmpty());
    EXPECT_FALSE(m_studio.canUndo());
    EXPECT_FALSE(m_studio.save());
    QImage bare(m_studio.ink().size(), m_studio.ink().format());
    bare.fill(Qt::transparent);
    EXPECT_EQ(m_studio.ink(), bare);
    write({-8, 300}, {-8, 500}); // the nib reaches in
    EXPECT_EQ(m_studio.drawing().size(), 1);
    write({-100, 700}, {1200, 700});
    EXPECT_EQ(m_studio.drawing().size(), 2);
}

TEST_F(Tools, EraseByTheToolOrTheOtherEndOfThePen)
{
    write({100, 100}, {400, 100});
    write({100, 200}, {400, 200});
    m_studio.penDown({{250, 80}, 0}, HandwritingController::PenEnd::Eraser);
    m_studio.penMove({{250, 220}, 0.01});
    m_studio.penUp({{250, 220}, 0.02});
    EXPECT_TRUE(m_studio.isEmpty());
    m_studio.undo();
    EXPECT_EQ(m_studio.drawing().size(), 2);
    m_studio.setTool(HandwritingTool::Eraser);
    write({250, 90}, {260, 110});
    EXPECT_EQ(m_studio.drawing().size(), 1);
    m_studio.clear();
    EXPECT_TRUE(m_studio.isEmpty());
    EXPECT_FALSE(m_studio.canRedo());
    m_studio.undo();
    m_studio.undo();
    m_studio.undo();
    EXPECT_EQ(m_studio.drawing().size(), 1);
    EXPECT_TRUE(m_studio.canUndo());
    m_studio.redo();
    EXPECT_EQ(m_studio.drawing().size(), 2);
}

TEST_F(Tools, GiveBackWhatAGestureErased)
{
    write({100, 100}, {400, 100});
    write({100, 200}, {400, 200});
    write({100, 300}, {400, 300});
    m_studio.undo();
    const InkDrawing before = m_studio.drawing();
    const QImage shown = m_studio.ink();
    m_studio.setTool(HandwritingTool::Eraser);
    m_studio.penDown({{250, 80}, 0});
    m_studio.penMove({{250, 150}, 0.01});
    m_studio.penMove({{250, 220}, 0.02});
    EXPECT_TRUE(m_studio.isEmpty());
    m_studio.penCancel();
    EXPECT_FALSE(m_studio.penIsDown());
    EXPECT_EQ(m_studio.drawing(), before);
    EXPECT_EQ(m_studio.ink(), shown);
    m_studio.redo();
    EXPECT_EQ(m_studio.drawing().size(), 3);
    // A touch that met no ink has nothing to give back.
    m_studio.penDown({{250, 600}, 0});
    m_studio.penCancel();
    EXPECT_EQ(m_studio.drawing().size(), 3);
    for (int i = 0; i < 3; ++i) {
        m_studio.undo();
    }
    EXPECT_TRUE(m_studio.isEmpty());
    EXPECT_FALSE(m_studio.canUndo());
}

TEST_F(Tools, ShowTheInkOfTheViewAtEveryZoom)
{
    m_studio.setTool(HandwritingTool::Fountain);
    for (int i = 0; i < 30; ++i) { // enough for the view to be drawn on another thread
        m_studio.penDown({{100, 20.0 * i}, 0});
        for (int step = 1; step < 200; ++step) {
            m_studio.penMove({{100 + 4.0 * step, 20.0 * i + 15 * std::sin(step * 0.4)}, step * 0.008});
        }
        m_studio.penUp({{900, 20.0 * i}, 1.6});
    }
    m_studio.zoomTo(1.2, {300, 100});
    m_studio.pan({33.5, 20});
    write({300, 300}, {500, 900});
    const auto sharp = [this] {
        const HandwritingViewport &viewport = m_studio.viewport();
        const double scale = viewport.zoom() * 2;
        const QPointF origin((viewport.offset() * 2).toPoint());
        return InkRenderer::render(m_studio.drawing(), {origin / scale, QSizeF(1200, 1400) / scale}, scale);
    };
    EXPECT_TRUE(waitFor([&] { return m_studio.ink() == sharp(); }));

    // A stroke that is being written when the sharp view comes stays on it.
    m_studio.zoomTo(1.3, {300, 100});
    InkStroke live{InkPen::fountain, m_studio.color(), m_studio.width(), m_studio.viewport().zoom(), {}};
    InkPathBuilder path(live);
    for (int step = 0; step < 30; ++step) {
        const InkSample sample{{250.0 + 4 * step, 120.0 + step}, step * 0.008};
        step == 0 ? m_studio.penDown(sample) : m_studio.penMove(sample);
        live.samples.append(sample);
        path.append(sample);
    }
    const auto withLive = [&] {
        InkSurface surface;
        surface.setView({m_studio.ink().size(), (m_studio.viewport().offset() * 2).toPoint(),
                         m_studio.viewport().zoom() * 2},
                        m_studio.drawing());
        surface.write(live, path);
        return surface.image();
    };
    EXPECT_TRUE(waitFor([&] { return m_studio.ink() == withLive(); }));
    EXPECT_NE(m_studio.ink(), sharp());
    m_studio.penCancel();
    m_studio.pan({-40, -100});
    EXPECT_EQ(m_studio.ink(), sharp());
    m_studio.undo();
    EXPECT_EQ(m_studio.ink(), sharp());
}

TEST_F(Preview, ComesAfterAPauseAtHalfSize)
{
    int shown = 0;
    QObject::connect(&m_studio, &HandwritingController::changed, &m_studio,
                     [&](HandwritingController::Changes changes) {
                         shown += changes.testFlag(HandwritingController::PreviewChanged) ? 1 : 0;
                     });
    write({100, 100}, {400, 300});
    m_clock.advance(100ms);
    EXPECT_TRUE(m_studio.preview().isNull()); // plain strokes are their own preview
    m_studio.setFinish(HandwritingFinish::glitter);
    EXPECT_TRUE(waitFor([&] { return shown == 1; }));
    EXPECT_EQ(m_studio.preview(),
              finishedImage(m_studio.drawing(), {HandwritingFinish::glitter, softBlack}, {1050, 1400}, 0.5));

    // A burst is drawn once, and the older picture stays until then.
    const QImage before = m_studio.preview();
    write({100, 500}, {400, 300});
    m_clock.advance(37ms);
    write({100, 700}, {400, 300});
    m_clock.advance(37ms);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_studio.preview(), before);
    m_clock.advance(1ms);
    EXPECT_TRUE(waitFor([&] { return shown == 2; }));
    EXPECT_EQ(m_studio.preview(),
              finishedImage(m_studio.drawing(), {HandwritingFinish::glitter, softBlack}, {1050, 1400}, 0.5));

    m_studio.clear();
    m_clock.advance(38ms);
    EXPECT_TRUE(waitFor([&] { return m_studio.preview().isNull(); }));
    m_studio.undo();
    m_clock.advance(38ms);
    m_studio.setFinish(HandwritingFinish::color); // overtakes the task
    EXPECT_TRUE(m_studio.preview().isNull());
    const int last = shown;
    m_studio.setFinish(HandwritingFinish::rainbow);
    EXPECT_TRUE(waitFor([&] { return shown > last; }));
    EXPECT_EQ(shown, last + 1);
    EXPECT_EQ(m_studio.preview(),
              finishedImage(m_studio.drawing(), {HandwritingFinish::rainbow, softBlack}, {1050, 1400}, 0.5));
}

TEST_F(Preview, LeavesItsStrokesOutOfTheInk)
{
    const auto blank = [this] {
        QImage image(m_studio.ink().size(), m_studio.ink().format());
        image.fill(Qt::transparent);
        return m_studio.ink() == image;
    };
    m_studio.setTool(HandwritingTool::Marker);
    m_studio.setFinish(HandwritingFinish::glitter);
    write({100, 100}, {400, 300});
    EXPECT_FALSE(blank()); // there is no picture yet
    m_clock.advance(38ms);
    EXPECT_TRUE(waitFor([&] { return !m_studio.preview().isNull(); }));
    EXPECT_TRUE(blank());

    m_studio.penDown({{100, 300}, 0});
    m_studio.penMove({{400, 100}, 0.1});
    EXPECT_FALSE(blank());
    m_studio.penCancel();
    EXPECT_TRUE(blank());

    // What has dried since the picture was made lies above it until the next one.
    const double zoom = m_studio.viewport().minimumZoom();
    write({100, 500}, {400, 300});
    m_studio.zoomTo(2 * zoom, {300, 300});
    m_studio.zoomTo(zoom, {300, 300});
    const QPointF first = m_studio.viewport().toView({250, 200}) * 2;
    const QPointF second = m_studio.viewport().toView({250, 400}) * 2;
    EXPECT_EQ(m_studio.ink().pixel(first.toPoint()), 0U);
    EXPECT_GT(qAlpha(m_studio.ink().pixel(second.toPoint())), 100);
    m_clock.advance(38ms);
    EXPECT_TRUE(waitFor(blank));
    m_studio.undo();
    m_studio.redo();
    EXPECT_TRUE(blank());

    m_studio.setFinish(HandwritingFinish::color);
    EXPECT_GT(qAlpha(m_studio.ink().pixel(first.toPoint())), 100);
    EXPECT_GT(qAlpha(m_studio.ink().pixel(second.toPoint())), 100);
}

} // namespace
} // namespace tarnovel::test
