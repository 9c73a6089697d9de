#include <atomic>
#include <thread>

#include <QDeadlineTimer>
#include <QRegularExpression>

#include "base/Cancellation.h"
#include "editor/EditorWorld.h"
#include "handwriting/HandwritingController.h"
#include "handwriting/HandwritingReference.h"
#include "handwriting/Strokes.h"
#include "imaging/ImageEncoder.h"
#include "language/AppLanguage.h"
#include "model/Signature.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tarnovel::test {
namespace {

TEST(Viewport, FitsAndLimitsTheZoom)
{
    HandwritingViewport tall({1000, 2000}, 1);
    tall.layOut({1000, 1000});
    EXPECT_DOUBLE_EQ(tall.minimumZoom(), 0.5);
    EXPECT_DOUBLE_EQ(tall.maximumZoom(), 3);
    EXPECT_DOUBLE_EQ(tall.zoom(), 0.5);
    EXPECT_EQ(tall.insets(), QPointF(250, 0));
    EXPECT_EQ(tall.referenceRect(), QRectF(250, 0, 500, 1000));
    tall.zoomTo(100, {500, 500});
    EXPECT_DOUBLE_EQ(tall.zoom(), 3);
    EXPECT_EQ(tall.insets(), QPointF(0, 0));

    HandwritingViewport small({1000, 1000}, 0.5);
    small.layOut({200, 300});
    EXPECT_DOUBLE_EQ(small.minimumZoom(), 0.2);
    EXPECT_DOUBLE_EQ(small.maximumZoom(), 2);
    small.layOut({});
    EXPECT_DOUBLE_EQ(small.minimumZoom(), 0.2);
    small.layOut({200, 300}, 20);
    EXPECT_EQ(small.referenceRect(), QRectF(20, 70, 160, 160));
    small.zoomTo(2, {100, 150});
    small.pan({1e6, 1e6});
    EXPECT_EQ(small.offset(), QPointF(0, 0)); // zoomed in, the page takes the whole view
}

TEST(Viewport, KeepsItsPlaceWhenTheWindowChanges)
{
    HandwritingViewport viewport({1000, 1400}, 0.8);
    viewport.layOut({700, 700});
    EXPECT_DOUBLE_EQ(viewport.zoom(), 0.5);
    viewport.layOut({1400, 1400});
    EXPECT_DOUBLE_EQ(viewport.zoom(), 1); // still all of it

    viewport.zoomTo(3, {700, 700});
    viewport.pan({-200, 150});
    const QPointF middle = viewport.toReference({700, 700});
    viewport.layOut({900, 700});
    EXPECT_DOUBLE_EQ(viewport.relativeZoom(), 3);
    EXPECT_NEAR(viewport.toReference({450, 350}).x(), middle.x(), 1e-9);
    EXPECT_NEAR(viewport.toReference({450, 350}).y(), middle.y(), 1e-9);
    EXPECT_EQ(viewport.toView(viewport.toReference({12, 34})), QPointF(12, 34));
}

TEST(Viewport, ZoomsAboutThePointerAndStopsAtTheEdges)
{
    HandwritingViewport viewport({1000, 1000}, 0.5);
    viewport.layOut({500, 500});
    const QPointF held = viewport.toReference({400, 100});
    viewport.zoomTo(1.5, {400, 100});
    EXPECT_NEAR(viewport.toReference({400, 100}).x(), held.x(), 1e-9);
    EXPECT_NEAR(viewport.toReference({400, 100}).y(), held.y(), 1e-9);
    viewport.pan({1e6, 1e6});
    EXPECT_EQ(viewport.toReference({0, 0}), QPointF(0, 0));
    viewport.pan({-1e6, -1e6});
    EXPECT_EQ(viewport.toReference({500, 500}), QPointF(1000, 1000));
    viewport.zoomTo(0, {400, 100});
    EXPECT_EQ(viewport.referenceRect(), QRectF(0, 0, 500, 500));
}

/// A studio over the first photo of a library.
class Studio : public EditorWorld {
protected:
    explicit Studio(EditorModel::Load load = EditorModel::Load::StoredSession) : m_model(m_services, load)
    {
        m_model.append(photos(1));
        m_studio.layOut({600, 700}, 2);
    }

    void write(QPointF from, QPointF to)
    {
        m_studio.penDown({from, 0});
        for (int i = 1; i < 20; ++i) {
            m_studio.penMove({from + (to - from) * i / 20, i * 0.008});
        }
        m_studio.penUp({to, 0.16});
    }

