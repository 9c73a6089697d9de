#include <QAccessible>
#include <QApplication>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTest>
#include <QWheelEvent>

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
#include "editor/EditorWorld.h"
#include "handwriting/HandwritingReference.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

using namespace app;

/// The screen in a window of its own over the first of two photos.
class HandwritingScreenTest : public EditorWorld {
protected:
    HandwritingScreenTest()
    {
        m_model.append(photos(2));
        m_model.select(m_model.photos().first().id);
        QObject::connect(&m_state, &EditorState::saying, &m_screen,
                         [this](const QString &text, Toast::Kind) { m_said.append(text); });
        QObject::connect(&m_screen, &HandwritingScreen::closeAsked, &m_screen, [this] { ++m_closed; });
        QObject::connect(&m_screen, &HandwritingScreen::finished, &m_screen, [this] { ++m_finished; });
        m_screen.resize(1440, 920);
        m_screen.show();
        EXPECT_TRUE(m_screen.begin());
        QCoreApplication::processEvents();
    }

    HandwritingController &studio() { return *m_screen.studio(); }
    InkCanvas *canvas() { return m_screen.findChild<InkCanvas *>(); }
    const InkDrawing &drawing() { return studio().drawing(); }
    /// A place of the page, as fractions of it, on the canvas.
    QPointF at(double x, double y)
    {
        const QRectF page = canvas()->pageRect();
        return {page.left() + x * page.width(), page.top() + y * page.height()};
    }

    void drag(QPointF from, QPointF to, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mousePress(canvas(), button, {}, from.toPoint());
        for (int i = 1; i <= 10; ++i) {
            QTest::mouseMove(canvas(), (from + (to - from) * i / 10).toPoint());
        }
        QTest::mouseRelease(canvas(), button, {}, to.toPoint());
    }

    void pen(QEvent::Type type, QPointF place, double pressure, const QPointingDevice &device)
    {
        const bool down = type != QEvent::TabletRelease;
        QTabletEvent event(type, &device, place, canvas()->mapToGlobal(place), pressure, 10, -20, 0, 0, 0, {},
                           Qt::LeftButton, down ? Qt::LeftButton : Qt::NoButton);
        QApplication::sendEvent(canvas(), &event);
        EXPECT_TRUE(event.isAccepted()); // otherwise a mouse would be made of it
    }

    static QPointingDevice tablet(QPointingDevice::PointerType type)
    {
        return {u"pen"_s,
                1,
                QInputDevice::DeviceType::Stylus,
                type,
                QInputDevice::Capability::Position | QInputDevice::Capability::Pressure,
                1,
                3};
    }

    enum class Finger { Down, Moves, Up };
    /// What all fingers on the screen do at one moment.
    void touch(const QList<std::pair<QPointF, Finger>> &fingers)
    {
        QTest::QTouchEventWidgetSequence sequence = QTest::touchEvent(canvas(), m_touchScreen, false);
        for (int i = 0; i < fingers.size(); ++i) {
            const QPoint place = fingers.at(i).first.toPoint();
            switch (fingers.at(i).second) {
            case Finger::Down:
                sequence.press(i, place);
                break;
            case Finger::Moves:
                sequence.move(i, place);
                break;
            case Finger::Up:
                sequence.release(i, place);
                break;
            }
        }
        sequence.commit();
    }

    void saveAndWait()
    {
        const int before = m_finished;
        QTest::mouseClick(button(u"Done"_s), Qt::LeftButton);
        EXPECT_TRUE(studio().saving());
        EXPECT_TRUE(waitFor([&] { return m_finished > before; }));
        EXPECT_EQ(m_screen.studio(), nullptr);
        EXPECT_FALSE(m_screen.hasUnsavedInk());
    }

    QWidget *button(const QString &name)
    {
        for (Button *button : m_screen.window()->findChildren<Button *>()) {
            if (button->accessibleName() == name && button->isVisible()) {
                return button;
            }
        }
        ADD_FAILURE() << "no button " << name.toStdString();
        return nullptr;
    }

    EditorModel m_model{m_services, EditorModel::Load::StoredSession};
    SettingsEdits m_edits{m_model, m_clock};
    ImportFlow m_imports{m_model, m_pipeline};
    Thumbnails m_thumbnails{m_pipeline};
    EditorState m_state;
    std::unique_ptr<QPointingDevice> m_touchScreenOwner{QTest::createTouchDevice()};
    QPointingDevice *m_touchScreen = m_touchScreenOwner.get();
    QStringList m_said;
    int m_closed = 0;
    int m_finished = 0;
    HandwritingScreen m_screen{
        {m_model, m_edits, m_imports, m_thumbnails, m_pipeline, m_preferences, m_clock, m_state}};
};

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
    QTest::mouseClick(button(u"Clear"_s), Qt::LeftButton);
    EXPECT_TRUE(drawing().isEmpty());
    QTest::mouseClick(button(u"Undo"_s), Qt::LeftButton);
    EXPECT_EQ(drawing().size(), 4);
    EXPECT_TRUE(canvas()->hasFocus()); // clicks beside the page leave it the keyboard
}

TEST_F(HandwritingScreenTest, AClickBesideThePageIsNoSignature)
{
    const QPointF beside = canvas()->pageRect().topLeft() / 2;
    QTest::mouseClick(canvas(), Qt::LeftButton, {}, beside.toPoint());
    EXPECT_TRUE(studio().isEmpty());
    EXPECT_FALSE(m_screen.hasUnsavedInk());
    QTest::mouseClick(button(u"Done"_s), Qt::LeftButton);
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
    EXPECT_EQ(studio().tool(), HandwritingTool::signature);
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
    QWidget *guide = button(u"How to write here"_s);
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
    EXPECT_TRUE(button(u"125 %"_s));
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
    studio().setTool(HandwritingTool::marker);
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
    EXPECT_EQ(studio().tool(), HandwritingTool::eraser);

    // The rows of tiles are stops of the Tab key, and the arrows choose in them.
    for (ToolTiles *tiles : tools->findChildren<ToolTiles *>()) {
        EXPECT_TRUE(tiles->focusPolicy() & Qt::TabFocus);
        EXPECT_FALSE(tiles->accessibleName().isEmpty());
        tiles->setFocus(Qt::TabFocusReason);
        QTest::keyClick(tiles, Qt::Key_Home);
        QTest::keyClick(tiles, Qt::Key_Right);
    }
    EXPECT_EQ(studio().tool(), HandwritingTool::fountain);
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
    QTest::mouseClick(button(u"Done"_s), Qt::LeftButton);
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
    QTest::mouseClick(button(u"Discard"_s), Qt::LeftButton);
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
    ASSERT_TRUE(QDir(m_library).removeRecursively());
    QTest::mouseClick(button(u"Done"_s), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return !studio().saving(); }));
    EXPECT_EQ(m_said, QStringList{u"Could not save handwriting."_s});
    EXPECT_EQ(drawing().size(), 1);
    EXPECT_EQ(m_finished, 0);
    EXPECT_FALSE(m_model.canUndo());
}

} // namespace
} // namespace tarnovel::test
