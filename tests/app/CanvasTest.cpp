// The picture under hand and keys: what a gesture changes, by how much, and one step to take it back.

#include <QMouseEvent>
#include <QWheelEvent>

#include "app/canvas/CanvasView.h"
#include "app/inspector/ColorDots.h"
#include "app/kit/Button.h"
#include "app/kit/ColorPicker.h"
#include "app/kit/Overlay.h"
#include "app/window/FilmStrip.h"
#include "app/window/ToolRail.h"
#include "render/CompositionRenderer.h"
#include "support/WindowTest.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

class Canvas : public WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        showPhotos(2);
        FrameSettings start = settings();
        start.scale = 0.5;
        start.layer(u"title"_s)->text = u"Dawn"_s;
        start.layer(u"title"_s)->visible = true;
        start.layer(u"title"_s)->y = 0.9;
        model().update(start);
        m_world->settle();
    }

    CanvasView &canvas() { return *page().canvas(); }
    const TextLayer &title() { return *settings().layer(u"title"_s); }
    QPointF placeOf(const TextLayer &layer)
    {
        const QRectF frame = canvas().frameRect();
        return frame.topLeft() + QPointF(layer.x * frame.width(), layer.y * frame.height());
    }
};

TEST_F(Canvas, KeysMoveThePhotoAndItsTexts)
{
    struct Row {
        const char *what;
        bool text;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        QPointF way;
    };
    constexpr std::array rows = {
        Row{"left", false, Qt::Key_Left, {}, {-0.005, 0}},
        Row{"down, far", false, Qt::Key_Down, Qt::ShiftModifier, {0, 0.02}},
        Row{"up", false, Qt::Key_Up, {}, {0, -0.005}},
        Row{"right, far", false, Qt::Key_Right, Qt::ShiftModifier, {0.02, 0}},
        Row{"a text left, far", true, Qt::Key_Left, Qt::ShiftModifier, {-0.02, 0}},
        Row{"a text up", true, Qt::Key_Up, {}, {0, -0.005}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        canvas().setFocus();
        window().state().selectLayer(row.text ? std::optional(u"title"_s) : std::nullopt);
        const FrameSettings before = settings();
        press(row.key, row.modifiers);
        const FrameSettings now = settings();
        const QPointF photo(now.x - before.x, now.y - before.y);
        const QPointF text(title().x - before.layer(u"title"_s)->x, title().y - before.layer(u"title"_s)->y);
        const QPointF moved = row.text ? text : photo;
        const QPointF other = row.text ? photo : text;
        EXPECT_NEAR(moved.x(), row.way.x(), 1e-9);
        EXPECT_NEAR(moved.y(), row.way.y(), 1e-9);
        EXPECT_TRUE(other.isNull());
        EXPECT_EQ(now.scale, before.scale);
        press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(settings(), before);
    }
}

TEST_F(Canvas, ADragEndsWithTheButtonEvenWhereItsReleaseIsNotSeen)
{
    const FrameSettings before = settings();
    const QPoint photo = canvas().frameRect().center().toPoint();
    QTest::mousePress(&canvas(), Qt::LeftButton, {}, photo);
    QTest::mouseMove(&canvas(), photo + QPoint(0, 20));
    const double moved = settings().y;
    EXPECT_GT(moved, before.y);
    const QPointF away = photo + QPoint(0, 60);
    QMouseEvent released(QEvent::MouseMove, away, canvas().mapToGlobal(away), Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(&canvas(), &released);
    EXPECT_EQ(settings().y, moved);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(settings(), before);
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, photo);
    QTest::mousePress(&canvas(), Qt::LeftButton, {}, photo);
    QTest::mouseMove(&canvas(), photo + QPoint(0, 30));
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, photo + QPoint(0, 30));
    EXPECT_GT(settings().y, before.y);
}

TEST_F(Canvas, PlusAndMinusSizeThePhoto)
{
    canvas().setFocus();
    const FrameSettings before = settings();
    press(Qt::Key_Plus);
    const double larger = settings().scale;
    EXPECT_GT(larger, before.scale);
    press(Qt::Key_Plus);
    press(Qt::Key_Minus);
    EXPECT_DOUBLE_EQ(settings().scale, larger);
    EXPECT_EQ(settings().x, before.x);
    // A run of them is one step, unless the machine takes its time in between.
    for (int i = 0; i < 3 && settings() != before; ++i) {
        press(Qt::Key_Z, Qt::ControlModifier);
    }
    EXPECT_EQ(settings(), before);
}

TEST_F(Canvas, HandlesTurnAndSizeATextAroundItsCentre)
{
    canvas().setFocus();
    window().state().selectLayer(u"title"_s);
    const QRectF box = *canvas().layerBox();
    const TextLayer before = title();
    // The knob stands to the right of the box; a quarter turn brings it below.
    const QPointF knob(box.right() + 8 + 8 + 12, box.center().y());
    const double arm = knob.x() - box.center().x();
    QTest::mousePress(&canvas(), Qt::LeftButton, {}, knob.toPoint());
    for (int degrees = 15; degrees <= 90; degrees += 15) {
        const double angle = qDegreesToRadians(double(degrees));
        QTest::mouseMove(&canvas(),
                         (box.center() + arm * QPointF(std::cos(angle), std::sin(angle))).toPoint());
    }
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, (box.center() + QPointF(0, arm)).toPoint());
    EXPECT_NEAR(title().rotation.value_or(0), 90, 2);
    EXPECT_EQ(QPointF(title().x, title().y), QPointF(before.x, before.y));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(title(), before);
    const QPointF corner = box.topLeft() - QPointF(8, 8);
    drag(&canvas(), corner, (box.center() - corner) / 2);
    EXPECT_NEAR(title().size, before.size / 2, before.size * 0.1);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(title(), before);
}