    /// Saves and waits; what the user was told, or nothing.
    QString save(HandwritingController &studio)
    {
        bool ended = false;
        QString told;
        QObject context;
        QObject::connect(&studio, &HandwritingController::saved, &context, [&] { ended = true; });
        QObject::connect(&studio, &HandwritingController::saveFailed, &context, [&](const QString &message) {
            ended = true;
            told = message;
        });
        EXPECT_TRUE(studio.save());
        EXPECT_TRUE(studio.saving());
        EXPECT_FALSE(studio.save());
        EXPECT_TRUE(waitFor([&] { return ended; }));
        EXPECT_FALSE(studio.saving());
        return told;
    }

    QString signature() const { return m_model.current()->settings.handwritingFile.value_or(QString()); }

    EditorModel m_model;
    HandwritingController m_studio{m_model, m_clock, {1050, 1400}, 0.9};
};

using Tools = Studio;
using Preview = Studio;
using Saving = Studio;

TEST_F(Tools, BeginAsTheDesignHasThem)
{
    EXPECT_EQ(m_studio.tool(), HandwritingTool::signature);
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
    m_studio.setTool(HandwritingTool::marker);
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
    m_studio.setTool(HandwritingTool::pencil);
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
    m_studio.setTool(HandwritingTool::eraser);
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
    m_studio.setTool(HandwritingTool::eraser);
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
    m_studio.setTool(HandwritingTool::fountain);
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
    m_studio.setTool(HandwritingTool::marker);
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

TEST_F(Saving, AnEmptyPageChangesNothing)
{
    const FrameSettings before = m_model.current()->settings;
    EXPECT_FALSE(m_studio.save());
    write({100, 100}, {400, 300});
    m_studio.undo();
    EXPECT_FALSE(m_studio.save());
    EXPECT_EQ(m_model.current()->settings, before);
    EXPECT_FALSE(m_model.canUndo());
    EXPECT_TRUE(QDir(m_library).entryList({u"handwriting-*"_s}).isEmpty());
}

TEST_F(Saving, PutsThePageOverTheWholeFrame)
{
    m_studio.setColor({1, 0, 0});
    m_studio.setWidth(20);
    write({100, 60}, {400, 60});
    m_studio.setColor({0, 0, 1});
    write({100, 120}, {400, 120});
    EXPECT_EQ(save(m_studio), QString());
    const FrameSettings settings = m_model.current()->settings;
    EXPECT_TRUE(QRegularExpression(u"^handwriting-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.png$"_s)
                    .match(signature())
                    .hasMatch());
    EXPECT_EQ(settings.handwritingAspect, 0.75);
    EXPECT_EQ(settings.handwritingX, 0.5);
    EXPECT_EQ(settings.handwritingY, 0.5);
    EXPECT_EQ(settings.handwritingWidth, 1.0);
    const QImage file(m_library + u'/' + signature());
    EXPECT_EQ(file.size(), QSize(1050, 1400));
    EXPECT_EQ(file.pixel(250, 60), qRgba(255, 0, 0, 255));
    EXPECT_EQ(qAlpha(file.pixel(250, 90)), 0);

    const ExportedFile framed = m_pipeline.exportPhoto(*m_model.current(), {}).result();
    const QImage exported(framed.path);
    const double scale = exported.width() / 1050.0;
    const QColor red = exported.pixelColor(static_cast<int>(250 * scale), static_cast<int>(60 * scale));
    const QColor blue = exported.pixelColor(static_cast<int>(250 * scale), static_cast<int>(120 * scale));
    EXPECT_GT(red.red(), red.blue() + 200);
    EXPECT_GT(blue.blue(), blue.red() + 200);

    m_model.undo();
    EXPECT_EQ(signature(), QString());
    EXPECT_FALSE(m_model.canUndo());
}

TEST_F(Saving, KeepsTheOldFileWhileTheHistoryNeedsIt)
{
    write({100, 60}, {400, 60});
    EXPECT_EQ(save(m_studio), QString());
    const QString first = signature();
    EXPECT_TRUE(waitFor([&] { return !m_model.previews().signature.isNull(); }));
    HandwritingController again(m_model, m_clock, {1050, 1400}, 0.9);
    again.setFinish(HandwritingFinish::rainbow);
    again.penDown({{500, 1300}, 0});
    again.penUp({{600, 1200}, 0.2});
    bool oldShown = true;
    QObject::connect(&again, &HandwritingController::saved, &again,
                     [&] { oldShown = !m_model.previews().signature.isNull(); });
    EXPECT_EQ(save(again), QString());
    EXPECT_FALSE(oldShown);
    EXPECT_TRUE(waitFor([&] { return !m_model.previews().signature.isNull(); }));
    const QString second = signature();
    EXPECT_NE(first, second);
    EXPECT_EQ(stepsBack(m_model), 2);
    m_model.flush();
    QCoreApplication::processEvents();
    EXPECT_TRUE(exists(first));
    m_model.undo();
    EXPECT_EQ(signature(), first);
    m_model.redo();
    EXPECT_EQ(stored().photos.size(), 1);

    for (qsizetype i = 0; i < EditHistory::mostSteps; ++i) {
        m_model.checkpoint();
    }
    m_model.scheduleSave();
    m_model.flush();
    EXPECT_TRUE(waitFor([&] { return !exists(first); }));
    EXPECT_TRUE(exists(second));
    EXPECT_EQ(stored().photos.first().settings.handwritingFile, second);
    m_model.checkpoint();
    m_model.update(withoutSignature(m_model.current()->settings));
    EXPECT_EQ(signature(), QString());
}

TEST_F(Saving, AFailureSaysSoAndChangesNothing)
{
    write({100, 60}, {400, 60});
    const FrameSettings before = m_model.current()->settings;
    m_model.flush();
    ASSERT_TRUE(QDir(m_library).removeRecursively());
    EXPECT_EQ(save(m_studio), u"Could not save handwriting."_s);
    EXPECT_EQ(m_model.current()->settings, before);
    EXPECT_FALSE(m_model.canUndo());
    EXPECT_EQ(m_studio.drawing().size(), 1);

    // The photo went while its signature was being written.
    ASSERT_TRUE(QDir().mkpath(m_library));
    m_studio.save();
    m_model.removeCurrent();
    EXPECT_TRUE(waitFor([&] { return !m_studio.saving(); }));
    EXPECT_TRUE(QDir(m_library).entryList({u"handwriting-*"_s}).isEmpty());
}

TEST_F(Saving, AStudioThatClosesLeavesNoFile)
{
    {
        HandwritingController closing(m_model, m_clock, {1050, 1400}, 0.9);
        closing.penDown({{500, 1300}, 0});
        closing.penUp({{600, 1200}, 0.2});
        EXPECT_TRUE(closing.save());
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(QDir(m_library).entryList({u"handwriting-*"_s}).isEmpty());
    EXPECT_EQ(signature(), QString());
}

TEST_F(Saving, AStudioThatClosesStopsTheWriting)
{
    std::atomic<bool> begun = false;
    std::atomic<bool> stopped = false;
    {
        SignatureSave closing(m_model);
        closing.start([&](const std::stop_token &stop) {
            begun = true;
            const QDeadlineTimer patience(5s);
            while (!stop.stop_requested() && !patience.hasExpired()) {
                std::this_thread::yield();
            }
            stopped = stop.stop_requested();
            QImage image(100, 100, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::black);
            EXPECT_THROW(encodePng(image, stop), OperationCancelled);
            return image;
        });
        EXPECT_TRUE(waitFor([&] { return begun.load(); }));
    }
    EXPECT_TRUE(stopped);
    QCoreApplication::processEvents();
    EXPECT_TRUE(QDir(m_library).entryList({u"handwriting-*"_s}).isEmpty());
    EXPECT_EQ(signature(), QString());
}

TEST_F(Saving, TheReferenceIsTheFrameWithoutItsOldSignature)
{
    PhotoItem item = *m_model.current();
    const HandwritingReference reference = HandwritingReference::of(item);
    EXPECT_EQ(reference.size, QSize(1050, 1400));
    const QRectF photo = CompositionRenderer::photoRect(item, item.settings, reference.size);
    EXPECT_NEAR(reference.focusY, photo.bottom() / 1400, 1e-9);
    const QImage plain = reference.render(m_pipeline, item).result();
    EXPECT_EQ(plain.size(), reference.size);
    write({100, 60}, {400, 60});
    EXPECT_EQ(save(m_studio), QString());
    EXPECT_EQ(reference.render(m_pipeline, *m_model.current()).result(), plain);
}

} // namespace
} // namespace tarnovel::test
