#include <cmath>

#include "editor/CanvasGestures.h"
#include "editor/EditorRules.h"
#include "editor/EditorWorld.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tarnovel::test {
namespace {

class Canvas : public EditorWorld {
protected:
    EditorModel m_model{m_services, EditorModel::Load::Empty};
    CanvasGestures m_gestures{m_model};

    void SetUp() override { m_model.append(photos(1)); }
    const FrameSettings &settings() const { return m_model.current()->settings; }
    const TextLayer &title() const { return *settings().layer(u"title"_s); }
};

using Rules = Canvas;

TEST_F(Canvas, DragsThePhotoAsOneStepAndSnapsIt)
{
    const QSizeF canvas(1000, 1000);
    m_gestures.dragPhoto({100, 0}, canvas);
    EXPECT_TRUE(m_gestures.guidesVisible());
    m_gestures.dragPhoto({11, 13}, canvas);
    EXPECT_EQ(settings().x, 0);
    EXPECT_DOUBLE_EQ(settings().y, 0.013);
    EXPECT_EQ(m_gestures.snap(), (CentreSnap{true, false}));
    m_gestures.dragPhoto({150, -80}, canvas);
    m_gestures.endPhotoDrag();
    EXPECT_FALSE(m_gestures.guidesVisible());
    EXPECT_DOUBLE_EQ(settings().x, 0.15);
    EXPECT_EQ(stepsBack(m_model), 1);
    m_gestures.dragPhoto({10, 0}, canvas);
    EXPECT_DOUBLE_EQ(settings().x, 0.16);
    m_model.undo();
    m_model.undo();
    EXPECT_EQ(settings().x, 0);
    EXPECT_EQ(settings().y, 0);
}

TEST_F(Canvas, NudgesWithinWhatDragsKeepTo)
{
    m_gestures.nudge({}, {0.005, 0});
    EXPECT_DOUBLE_EQ(settings().x, 0.005) << "the centre does not pull a nudge back";
    for (int i = 0; i < 400; ++i) {
        m_gestures.nudge({}, {0.02, -0.02});
    }
    EXPECT_DOUBLE_EQ(settings().x, 0.5);
    EXPECT_DOUBLE_EQ(settings().y, -0.5);
    FrameSettings locked = settings();
    locked.lockX = true;
    locked.lockY = true;
    m_model.update(locked);
    // Nothing moves, and nothing is there to be undone.
    const auto steps = stepsBack(m_model);
    m_gestures.nudge({}, {-0.02, 0.02});
    m_gestures.nudge(u"absent"_s, {0.02, 0.02});
    EXPECT_EQ(settings(), locked);
    EXPECT_EQ(stepsBack(m_model), steps);
}

TEST_F(Canvas, NeverCarriesAGestureToAnotherPhoto)
{
    m_model.append({photo(u"other.jpg"_s)});
    m_gestures.dragPhoto({100, 0}, {1000, 1000});
    m_model.select(m_model.photos().last().id);
    m_gestures.dragPhoto({200, 0}, {1000, 1000});
    EXPECT_DOUBLE_EQ(settings().x, 0.2);
    EXPECT_EQ(stepsBack(m_model), 2);
    m_model.undo();
    EXPECT_EQ(settings().x, 0);
}

TEST_F(Canvas, AGestureThatIsUndoneDoesNothingMore)
{
    const QSizeF canvas(1000, 1000);
    const FrameSettings before = settings();
    m_gestures.dragPhoto({100, 0}, canvas);
    m_model.undo();
    m_gestures.dragPhoto({200, 0}, canvas);
    EXPECT_EQ(settings(), before);
    m_gestures.endPhotoDrag();
    m_gestures.pinchPhoto(0.5);
    m_model.undo();
    m_gestures.pinchPhoto(0.4);
    EXPECT_EQ(settings(), before);
    m_gestures.endPinch();
    m_gestures.dragText(u"title"_s, {0, -100}, canvas);
    m_model.undo();
    m_gestures.dragText(u"title"_s, {0, -200}, canvas);
    EXPECT_EQ(settings(), before);
    m_gestures.endTextDrag();
    m_gestures.dragPhoto({200, 0}, canvas);
    EXPECT_DOUBLE_EQ(settings().x, 0.2) << "the next one begins anew";
}

TEST_F(Canvas, HoldsToEachAxisByItself)
{
    const QSizeF canvas(1000, 1000);
    const struct {
        QPointF translation;
        CentreSnap snap;
    } cases[] = {
        {{100, 100}, {}}, {{5, 100}, {true, false}}, {{100, -5}, {false, true}}, {{3, 3}, {true, true}}};
    for (const auto &each : cases) {
        m_gestures.dragPhoto(each.translation, canvas);
        EXPECT_EQ(m_gestures.snap(), each.snap) << each.translation.x();
    }
}

TEST_F(Canvas, PinchesWithinLimits)
{
    m_gestures.pinchPhoto(2);
    EXPECT_EQ(settings().scale, 1);
    m_gestures.pinchPhoto(0.05);
    EXPECT_EQ(settings().scale, 0.1);
    m_gestures.pinchPhoto(0.5);
    EXPECT_DOUBLE_EQ(settings().scale, 0.44);
    m_gestures.endPinch();
    m_gestures.pinchPhoto(2);
    EXPECT_DOUBLE_EQ(settings().scale, 0.88);
    EXPECT_EQ(stepsBack(m_model), 2);
}

TEST_F(Canvas, DragsATextLayerWithinTheCanvas)
{
    m_gestures.dragText(u"title"_s, {600, 0}, {1000, 1000});
    EXPECT_EQ(title().x, 0.98);
    m_gestures.dragText(u"title"_s, {5, -400}, {1000, 1000});
    EXPECT_EQ(title().x, 0.5);
    EXPECT_DOUBLE_EQ(title().y, 0.45);
    EXPECT_EQ(m_gestures.snap(), (CentreSnap{true, false}));
    m_gestures.endTextDrag();
    EXPECT_EQ(stepsBack(m_model), 1);
    m_gestures.nudge(u"title"_s, {0.01, 2});
    EXPECT_DOUBLE_EQ(title().x, 0.51);
    EXPECT_EQ(title().y, 0.98);
    EXPECT_EQ(stepsBack(m_model), 2);
    m_gestures.dragText(u"absent"_s, {1, 1}, {1000, 1000});
    m_gestures.dragPhoto({std::nan(""), 0}, {1000, 1000});
    EXPECT_EQ(stepsBack(m_model), 2);
}

TEST_F(Canvas, FindsTheTopMostLayerUnderTheFinger)
{
    FrameSettings style;
    for (const QString &id : {u"title"_s, u"caption"_s}) {
        TextLayer &layer = *style.layer(id);
        layer.text = u"I"_s;
        layer.visible = true;
        layer.x = layer.y = 0.5;
        layer.size = 0.004;
    }
    const QSizeF canvas(1000, 1000);
    EXPECT_EQ(CanvasGestures::layerAt(style, {513, 487}, canvas), u"caption"_s);
    EXPECT_EQ(CanvasGestures::layerAt(style, {516, 500}, canvas), std::nullopt);
    style.layer(u"caption"_s)->visible = false;
    EXPECT_EQ(CanvasGestures::layerAt(style, {500, 500}, canvas), u"title"_s);
    style.layer(u"title"_s)->text = u"A long line of text"_s;
    style.layer(u"title"_s)->size = 0.04;
    style.layer(u"title"_s)->rotation = 90;
    EXPECT_EQ(CanvasGestures::layerAt(style, {500, 600}, canvas), u"title"_s);
    EXPECT_EQ(CanvasGestures::layerAt(style, {600, 500}, canvas), std::nullopt);
}

TEST_F(Rules, JoinTheChangesOfOneSlider)
{
    SliderCheckpoints sliders(m_model, m_clock);
    const auto steps = [this] { return stepsBack(m_model); };
    sliders.change(u"scale"_s);
    m_clock.advance(500ms);
    sliders.change(u"scale"_s);
    m_clock.advance(900ms);
    sliders.change(u"scale"_s);
    EXPECT_EQ(steps(), 1);
    sliders.change(u"border"_s);
    EXPECT_EQ(steps(), 2);
    m_clock.advance(1500ms);
    sliders.change(u"border"_s);
    EXPECT_EQ(steps(), 3);
    sliders.end();
    sliders.change(u"border"_s);
    EXPECT_EQ(steps(), 4);
}

TEST_F(Rules, TakeOnlyRealDates)
{
    for (const QString &wrong :
         {u""_s, u"2026-09-22"_s, u"2026.13.01"_s, u"2026.02.30"_s, u"today"_s, u"26.9.22"_s}) {
        EXPECT_FALSE(CaptureDateEntry::enter(m_model, wrong)) << wrong.toStdString();
    }
    EXPECT_FALSE(m_model.canUndo());
    EXPECT_TRUE(CaptureDateEntry::enter(m_model, u" 2026.09.22 "_s));
    EXPECT_EQ(settings().layer(u"date"_s)->text, u"2026.09.22"_s);
    EXPECT_TRUE(settings().layer(u"date"_s)->visible) << "who enters a date wants to see it";
    EXPECT_EQ(stepsBack(m_model), 1);
}

TEST_F(Rules, KeepAMarginAtEveryQuickPosition)
{
    TextLayer layer = title();
    const QSizeF canvas(900, 1200);
    EXPECT_EQ(QuickPositions::place(QuickPosition::TopLeft, layer, canvas), QPointF(0.08, 0.08));
    layer.text = u"Words"_s;
    for (const double rotation : {0.0, 90.0, 30.0}) {
        layer.rotation = rotation;
        const QPointF topLeft = QuickPositions::place(QuickPosition::TopLeft, layer, canvas);
        const QPointF bottomRight = QuickPositions::place(QuickPosition::BottomRight, layer, canvas);
        EXPECT_NEAR(topLeft.x() + bottomRight.x(), 1, 1e-9);
        EXPECT_NEAR(topLeft.y() + bottomRight.y(), 1, 1e-9);
        // A margin of 0.06 × 900 = 54 on every side.
        EXPECT_GT(topLeft.x() * 900, 54);
        EXPECT_GT(topLeft.y() * 1200, 54);
    }
    EXPECT_EQ(QuickPositions::place(QuickPosition::Center, layer, canvas), QPointF(0.5, 0.5));
    layer.rotation = 0;
    layer.imageFile = u"a logo five times as wide as its size.png"_s;
    layer.size = 0.2;
    EXPECT_EQ(QuickPositions::place(QuickPosition::BottomLeft, layer, canvas).x(), 0.5);
    EXPECT_EQ(QuickPositions::title(QuickPosition::CenterRight), u"Center right"_s);
}

} // namespace
} // namespace tarnovel::test
