// What offers several things in one stop of the Tab key.

#include <QSignalSpy>

#include "app/Kit.h"
#include "app/kit/CardGrid.h"
#include "app/kit/ItemStrip.h"
#include "app/kit/PositionPad.h"
#include "app/kit/Segments.h"
#include "app/kit/Swatches.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

using namespace app;

using ItemViews = Kit;

TEST_F(ItemViews, SegmentsChooseByArrowsAndShareTheWidth)
{
    auto *segments = show(new Segments({named(u"One"_s), named(u"Two"_s), named(u"Three"_s)}), {264, 32});
    segments->setCurrent(0);
    QSignalSpy chosen(segments, &ItemView::chosen);
    keys(segments, {Qt::Key_Right, Qt::Key_Right, Qt::Key_Right});
    EXPECT_EQ(segments->current(), 2);
    EXPECT_EQ(chosen.size(), 2) << "there is nothing after the last";
    keys(segments, {Qt::Key_Home});
    EXPECT_EQ(segments->current(), 0);
    keys(segments, {Qt::Key_End});
    EXPECT_EQ(segments->current(), 2);
    keys(segments, {Qt::Key_Left}, Qt::ControlModifier);
    EXPECT_EQ(segments->current(), 2) << "such a key is another's";
    EXPECT_EQ(segments->itemRect(1).left(), segments->itemRect(0).right() + 1);
    EXPECT_EQ(segments->itemRect(2).right(), segments->width() - segments->itemRect(0).left() - 1);
    segments->setEnabled(false);
    clickItem(segments, 0);
    EXPECT_EQ(segments->current(), 2);
}

TEST_F(ItemViews, APressChoosesOnlyWhereItBegan)
{
    auto *pad = show(new PositionPad, {96, 96});
    QSignalSpy chosen(pad, &ItemView::chosen);
    QTest::mousePress(pad, Qt::LeftButton, {}, pad->itemRect(4).center());
    QTest::mouseRelease(pad, Qt::LeftButton, {}, pad->itemRect(5).center());
    EXPECT_EQ(chosen.size(), 0);
    QTest::mouseClick(pad, Qt::RightButton, {}, pad->itemRect(4).center());
    EXPECT_EQ(chosen.size(), 0);
    clickItem(pad, 5);
    EXPECT_EQ(chosen.last().first().toInt(), 5);
    EXPECT_EQ(pad->cursor(), 5);
}

TEST_F(ItemViews, ArrowsGoThroughAGridAndAroundItsRows)
{
    auto *pad = show(new PositionPad, {96, 96});
    const struct {
        int from;
        Qt::Key key;
        int to;
    } rows[] = {{0, Qt::Key_Right, 1}, {2, Qt::Key_Right, 3}, {3, Qt::Key_Left, 2},
                {0, Qt::Key_Left, 0},  {1, Qt::Key_Down, 4},  {8, Qt::Key_Down, 8},
                {8, Qt::Key_Up, 5},    {4, Qt::Key_Home, 0},  {4, Qt::Key_End, 8}};
    for (const auto &row : rows) {
        pad->setCursorItem(row.from);
        keys(pad, {row.key});
        EXPECT_EQ(pad->cursor(), row.to) << row.from << " " << row.key;
    }
    EXPECT_EQ(pad->current(), -1) << "arrows only move here";
    keys(pad, {Qt::Key_Space});
    EXPECT_EQ(pad->current(), 8);
    QSignalSpy menu(pad, &ItemView::menuRequested);
    keys(pad, {Qt::Key_Delete});
    EXPECT_EQ(menu.last().first().toInt(), 8);
}