TEST_F(Canvas, LocksAndTheCentreHoldAPhotoThatIsDragged)
{
    const QPointF grip = canvas().frameRect().center();
    FrameSettings locked = settings();
    locked.lockX = true;
    model().update(locked);
    drag(&canvas(), grip, {80, 60});
    EXPECT_EQ(settings().x, 0);
    EXPECT_GT(settings().y, 0.05);
    locked.lockX = false;
    locked.lockY = true;
    model().update(locked);
    drag(&canvas(), grip, {80, 60});
    EXPECT_GT(settings().x, 0.05);
    EXPECT_EQ(settings().y, 0);
    locked.lockY = false;
    model().update(locked);
    drag(&canvas(), grip, {2000, 0});
    EXPECT_EQ(settings().x, 0.5) << "no farther than half the canvas";
    drag(&canvas(), grip + QPointF(canvas().frameRect().width() / 2 - 20, 0),
         {-canvas().frameRect().width() / 2 + 3, 0});
    EXPECT_EQ(settings().x, 0) << "near the centre it is at the centre";
}

TEST_F(Canvas, ATextIsChosenByAClickAndLetGoBesideIt)
{
    click(&canvas(), placeOf(title()).toPoint());
    EXPECT_EQ(window().state().selectedLayer(), u"title"_s);
    EXPECT_FALSE(model().canUndo()) << "a click changes nothing";
    click(&canvas(), canvas().frameRect().center().toPoint());
    EXPECT_FALSE(window().state().selectedLayer());
    // Enter on a chosen text opens its small editor; Enter there ends it.
    canvas().setFocus();
    press(Qt::Key_Tab);
    ASSERT_EQ(window().state().selectedLayer(), u"title"_s);
    press(Qt::Key_Return);
    auto *field = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_NE(field, nullptr);
    field->selectAll();
    type(u"Dusk"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(title().text, u"Dusk"_s);
    EXPECT_EQ(QApplication::focusWidget(), &canvas());
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(title().text, u"Dawn"_s);
    press(Qt::Key_Tab);
    press(Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), &canvas());
}

TEST_F(Canvas, TheDropperTakesWhatIsUnderThePointer)
{
    const QPoint onPhoto = canvas().frameRect().center().toPoint();
    const QColor under = canvas().grab().toImage().pixelColor(onPhoto * canvas().devicePixelRatioF());
    window().state().setTool(Tool::Background);
    m_world->settle();
    click(control<Button>(u"dropper"_s));
    ASSERT_TRUE(window().state().colorTaker());
    const FrameSettings before = settings();
    click(&canvas(), onPhoto);
    EXPECT_FALSE(window().state().colorTaker());
    const QColor taken = CompositionRenderer::opaque(settings().color);
    EXPECT_NEAR(taken.red(), under.red(), 3);
    EXPECT_NEAR(taken.green(), under.green(), 3);
    EXPECT_NEAR(taken.blue(), under.blue(), 3);
    EXPECT_EQ(settings().x, before.x);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(settings(), before);
    click(control<Button>(u"dropper"_s));
    press(Qt::Key_Escape);
    EXPECT_FALSE(window().state().colorTaker()) << "Esc gives it up";
}

TEST_F(Canvas, ToolsHaveKeysAndStayWithTheirPhoto)
{
    constexpr std::array keys = {Qt::Key_1, Qt::Key_2, Qt::Key_3, Qt::Key_4, Qt::Key_5,    Qt::Key_6,
                                 Qt::Key_7, Qt::Key_8, Qt::Key_9, Qt::Key_0, Qt::Key_Minus};
    for (size_t i = 0; i < keys.size(); ++i) {
        press(keys.at(i), Qt::AltModifier);
        EXPECT_EQ(window().state().tool(), toolRows.at(i).tool);
        EXPECT_EQ(page().findChild<ToolRail *>()->current(), static_cast<int>(i));
    }
    // Applied to all, a style leaves each photo its camera texts and whoever is shown is shown still.
    FrameSettings mine = settings();
    mine.border = 0.03;
    mine.layer(u"brand"_s)->text = u"Mine"_s;
    model().update(mine);
    const QUuid shown = *model().selected();
    click(control(u"applyToAll"_s));
    EXPECT_EQ(model().selected(), shown);
    for (const PhotoItem &photo : model().photos()) {
        EXPECT_EQ(photo.settings.border, 0.03);
        EXPECT_EQ(photo.settings.layer(u"brand"_s)->text == u"Mine"_s, photo.id == shown);
    }
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(model().photos().last().settings.border, 0.03);
    // In the strip Home and End go to its ends, and a click anywhere.
    page().strip()->view()->setFocus();
    press(Qt::Key_End);
    EXPECT_EQ(model().selected(), model().photos().last().id);
    press(Qt::Key_Home);
    EXPECT_EQ(model().selected(), model().photos().first().id);
    click(page().strip()->view(), page().strip()->view()->itemRect(1).center());
    EXPECT_EQ(model().selected(), model().photos().last().id);
}

} // namespace
} // namespace tarnovel::test
