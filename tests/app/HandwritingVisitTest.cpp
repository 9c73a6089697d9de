#include <QAccessible>
#include <QApplication>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTest>
#include <QWheelEvent>

#include "app/HandwritingWorld.h"
#include "app/handwriting/HandwritingBar.h"
#include "app/handwriting/HandwritingScreen.h"
#include "app/handwriting/HandwritingTools.h"
#include "app/handwriting/InkCanvas.h"
#include "app/handwriting/StageNotes.h"
#include "app/handwriting/ToolTiles.h"
#include "app/inspector/ColorDots.h"
#include "app/kit/Button.h"
#include "app/kit/Field.h"
#include "app/kit/Overlay.h"
#include "handwriting/HandwritingReference.h"

namespace tarnovel::test {
namespace {

TEST_F(HandwritingScreenTest, TheWheelThePlusKeyAndTheSpaceBarMoveThePage)
{
    const auto wheel = [this](QPoint by, Qt::KeyboardModifiers keys) {
        const QPointF place(500, 200);
        QWheelEvent event(place, canvas()->mapToGlobal(place), {}, by, Qt::NoButton, keys, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(canvas(), &event);
    };
    const HandwritingViewport &viewport = studio().viewport();
    wheel({0, 120 * 8}, Qt::ControlModifier);
    EXPECT_GT(viewport.relativeZoom(), 2);
    const QPointF before = viewport.offset();
    wheel({0, -120}, {});
    EXPECT_GT(viewport.offset().y(), before.y());
    drag({700, 300}, {700, 200}, Qt::MiddleButton);
    EXPECT_TRUE(drawing().isEmpty());
    const QPointF moved = viewport.offset();
    EXPECT_NEAR(moved.y(), before.y() + 64 + 100, 1);
    QTest::keyPress(canvas(), Qt::Key_Space);
    EXPECT_TRUE(studio().moving());
    drag({700, 200}, {700, 250});
    QTest::keyRelease(canvas(), Qt::Key_Space);
    EXPECT_FALSE(studio().moving());
    EXPECT_NEAR(viewport.offset().y(), moved.y() - 50, 1);
    EXPECT_TRUE(drawing().isEmpty());
    QTest::keyClick(canvas(), Qt::Key_0, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(viewport.relativeZoom(), 1);
    QTest::keyClick(canvas(), '+');
    EXPECT_DOUBLE_EQ(viewport.relativeZoom(), 1.25);
    EXPECT_EQ(button(u"wholePage"_s)->accessibleName(), u"125 %"_s);
}

TEST_F(HandwritingScreenTest, TheSpaceBarDoesNotEndAStroke)
{
    QTest::mousePress(canvas(), Qt::LeftButton, {}, at(0.2, 0.5).toPoint());
    QTest::mouseMove(canvas(), at(0.3, 0.5).toPoint());
    QTest::keyPress(canvas(), Qt::Key_Space);
    EXPECT_FALSE(studio().moving());
    EXPECT_TRUE(studio().penIsDown());
    QTest::mouseMove(canvas(), at(0.5, 0.5).toPoint());
    QTest::keyRelease(canvas(), Qt::Key_Space);
    QTest::mouseRelease(canvas(), Qt::LeftButton, {}, at(0.6, 0.5).toPoint());
    ASSERT_EQ(drawing().size(), 1);
    const double end = drawing().first()->stroke.samples.last().position.x();
    EXPECT_NEAR(end / studio().viewport().reference().width(), 0.6, 0.005);
    QTest::keyPress(canvas(), Qt::Key_Space);
    EXPECT_TRUE(studio().moving());
    QTest::keyRelease(canvas(), Qt::Key_Space);
    EXPECT_FALSE(studio().moving());
}

TEST_F(HandwritingScreenTest, ShowsTranslucentInkAsItIsSaved)
{
    const QPoint place = at(0.5, 0.5).toPoint();
    const auto seen = [&] { return canvas()->grab().toImage().pixelColor(place); };
    waitFor([&] { return seen().saturation() > 100; });
    const QColor photo = seen();
    studio().setTool(HandwritingTool::Marker);
    studio().setWidth(24);
    studio().setFinish(HandwritingFinish::rainbow);
    drag(at(0.3, 0.5), at(0.7, 0.5));
    m_clock.advance(std::chrono::milliseconds(38));
    ASSERT_TRUE(waitFor([&] { return !studio().preview().isNull(); }));
    const QSize page = studio().viewport().reference().toSize();
    const QImage saved = finishedImage(drawing(), {HandwritingFinish::rainbow, {}}, page, 1);
    const QColor ink = saved.pixelColor(page.width() / 2, page.height() / 2);
    ASSERT_NEAR(ink.alphaF(), 0.5, 0.02);
    const auto over = [&ink](int above, int below) {
        return ink.alphaF() * above + (1 - ink.alphaF()) * below;
    };
    EXPECT_NEAR(seen().red(), over(ink.red(), photo.red()), 6);
    EXPECT_NEAR(seen().green(), over(ink.green(), photo.green()), 6);
    EXPECT_NEAR(seen().blue(), over(ink.blue(), photo.blue()), 6);
}

TEST_F(HandwritingScreenTest, KeysReachEveryToolFromTheWholeScreen)
{
    auto *tools = m_screen.findChild<HandwritingTools *>();
    const double ring = studio().cursorDiameter();
    EXPECT_GE(canvas()->cursor().pixmap().deviceIndependentSize().width(), ring);
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(canvas(), static_cast<char>('1' + i));
        EXPECT_EQ(studio().tool(), handwritingTools.at(static_cast<size_t>(i)));
    }
    EXPECT_FALSE(tools->findChild<ColorDots *>()->isVisible()); // the eraser has no colour
    QTest::keyClick(canvas(), '1');
    EXPECT_TRUE(tools->findChild<ColorDots *>()->isVisible());
    QTest::keyClick(canvas(), ']');
    EXPECT_EQ(studio().width(), 7);
    // A number that is typed leaves the keyboard where it was: what follows is the page's again.
    auto *width = tools->findChild<NumberField *>();
    canvas()->setFocus();
    QTest::mouseClick(width, Qt::LeftButton);
    QCoreApplication::processEvents();
    QTest::keyClicks(width, u"14"_s);
    QTest::keyClick(width, Qt::Key_Return);
    EXPECT_EQ(QApplication::focusWidget(), canvas());
    QTest::keyClick(QApplication::focusWidget(), '2');
    EXPECT_EQ(studio().width(), 14);
    EXPECT_EQ(studio().tool(), handwritingTools.at(1));
    QTest::keyClick(canvas(), Qt::Key_M);
    EXPECT_TRUE(studio().moving());
    QTest::keyClick(canvas(), Qt::Key_E);
    EXPECT_FALSE(studio().moving());
    EXPECT_EQ(studio().tool(), HandwritingTool::Eraser);

    // The rows of tiles are stops of the Tab key, and the arrows choose in them.
    for (ToolTiles *tiles : tools->findChildren<ToolTiles *>()) {
        EXPECT_TRUE(tiles->focusPolicy() & Qt::TabFocus);
        EXPECT_FALSE(tiles->accessibleName().isEmpty());
        tiles->setFocus(Qt::TabFocusReason);
        QTest::keyClick(tiles, Qt::Key_Home);
        QTest::keyClick(tiles, Qt::Key_Right);
    }
    EXPECT_EQ(studio().tool(), HandwritingTool::Fountain);
    EXPECT_EQ(studio().finish(), HandwritingFinish::rainbow);
    m_screen.findChild<ColorDots *>()->choose(3);
    EXPECT_EQ(studio().color(), inkSwatches().at(3).color);
    for (QWidget *widget : m_screen.findChildren<QWidget *>()) {
        if (widget->focusPolicy() != Qt::NoFocus && widget->isVisible()) {
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
        }
    }
}

TEST_F(HandwritingScreenTest, TheDropperTakesInkFromThePhoto)
{
    auto *colors = m_screen.findChild<ColorDots *>();
    waitFor([&] { return canvas()->grab().toImage().pixelColor(at(0.5, 0.5).toPoint()).saturation() > 100; });
    m_state.pickColor([colors](const QColor &color) { Q_EMIT colors->chosenColor(color); });
    QTest::mouseClick(canvas(), Qt::LeftButton, {}, at(0.5, 0.5).toPoint());
    EXPECT_TRUE(drawing().isEmpty());
    EXPECT_FALSE(m_state.colorTaker());
    EXPECT_GT(QColor::fromRgbF(static_cast<float>(studio().color().r), static_cast<float>(studio().color().g),
                               static_cast<float>(studio().color().b))
                  .saturation(),
              100);
}

TEST_F(HandwritingScreenTest, LeavingAsksOnlyWhenInkWouldBeLost)
{
    EXPECT_TRUE(m_screen.findChild<WritingGuide *>()->isVisible());
    QTest::mouseClick(button(u"done"_s), Qt::LeftButton);
    EXPECT_EQ(m_closed, 1);
    EXPECT_FALSE(m_model.canUndo());
    ASSERT_TRUE(m_screen.begin());
    drag(at(0.2, 0.9), at(0.6, 0.8));
    EXPECT_FALSE(m_screen.findChild<WritingGuide *>()->isVisible());
    // The window has shown something else, and another photo, in between.
    m_model.select(m_model.photos().last().id);
    ASSERT_TRUE(m_screen.begin());
    EXPECT_EQ(drawing().size(), 1);
    EXPECT_EQ(m_model.current()->id, m_model.photos().first().id);
    QTest::keyClick(canvas(), Qt::Key_Escape);
    EXPECT_EQ(m_closed, 1);
    auto *question = m_screen.window()->findChild<Overlay *>();
    ASSERT_TRUE(question);
    QTest::keyClick(question, Qt::Key_Escape);
    EXPECT_EQ(drawing().size(), 1);
    QTest::keyClick(canvas(), Qt::Key_Escape);
    QTest::mouseClick(button(u"confirm"_s), Qt::LeftButton);
    EXPECT_EQ(m_closed, 2);
    EXPECT_EQ(m_screen.studio(), nullptr);
    EXPECT_FALSE(m_model.canUndo());
    m_model.removeAll();
    EXPECT_FALSE(m_screen.begin());
}

TEST_F(HandwritingScreenTest, SavesToThePhotoItWasBegunOnAndIntoItsExport)
{
    m_screen.findChild<HandwritingTools *>()->widthChosen(20);
    m_screen.findChild<ColorDots *>()->choose(3);
    drag(at(0.25, 0.1), at(0.75, 0.1));
    m_model.select(m_model.photos().last().id); // as photos do that are opened meanwhile
    saveAndWait();
    const PhotoItem *photo = m_model.current();
    EXPECT_EQ(photo->id, m_model.photos().first().id);
    ASSERT_TRUE(photo->settings.handwritingFile);
    const QString first = *photo->settings.handwritingFile;
    const QImage exported(m_pipeline.exportPhoto(*photo, {}).result().path);
    const QColor ink = exported.pixelColor(exported.width() / 2, exported.height() / 10);
    EXPECT_NEAR(ink.red(), 0xA6, 12);
    EXPECT_NEAR(ink.green(), 0x3D, 12);
    const QColor beside = exported.pixelColor(exported.width() / 10, exported.height() / 10);
    EXPECT_GT(beside.green(), 200);

    // A second signature replaces the first in one step.
    ASSERT_TRUE(m_screen.begin());
    EXPECT_TRUE(drawing().isEmpty());
    drag(at(0.25, 0.9), at(0.75, 0.9));
    saveAndWait();
    EXPECT_NE(m_model.current()->settings.handwritingFile, first);
    m_model.undo();
    EXPECT_EQ(m_model.current()->settings.handwritingFile, first);
    m_model.undo();
    EXPECT_FALSE(m_model.current()->settings.handwritingFile);
    EXPECT_FALSE(m_model.canUndo());
}

TEST_F(HandwritingScreenTest, AFailedSaveSaysSoAndKeepsTheInk)
{
    drag(at(0.2, 0.9), at(0.6, 0.8));
    m_model.flush();
    // What lies under the ink was asked for before this, and needs the photo.
    m_pipeline.read(m_model.current()->file, 10).waitForFinished();
    ASSERT_TRUE(QDir(m_library).removeRecursively());
    QTest::mouseClick(button(u"done"_s), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return !studio().saving(); }));
    EXPECT_EQ(m_said, QStringList{u"Could not save handwriting."_s});
    EXPECT_EQ(drawing().size(), 1);
    EXPECT_EQ(m_finished, 0);
    EXPECT_FALSE(m_model.canUndo());
}

} // namespace
} // namespace tarnovel::test