TEST_F(ItemViews, ALongPressAsksForTheMenuAndDoesNotChoose)
{
    auto *pad = show(new PositionPad, {96, 96});
    QSignalSpy chosen(pad, &ItemView::chosen);
    QSignalSpy menu(pad, &ItemView::menuRequested);
    QTest::mousePress(pad, Qt::LeftButton, {}, pad->itemRect(3).center());
    ASSERT_TRUE(menu.wait(10'000));
    QTest::mouseRelease(pad, Qt::LeftButton, {}, pad->itemRect(3).center());
    EXPECT_EQ(menu.first().first().toInt(), 3);
    EXPECT_EQ(chosen.size(), 0);
}

TEST_F(ItemViews, SwatchesRingTheColourOrTheWheelThatStandsForIt)
{
    auto *swatches = show(new Swatches(Swatches::Shape::Dots), {264, 40});
    swatches->setEntries({{Qt::white, named(u"White"_s)}, {Qt::red, {}}});
    swatches->setWheel(true);
    QSignalSpy color(swatches, &Swatches::colorChosen);
    QSignalSpy wheelChosen(swatches, &Swatches::wheelChosen);
    EXPECT_EQ(swatches->count(), 3);
    EXPECT_EQ(swatches->itemName(0), u"White #FFFFFF"_s);
    EXPECT_EQ(swatches->itemName(1), u"#FF0000"_s);
    EXPECT_FALSE(swatches->itemChosen(0)) << "none before a colour is shown";
    EXPECT_FALSE(swatches->itemChosen(2));
    swatches->setColor(Qt::red);
    EXPECT_TRUE(swatches->itemChosen(1));
    EXPECT_FALSE(swatches->itemChosen(2));
    swatches->setColor(Qt::blue);
    EXPECT_FALSE(swatches->itemChosen(1));
    EXPECT_TRUE(swatches->itemChosen(2));
    clickItem(swatches, 1);
    EXPECT_EQ(color.last().first().value<QColor>(), QColor(Qt::red));
    clickItem(swatches, 2);
    EXPECT_EQ(wheelChosen.size(), 1);
    EXPECT_EQ(color.size(), 1);
}

TEST_F(ItemViews, ACardGridLaysItsRowsBelowEachOther)
{
    QStringList names = {u"A"_s, u"B"_s, u"A name that takes more than one line of its tile"_s, u"D"_s};
    auto *grid = show(new CardGrid({.count = [&] { return static_cast<int>(names.size()); },
                                    .name = [&](int index) { return names.at(index); },
                                    .image = [](int, QSize) { return QImage(); },
                                    .chosen = [](int index) { return index == 1; }},
                                   {80, 60}, 3),
                      {264, 300});
    EXPECT_EQ(grid->itemRect(0).top(), grid->itemRect(2).top());
    EXPECT_GT(grid->itemRect(3).top(), grid->itemRect(2).bottom());
    EXPECT_EQ(grid->itemRect(3).left(), grid->itemRect(0).left());
    EXPECT_GT(grid->itemRect(2).height(), grid->itemRect(3).height()) << "room for the long name";
    EXPECT_TRUE(grid->itemChosen(1));
    const int high = grid->sizeHint().height();
    names.removeLast();
    EXPECT_LT(grid->sizeHint().height(), high);
    names.clear();
    EXPECT_EQ(grid->sizeHint().height(), 0);
}

/// Ten items of 50 pixels in a row.
class Row : public ItemStrip {
public:
    Row() : ItemStrip(Arrows::Move) { setWidths(QList<int>(10, 50), 10); }
    int count() const override { return 10; }
    QRect itemRect(int index) const override { return placeOf(index, 0, 40); }
    QString itemName(int index) const override { return QString::number(index); }
    using ItemStrip::offset;
    using ItemStrip::setWidths;

protected:
    void paintItem(QPainter &, int, const State &) override {}
};

TEST_F(ItemViews, AStripScrollsByWheelAndToTheItemAtTheKeyboard)
{
    auto *row = show(new Row, {200, 40});
    EXPECT_EQ(row->itemRect(0), QRect(24, 0, 50, 40));
    EXPECT_EQ(row->itemRect(1).left(), 84);
    EXPECT_TRUE(row->itemRect(10).isNull());
    wheel(row, {0, -120});
    EXPECT_EQ(row->offset(), 60);
    wheel(row, {120, 0});
    EXPECT_EQ(row->offset(), 0);
    wheel(row, {0, 120});
    EXPECT_EQ(row->offset(), 0) << "held to its beginning";
    wheel(row, {}, {0, -7});
    EXPECT_EQ(row->offset(), 7) << "a touchpad tells pixels";
    keys(row, {Qt::Key_End});
    EXPECT_EQ(row->itemRect(9).right(), row->width() - 24 - 1 + 1);
    wheel(row, {0, -120'000});
    EXPECT_EQ(row->offset(), 24 + 10 * 50 + 9 * 10 + 24 - row->width()) << "and to its end";
    keys(row, {Qt::Key_Home});
    EXPECT_EQ(row->offset(), 0);
    EXPECT_FALSE(row->setWidths(QList<int>(10, 50), 10)) << "nothing has moved";
    EXPECT_TRUE(row->setWidths(QList<int>(10, 51), 10));
}

} // namespace
} // namespace tarnovel::test
