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

TEST_F(HandwritingScreenTest, WritesWithTheMouseAndTakesItBack)
{
    drag(at(0.2, 0.9), at(0.6, 0.8));
    ASSERT_EQ(drawing().size(), 1);
    const InkStroke stroke = drawing().first()->stroke;
    EXPECT_EQ(stroke.pen, InkPen::signature);
    EXPECT_EQ(stroke.color, softBlack);
    EXPECT_FALSE(stroke.samples.first().pressure);
    const QSizeF page = studio().viewport().reference();
    EXPECT_NEAR(stroke.samples.first().position.x() / page.width(), 0.2, 0.005);
    EXPECT_NEAR(stroke.samples.last().position.y() / page.height(), 0.8, 0.005);

    // A second button does not end a stroke, and two quick dots are two strokes.
    QTest::mousePress(canvas(), Qt::LeftButton, {}, at(0.2, 0.5).toPoint());
    QTest::mouseClick(canvas(), Qt::RightButton, {}, at(0.3, 0.5).toPoint());
    EXPECT_TRUE(studio().penIsDown());
    QTest::mouseRelease(canvas(), Qt::LeftButton, {}, at(0.4, 0.5).toPoint());
    QTest::mouseClick(canvas(), Qt::LeftButton, {}, at(0.5, 0.5).toPoint());
    QTest::mouseDClick(canvas(), Qt::LeftButton, {}, at(0.5, 0.5).toPoint());
    QTest::mouseRelease(canvas(), Qt::LeftButton, {}, at(0.5, 0.5).toPoint());
    EXPECT_EQ(drawing().size(), 4);

    QTest::keyClick(canvas(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(drawing().size(), 3);
    QTest::keyClick(canvas(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(drawing().size(), 4);
    QTest::mouseClick(button(u"clearInk"_s), Qt::LeftButton);
    EXPECT_TRUE(drawing().isEmpty());
    QTest::mouseClick(button(u"undo"_s), Qt::LeftButton);
    EXPECT_EQ(drawing().size(), 4);
    EXPECT_TRUE(canvas()->hasFocus()); // clicks beside the page leave it the keyboard
}

TEST_F(HandwritingScreenTest, AClickBesideThePageIsNoSignature)
{
    const QPointF beside = canvas()->pageRect().topLeft() / 2;
    QTest::mouseClick(canvas(), Qt::LeftButton, {}, beside.toPoint());
    EXPECT_TRUE(studio().isEmpty());
    EXPECT_FALSE(m_screen.hasUnsavedInk());
    QTest::mouseClick(button(u"done"_s), Qt::LeftButton);
    EXPECT_EQ(m_closed, 1);
    EXPECT_FALSE(m_model.canUndo());
}

TEST_F(HandwritingScreenTest, PaintsOnlyWhatAStrokeChanges)
{
    struct Watch : QObject {
        QRegion painted;
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint) {
                painted += static_cast<QPaintEvent *>(event)->region();
            }
            return false;
        }
    } watch;
    waitFor([&] { return canvas()->grab().toImage().pixelColor(at(0.5, 0.5).toPoint()).saturation() > 100; });
    QTest::mousePress(canvas(), Qt::LeftButton, {}, at(0.3, 0.5).toPoint());
    QCoreApplication::processEvents();
    canvas()->installEventFilter(&watch);
    const QPoint next = at(0.3, 0.5).toPoint() + QPoint(12, 5);
    QTest::mouseMove(canvas(), next);
    QCoreApplication::processEvents();
    ASSERT_FALSE(watch.painted.isEmpty());
    EXPECT_TRUE(watch.painted.boundingRect().contains(next));
    EXPECT_LT(watch.painted.boundingRect().width(), 48);
    EXPECT_LT(watch.painted.boundingRect().height(), 48);
    QTest::mouseRelease(canvas(), Qt::LeftButton, {}, next);
    canvas()->removeEventFilter(&watch);
    EXPECT_LT(canvas()->grab().toImage().pixelColor(next - QPoint(4, 2)).lightness(), 60);
}

TEST_F(HandwritingScreenTest, ATabletPenPressesAndItsOtherEndErases)
{
    const QPointingDevice tip = tablet(QPointingDevice::PointerType::Pen);
    const QPointingDevice eraser = tablet(QPointingDevice::PointerType::Eraser);
    pen(QEvent::TabletPress, at(0.2, 0.5), 0.25, tip);
    // What a window system adds on its own is not written twice, and a resting hand writes nothing.
    QTest::mousePress(canvas(), Qt::LeftButton, {}, at(0.2, 0.5).toPoint());
    QTest::mouseMove(canvas(), at(0.3, 0.5).toPoint());
    touch({{at(0.5, 0.8), Finger::Down}});
    touch({{at(0.5, 0.8), Finger::Moves}, {at(0.6, 0.8), Finger::Down}});
    touch({{at(0.5, 0.8), Finger::Up}, {at(0.6, 0.8), Finger::Up}});
    pen(QEvent::TabletMove, at(0.4, 0.5), 0.75, tip);
    QTest::mouseRelease(canvas(), Qt::LeftButton, {}, at(0.4, 0.5).toPoint());
    pen(QEvent::TabletRelease, at(0.5, 0.5), 0, tip);
    ASSERT_EQ(drawing().size(), 1);
    const QList<InkSample> samples = drawing().first()->stroke.samples;
    ASSERT_EQ(samples.size(), 3);
    EXPECT_NEAR(samples.at(0).pressure.value_or(-1), 0.25, 0.001);
    EXPECT_NEAR(samples.at(1).pressure.value_or(-1), 0.75, 0.001);
    EXPECT_EQ(samples.at(1).tilt, QPointF(10, -20));

    pen(QEvent::TabletPress, at(0.3, 0.4), 0.5, eraser);
    pen(QEvent::TabletMove, at(0.3, 0.6), 0.5, eraser);
    pen(QEvent::TabletRelease, at(0.3, 0.6), 0, eraser);
    EXPECT_TRUE(drawing().isEmpty());
    EXPECT_EQ(studio().tool(), HandwritingTool::Signature);
}

TEST_F(HandwritingScreenTest, ThePenTakesOverFromAPalmThatRestsFirst)
{
    const QPointingDevice tip = tablet(QPointingDevice::PointerType::Pen);
    touch({{at(0.6, 0.8), Finger::Down}});
    touch({{at(0.62, 0.8), Finger::Moves}});
    EXPECT_TRUE(studio().penIsDown());
    pen(QEvent::TabletPress, at(0.2, 0.5), 0.5, tip);
    touch({{at(0.64, 0.8), Finger::Moves}});
    pen(QEvent::TabletMove, at(0.3, 0.5), 0.5, tip);
    pen(QEvent::TabletRelease, at(0.4, 0.5), 0, tip);
    // The palm slides away after the pen.
    touch({{at(0.66, 0.8), Finger::Moves}});
    EXPECT_FALSE(studio().penIsDown());
    touch({{at(0.68, 0.8), Finger::Up}});
    ASSERT_EQ(drawing().size(), 1);
    const QList<InkSample> samples = drawing().first()->stroke.samples;
    ASSERT_EQ(samples.size(), 3);
    EXPECT_TRUE(samples.first().pressure);
    touch({{at(0.2, 0.8), Finger::Down}});
    touch({{at(0.3, 0.8), Finger::Up}});
    EXPECT_EQ(drawing().size(), 2);
}

TEST_F(HandwritingScreenTest, OneFingerWritesAndTwoMoveThePage)
{
    touch({{at(0.2, 0.5), Finger::Down}});
    touch({{at(0.4, 0.5), Finger::Moves}});
    touch({{at(0.4, 0.5), Finger::Up}});
    ASSERT_EQ(drawing().size(), 1);
    const QPointF end = drawing().first()->stroke.samples.last().position;
    EXPECT_NEAR(end.x() / studio().viewport().reference().width(), 0.4, 0.005);

    touch({{{600, 300}, Finger::Down}});
    touch({{{605, 300}, Finger::Moves}});
    EXPECT_TRUE(studio().penIsDown());
    touch({{{605, 300}, Finger::Moves}, {{805, 300}, Finger::Down}});
    EXPECT_FALSE(studio().penIsDown());
    EXPECT_EQ(drawing().size(), 1); // the second finger has taken the stroke back
    const QPointF held = studio().viewport().toReference({705, 300});
    touch({{{505, 340}, Finger::Moves}, {{905, 340}, Finger::Moves}});
    EXPECT_NEAR(studio().viewport().relativeZoom(), 2, 1e-6);
    EXPECT_NEAR(studio().viewport().toReference({705, 340}).y(), held.y(), 0.5);
    // The finger that stays behind does not write.
    touch({{{505, 340}, Finger::Up}, {{905, 340}, Finger::Moves}});
    QTest::touchEvent(canvas(), m_touchScreen).move(1, QPoint(880, 400));
    QTest::touchEvent(canvas(), m_touchScreen).release(1, QPoint(880, 400));
    EXPECT_EQ(drawing().size(), 1);
    touch({{{600, 300}, Finger::Down}});
    EXPECT_TRUE(studio().penIsDown());
    touch({{{600, 300}, Finger::Up}});
    EXPECT_EQ(drawing().size(), 2);
    QWidget *guide = button(u"writingHelp"_s);
    QTest::touchEvent(guide, m_touchScreen).press(0, guide->rect().center());
    QTest::touchEvent(guide, m_touchScreen).release(0, guide->rect().center());
    EXPECT_TRUE(m_screen.findChild<Overlay *>());
    EXPECT_EQ(drawing().size(), 2); // what lies over the page is not written on
}

TEST_F(HandwritingScreenTest, APenThatEndsAPinchLeavesNothingOfIt)
{
    const QPointingDevice tip = tablet(QPointingDevice::PointerType::Pen);
    touch({{{600, 300}, Finger::Down}, {{700, 300}, Finger::Down}});
    pen(QEvent::TabletPress, at(0.2, 0.5), 0.5, tip);
    touch({{{600, 300}, Finger::Up}, {{700, 300}, Finger::Up}});
    pen(QEvent::TabletRelease, at(0.4, 0.5), 0, tip);
    ASSERT_EQ(drawing().size(), 1);
    touch({{{500, 300}, Finger::Down}, {{800, 300}, Finger::Down}});
    EXPECT_DOUBLE_EQ(studio().viewport().relativeZoom(), 1); // a pinch of its own
    pen(QEvent::TabletPress, at(0.2, 0.6), 0.5, tip);
    touch({{{500, 300}, Finger::Up}, {{800, 300}, Finger::Up}});
    pen(QEvent::TabletRelease, at(0.4, 0.6), 0, tip);
    touch({{at(0.2, 0.8), Finger::Down}});
    touch({{at(0.4, 0.8), Finger::Moves}});
    touch({{at(0.4, 0.8), Finger::Up}});
    EXPECT_EQ(drawing().size(), 3);
}

} // namespace
} // namespace tarnovel::test
