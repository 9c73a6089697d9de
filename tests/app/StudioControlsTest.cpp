// Every control of the collage's panel: what a person does with it, what changes on the board, and one step
// to take it back.

#include "app/collage/CollageBoard.h"
#include "app/collage/CollageScreen.h"
#include "app/inspector/StockPicker.h"
#include "app/kit/Segments.h"
#include "collage/CollageStudio.h"
#include "collage/SelectedCell.h"
#include "support/WindowTest.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

bool near(double value, double wanted)
{
    return std::abs(value - wanted) < 1e-6;
}

class StudioControls : public WindowTest {
protected:
    struct Row {
        const char *what;
        std::function<void()> act;
        std::function<bool(const CollageDesign &now)> holds;
    };

    CollageStudio &studio() { return *window().collage()->studio(); }

    /// A board of four photos, two above two, with its first cell chosen.
    void SetUp() override
    {
        WindowTest::SetUp();
        showPhotos(4);
        window().showCollage();
        studio().clearPicked();
        for (const PhotoItem &photo : model().photos()) {
            studio().toggle(photo.id);
        }
        studio().start();
        studio().choosePreset(u"g4"_s);
        m_world->settle();
        studio().select(0);
    }

    void showTab(int index) { clickItem(u"collageTabs"_s, index); }

    void play(int tab, const std::vector<Row> &rows)
    {
        showTab(tab);
        for (const Row &row : rows) {
            SCOPED_TRACE(row.what);
            const CollageDesign start = studio().design();
            row.act();
            if (HasFatalFailure()) {
                return;
            }
            EXPECT_TRUE(row.holds(studio().design()));
            EXPECT_NE(studio().design(), start) << "nothing has happened";
            window().collage()->setFocus();
            press(Qt::Key_Z, Qt::ControlModifier);
            EXPECT_EQ(studio().design(), start) << "one Ctrl+Z takes it back";
        }
    }
};

TEST_F(StudioControls, Page)
{
    play(1, {{"a gap", [&] { enter(u"gap"_s, u"5"_s); },
              [](auto &now) { return near(now.gap, 0.05) && near(now.margin, 0.03); }},
             {"too wide a gap", [&] { enter(u"gap"_s, u"50"_s); },
              [](auto &now) { return near(now.gap, 0.08); }},
             {"a margin", [&] { enter(u"margin"_s, u"7,5"_s); },
              [](auto &now) { return near(now.margin, 0.075) && near(now.gap, 0.02); }},
             {"round corners", [&] { enter(u"corners"_s, u"4"_s); },
              [](auto &now) { return near(now.radius, 0.04); }},
             {"a double click",
              [&] {
                  SliderTrack *slider = track(u"margin"_s);
                  slider->setFocus();
                  press(Qt::Key_End);
              },
              [](auto &now) { return near(now.margin, 0.1); }},
             {"an aspect", [&] { clickItem(u"aspect"_s, 4); },
              [](auto &now) { return now.aspect == CollageAspect::story; }},
             {"a paper", [&] { clickItem(u"paper"_s, 4); },
              [](auto &now) { return now.background == QColor(0x0D, 0x0D, 0x0D); }}});
}

TEST_F(StudioControls, Cells)
{
    const auto frames = [](const CollageDesign &design) {
        QList<CellFrame> list;
        for (const CollageCell &cell : design.cells) {
            list.append(cell.frame);
        }
        return list;
    };
    const CellFrame plain = studio().design().cells.first().frame;
    const CellFrame other = cellFrames.at(2);
    play(0, {{"a frame", [&] { clickItem(u"frames"_s, 2); },
              [&](auto &now) {
                  return frames(now) == QList{other, plain, plain, plain};
              }},
             {"a zoom", [&] { enter(u"zoom"_s, u"2"_s); },
              [](auto &now) { return near(now.cells.at(0).zoom, 2) && near(now.cells.at(1).zoom, 1); }},
             {"too large a zoom", [&] { enter(u"zoom"_s, u"99"_s); },
              [](auto &now) { return near(now.cells.at(0).zoom, CollageEdits::largestZoom); }}});
    SelectedCell(studio()).setFrame(other);
    play(0, {{"to its row", [&] { click(control(u"copyTo0"_s)); },
              [&](auto &now) {
                  return frames(now) == QList{other, other, plain, plain};
              }},
             {"to its column", [&] { click(control(u"copyTo1"_s)); },
              [&](auto &now) {
                  return frames(now) == QList{other, plain, other, plain};
              }},
             {"to all", [&] { click(control(u"copyTo2"_s)); },
              [&](auto &now) {
                  return frames(now) == QList{other, other, other, other};
              }}});
    SelectedCell(studio()).setZoom(2);
    drag(window().collage()->board(), window().collage()->board()->itemRect(0).center(), {30, 20});
    ASSERT_FALSE(studio().design().cells.at(0).offset.isNull());
    play(0, {{"the photo to the middle", [&] { click(control(u"centerPhoto"_s)); },
              [](auto &now) { return now.cells.at(0).offset.isNull() && near(now.cells.at(0).zoom, 2); }},
             {"the photo as it was", [&] { click(control(u"resetPhoto"_s)); },
              [](auto &now) { return now.cells.at(0).offset.isNull() && near(now.cells.at(0).zoom, 1); }}});
    studio().select(std::nullopt);
    EXPECT_FALSE(control(u"zoom"_s)->isEnabled()) << "nothing is chosen";
}

TEST_F(StudioControls, FilmEdge)
{
    for (const CollagePreset &preset : studio().presets()) {
        if (preset.film) {
            studio().choosePreset(preset.id);
        }
    }
    play(2, {{"a stock",
              [&] {
                  auto *search = control<StockPicker>(u"stock"_s)->findChild<Field *>();
                  click(search);
                  type(u"HP5"_s);
                  press(Qt::Key_Return);
              },
              [](auto &now) { return now.filmEdge.stock.contains(u"HP5"_s); }},
             {"a text", [&] { enter(u"edgeText"_s, u"SAFETY"_s); },
              [](auto &now) { return now.filmEdge.topText == u"SAFETY"_s; }},
             {"no numbers", [&] { click(control(u"frameNumbers"_s)); },
              [](auto &now) { return !now.filmEdge.showsNumbers; }},
             {"the first number", [&] { enter(u"firstFrame"_s, u"12"_s); },
              [](auto &now) { return now.filmEdge.startNumber == 12; }}});
    // What the film sets itself cannot be set here.
    showTab(1);
    EXPECT_FALSE(control(u"gap"_s)->isEnabled());
    EXPECT_TRUE(control(u"aspect"_s)->isEnabled());
}

} // namespace
} // namespace tarnovel::test
