#include "collage/CollageStudioWorld.h"
#include "collage/SelectedCell.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tarnovel::test {
namespace {

using Dividers = StudioWorld;
using Views = StudioWorld;

TEST_F(Dividers, FollowTheFingerAndSnap)
{
    open({3, 0, 4}); // 62 : 38, on a board of 600 × 600
    const CollageDivider root = m_studio.layout().dividers.first();
    const double middle = root.parent.top() + 90;
    EXPECT_FALSE(m_gestures.grabDivider({root.position + 13, middle}));
    ASSERT_TRUE(m_gestures.grabDivider({root.position + 8, middle}));
    const auto drag = [&](double share) {
        m_gestures.dragDivider({root.position + 8 + share * root.shared, middle});
    };
    drag(0);
    EXPECT_DOUBLE_EQ(rootRatio(), 0.62); // taking hold moves nothing
    EXPECT_FALSE(m_studio.canUndo());
    drag(-0.115);
    EXPECT_EQ(rootRatio(), 0.5);
    EXPECT_EQ(m_gestures.ratioLabel(), u"Centered · 50 : 50"_s);
    EXPECT_TRUE(m_gestures.snapped());
    drag(-0.22);
    EXPECT_NEAR(rootRatio(), 0.4, 1e-9);
    EXPECT_FALSE(m_gestures.snapped());
    drag(-0.275);
    EXPECT_EQ(rootRatio(), 1.0 / 3);
    EXPECT_EQ(m_gestures.ratioLabel(), u"33 : 67"_s);
    EXPECT_TRUE(m_gestures.snapped());
    drag(-5);
    EXPECT_EQ(rootRatio(), 0.15);
    m_gestures.releaseDivider();
    EXPECT_FALSE(m_gestures.ratioLabel());
    drag(0);
    EXPECT_EQ(rootRatio(), 0.15); // let go
    m_studio.undo();
    EXPECT_DOUBLE_EQ(rootRatio(), 0.62);
    EXPECT_FALSE(m_studio.canUndo());
}

TEST_F(Dividers, OfManyCellsDoNotJumpAgainstTheKey)
{
    open({0, 1, 2, 3, 4, 5, 6, 7, 8});
    m_studio.choosePreset(u"row"_s);
    const CollageDesign before = m_studio.design();
    const QString first = m_studio.layout().dividers.first().id();
    m_gestures.nudgeDivider(first, -0.01);
    EXPECT_EQ(m_studio.design(), before);
    m_gestures.nudgeDivider(first, 0.01);
    EXPECT_NE(m_studio.design(), before);
}

TEST_F(Dividers, StayUnderTheFingerWhereverTheyAreInAChain)
{
    open({0, 1, 2, 3});
    m_studio.choosePreset(u"row"_s);
    CollageDesign wide = m_studio.design();
    wide.gap = 0.05;
    m_studio.update(wide);
    for (const int index : {0, 1, 2}) {
        const CollageDivider before = m_studio.layout().dividers.at(index);
        const double middle = before.parent.center().y();
        ASSERT_TRUE(m_gestures.grabDivider({before.position - 3, middle}));
        m_gestures.dragDivider({before.position - 3 + 22, middle});
        EXPECT_NEAR(m_studio.layout().dividers.at(index).position, before.position + 22, 1e-6) << index;
        m_gestures.releaseDivider();
    }
}

TEST_F(Dividers, OutsideTheLimitsStayUntilTheFingerIsInside)
{
    open({0, 1, 2, 3, 4, 5, 6, 7, 8});
    m_studio.choosePreset(u"row"_s);
    const CollageDesign before = m_studio.design();
    const CollageDivider first = m_studio.layout().dividers.first();
    const double middle = first.parent.center().y();
    ASSERT_TRUE(m_gestures.grabDivider({first.position, middle}));
    m_gestures.dragDivider({first.position + 1, middle});
    m_gestures.dragDivider({first.position - 30, middle});
    EXPECT_EQ(m_studio.design(), before);
    m_gestures.dragDivider({first.position + 0.1 * first.shared, middle});
    EXPECT_NEAR(rootRatio(), 1.0 / 9 + 0.1, 1e-9);
}

TEST_F(Dividers, ADragThatIsUndoneIsOver)
{
    open({3, 0, 4});
    const CollageDivider root = m_studio.layout().dividers.first();
    const double middle = root.parent.top() + 90;
    ASSERT_TRUE(m_gestures.grabDivider({root.position, middle}));
    m_gestures.dragDivider({root.position - 40, middle});
    m_studio.undo();
    m_gestures.dragDivider({root.position - 80, middle});
    EXPECT_DOUBLE_EQ(rootRatio(), 0.62);
    EXPECT_TRUE(m_studio.canRedo());
}

TEST_F(Views, TheSelectionStaysWithItsPhoto)
{
    open({3, 0, 4, 5});
    m_studio.select(2);
    const QUuid photo = photoOf(2);
    m_studio.toggle(photoOf(0));
    ASSERT_TRUE(m_studio.selected());
    EXPECT_EQ(photoOf(*m_studio.selected()), photo);
    m_studio.toggle(photo);
    EXPECT_FALSE(m_studio.selected());
}

TEST_F(Dividers, OfAnInnerSplitAnswerInTheirPartOnly)
{
    open({3, 0, 4});
    const CollageDivider inner = m_studio.layout().dividers.last();
    EXPECT_EQ(m_gestures.dividerAt({inner.parent.center().x(), inner.position})->id(), u"1"_s);
    EXPECT_FALSE(m_gestures.dividerAt({100, inner.position}));
    EXPECT_EQ(m_gestures.nudgeDivider(u"1"_s, 0.02), u"52 : 48"_s);
    m_clock.advance(300ms);
    EXPECT_EQ(m_gestures.nudgeDivider(u"1"_s, 0.05), u"57 : 43"_s);
    EXPECT_EQ(m_gestures.nudgeDivider(u"1"_s, 5), u"85 : 15"_s);
    EXPECT_EQ(m_gestures.nudgeDivider(u"0-1"_s, 0.1), QString());
    m_studio.undo();
    EXPECT_FALSE(m_studio.canUndo());
    m_studio.choosePreset(u"filmstrip"_s);
    const CollageDivider film = m_studio.layout().dividers.first();
    EXPECT_FALSE(m_gestures.grabDivider({film.position, film.parent.center().y()}));
}

TEST_F(Dividers, AndViewsAreInPointsOnAnyDisplay)
{
    open({3, 0, 4});
    const CollageLayout once = m_studio.layout();
    m_studio.setStage({600, 600}, 2);
    EXPECT_EQ(m_studio.boardSize(), QSizeF(600, 600));
    EXPECT_EQ(m_studio.board().plan.size, QSize(1200, 1200));
    EXPECT_EQ(m_studio.layout().cells, once.cells);
    EXPECT_EQ(m_studio.cellAt(once.cells.at(2).center()), 2);
    EXPECT_FALSE(m_studio.cellAt({1, 1}));
    m_studio.setStage({0, 0}, 1);
    EXPECT_FALSE(drawn(m_studio.board()).isNull());
}

TEST_F(Views, PanWithTheFingerAndHoldToTheCentre)
{
    open({0, 3}); // h2: a photo of 3 : 2 in an upright cell
    const QSizeF cell = m_studio.layout().cells.at(0).size();
    const double half = (cell.height() * 1.5 - cell.width()) / 2;
    const auto offset = [this] { return m_studio.design().cells.at(0).offset; };
    m_gestures.panPhoto(0, {3, 0});
    EXPECT_EQ(offset(), QSizeF(0, 0));
    m_gestures.panPhoto(0, {half / 2, 30});
    EXPECT_NEAR(offset().width(), 0.5, 1e-9);
    EXPECT_EQ(offset().height(), 0); // nothing overflows that way
    m_gestures.panPhoto(0, {0.05 * half, 0});
    EXPECT_EQ(offset().width(), 0);
    m_gestures.panPhoto(0, {-9 * half, 0});
    EXPECT_EQ(offset().width(), -1);
    m_gestures.endPan();
    m_gestures.panPhoto(0, {half, 0});
    EXPECT_EQ(offset().width(), 0); // a new gesture begins where the last one ended
    m_gestures.endPan();
    m_studio.undo();
    EXPECT_EQ(offset().width(), -1);
    m_studio.undo();
    EXPECT_FALSE(m_studio.canUndo());
    m_gestures.nudgePhoto(0, {0.03 * half, 0});
    m_gestures.nudgePhoto(0, {0.03 * half, 0});
    EXPECT_NEAR(offset().width(), 0.06, 1e-9); // keys get away from the centre
    m_gestures.panPhoto(7, {50, 50});
    m_gestures.panPhoto(0, {std::nan(""), 0});
    EXPECT_NEAR(offset().width(), 0.06, 1e-9);
}

TEST_F(Views, ZoomFromOneToFour)
{
    open({0, 3});
    const auto zoom = [this] { return m_studio.design().cells.at(1).zoom; };
    m_gestures.pinchPhoto(1, 1.5);
    m_gestures.pinchPhoto(1, 2);
    EXPECT_EQ(zoom(), 2);
    m_gestures.endPinch();
    m_gestures.pinchPhoto(1, 3);
    EXPECT_EQ(zoom(), 4);
    m_gestures.pinchPhoto(1, 0.01);
    EXPECT_EQ(zoom(), 1);
    m_gestures.endPinch();
    m_studio.undo();
    EXPECT_EQ(zoom(), 2);
    m_gestures.zoomPhoto(1, 1.1);
    m_gestures.zoomPhoto(1, 1.1);
    EXPECT_NEAR(zoom(), 2.42, 1e-9);
    m_studio.select(1);
    SelectedCell(m_studio).resetPhoto();
    EXPECT_EQ(zoom(), 1);
    m_studio.undo();
    m_studio.undo();
    EXPECT_EQ(zoom(), 2);
}

TEST_F(Views, KeepWhatLiesUnderThePointerWhenZoomed)
{
    const QRectF rect(100, 50, 200, 150);
    const QSizeF photo(300, 300);
    CollageCell cell;
    cell.zoom = 1.5;
    cell.offset = {0.4, -0.3};
    const QPointF anchor(170, 110);
    const auto fraction = [&](const CollageCell &each) {
        const QRectF whole = cellPlacement(each, photo, rect).whole;
        return QPointF((anchor.x() - whole.x()) / whole.width(), (anchor.y() - whole.y()) / whole.height());
    };
    for (const double zoom : {1.6, 2.5, 4.0}) {
        const CollageCell made = CollageEdits::zoomedAt(cell, photo, rect, zoom, anchor);
        EXPECT_EQ(made.zoom, zoom);
        EXPECT_NEAR(fraction(made).x(), fraction(cell).x(), 1e-9);
        EXPECT_NEAR(fraction(made).y(), fraction(cell).y(), 1e-9);
    }
    // At its smallest the photo fills the window, and no edge comes into it.
    const CollageCell smallest = CollageEdits::zoomedAt(cell, photo, rect, 1, {300, 200});
    EXPECT_TRUE(cellPlacement(smallest, photo, rect).whole.adjusted(-1e-6, -1e-6, 1e-6, 1e-6).contains(rect));

    open({0, 1});
    const QPointF middle = m_studio.layout().cells.at(1).center();
    m_gestures.zoomPhoto(1, 2, middle + QPointF(30, 20));
    const QSizeF offset = m_studio.design().cells.at(1).offset;
    EXPECT_LT(offset.width(), 0); // what lies right of the middle is drawn to the left
    EXPECT_LT(offset.height(), 0);
    m_gestures.pinchPhoto(1, 1.5, middle);
    EXPECT_EQ(m_studio.design().cells.at(1).zoom, 3);
}

} // namespace
} // namespace tarnovel::test
