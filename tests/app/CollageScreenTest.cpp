#include <QAccessible>
#include <QLabel>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include "app/collage/CollageBoard.h"
#include "app/collage/CollageChooser.h"
#include "app/collage/CollagePanel.h"
#include "app/collage/CollageScreen.h"
#include "app/collage/LayoutStrip.h"
#include "app/collage/LimitNotice.h"
#include "app/kit/Button.h"
#include "app/kit/Motion.h"
#include "app/kit/Overlay.h"
#include "app/kit/Segments.h"
#include "collage/CollagePage.h"
#include "collage/SelectedCell.h"
#include "editor/EditorWorld.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

using namespace app;

/// The collage studio's screen on an editor with twelve photos, driven as by hand.
class CollageScreenTest : public EditorWorld {
protected:
    EditorModel m_model{m_services, EditorModel::Load::Empty};
    bool m_filled = fill();
    SettingsEdits m_edits{m_model, m_clock};
    ImportFlow m_imports{m_model, m_pipeline};
    Thumbnails m_thumbnails{m_pipeline};
    EditorState m_state;
    EditorContext m_context{m_model,    m_edits,       m_imports, m_thumbnails,
                            m_pipeline, m_preferences, m_clock,   m_state};
    QStringList m_offered;
    FileChooser m_chooser{[this](QWidget *, const FileChooser::Files &chosen) { chosen(m_offered); },
                          [this](QWidget *, const FileChooser::Files &chosen) { chosen(m_offered); },
                          {}};
    std::unique_ptr<CollageScreen> m_screen = std::make_unique<CollageScreen>(m_context, m_chooser);
    QSignalSpy m_closed{m_screen.get(), &CollageScreen::closeAsked};
    QSignalSpy m_finished{m_screen.get(), &CollageScreen::finished};

    bool fill()
    {
        QList<PhotoItem> list;
        for (int i = 0; i < 12; ++i) {
            list.append(photo(u"%1.jpg"_s.arg(i), i < 3 ? QSize(600, 400) : QSize(400, 600)));
        }
        return m_model.append(list) == 12;
    }

    void SetUp() override
    {
        Motion::setReduced(true);
        m_screen->resize(1440, 920);
        m_screen->begin();
        m_screen->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_screen.get()));
        m_screen->activateWindow();
    }

    CollageStudio &studio() const { return *m_screen->studio(); }
    CollageBoard &board() const { return *m_screen->board(); }
    ChooserGrid &grid() const { return *m_screen->findChild<ChooserGrid *>(); }
    const CollageCell &cell(int slot) const { return studio().design().cells.at(slot); }

    void tap(int photo) const
    {
        QTest::mouseClick(&grid(), Qt::LeftButton, {}, grid().itemRect(photo).center());
    }

    Button *button(const QString &name) const
    {
        for (Button *each : m_screen->findChildren<Button *>(name)) {
            if (each->isVisible()) {
                return each;
            }
        }
        return nullptr;
    }

    void press(const QString &name) const
    {
        Button *found = button(name);
        ASSERT_TRUE(found) << name.toStdString();
        QTest::mouseClick(found, Qt::LeftButton);
    }

    void openBoard(const QList<int> &photos)
    {
        for (const int each : photos) {
            tap(each);
        }
        press(u"makeCollage"_s);
        ASSERT_FALSE(studio().choosing());
        QCoreApplication::processEvents();
    }

    QPoint middle(int slot) const { return board().itemRect(slot).center(); }

    /// A drag as a hand makes it, in steps.
    void drag(QPoint from, QPoint by) const
    {
        QTest::mousePress(&board(), Qt::LeftButton, {}, from);
        for (int i = 1; i <= 10; ++i) {
            QTest::mouseMove(&board(), from + by * i / 10);
        }
    }
    void release(QPoint at) const { QTest::mouseRelease(&board(), Qt::LeftButton, {}, at); }

    /// Presses until the cell comes loose, as nothing else has the time of a hand.
    void lift(int slot) const
    {
        QTest::mousePress(&board(), Qt::LeftButton, {}, middle(slot));
        ASSERT_TRUE(waitFor([this] { return board().lifting(); }));
    }
};

TEST_F(CollageScreenTest, TapsAndKeysNumberPhotosInTheirOrderUpToNine)
{
    EXPECT_FALSE(button(u"makeCollage"_s)->isEnabled());
    tap(4);
    EXPECT_FALSE(button(u"makeCollage"_s)->isEnabled());
    grid().setFocus();
    QTest::keyClick(&grid(), Qt::Key_Right);
    QTest::keyClick(&grid(), Qt::Key_Space);
    EXPECT_EQ(studio().order(m_model.photos().at(4).id), 1);
    EXPECT_EQ(studio().order(m_model.photos().at(5).id), 2);
    EXPECT_TRUE(button(u"makeCollage"_s)->isEnabled());
    EXPECT_TRUE(grid().itemName(5).contains(u"place 2"_s));

    for (const int each : {0, 1, 2, 3, 6, 7, 8}) {
        tap(each);
    }
    EXPECT_EQ(studio().total(), 9);
    EXPECT_FALSE(m_screen->findChild<LimitNotice *>()->isVisible());
    tap(9);
    EXPECT_EQ(studio().total(), 9);
    EXPECT_TRUE(m_screen->findChild<LimitNotice *>()->isVisible());
    press(u"clearPicked"_s);
    EXPECT_EQ(studio().total(), 0);
}

TEST_F(CollageScreenTest, FilesJoinThePhotosOnOfferAndTheChosenOnes)
{
    photo(u"from disk.jpg"_s);
    m_offered = {m_library + u"/from disk.jpg"_s};
    press(u"addFiles"_s);
    ASSERT_TRUE(waitFor([this] { return !studio().importing(); }));
    EXPECT_EQ(grid().count(), 13);
    EXPECT_EQ(studio().total(), 1);
    EXPECT_EQ(m_model.photos().size(), 12);
}

TEST_F(CollageScreenTest, FiveChosenPhotosAreArrangedAndBecomeTheFirstOfTheSession)
{
    openBoard({0, 3, 4, 5, 6});
    ASSERT_EQ(studio().design().cells.size(), 5);

    // A divider snaps to the middle, with a read-out until it is let go.
    const CollageDivider divider = studio().layout().dividers.first();
    const QRectF parent = divider.parent;
    const QPoint handle = board().itemRect(5).center();
    const bool horizontal = divider.axis == CollageAxis::Horizontal;
    const double toMiddle =
        (0.5 - studio().design().node.ratio) * (horizontal ? parent.width() : parent.height());
    const QPoint way = horizontal ? QPoint(qRound(toMiddle) + 3, 0) : QPoint(0, qRound(toMiddle) + 3);
    drag(handle + QPoint(1, 1), way + QPoint(horizontal ? 40 : 0, horizontal ? 0 : 40));
    EXPECT_FALSE(board().gestures().snapped());
    QTest::mouseMove(&board(), handle + QPoint(1, 1) + way);
    EXPECT_TRUE(board().gestures().snapped());
    EXPECT_EQ(board().gestures().ratioLabel(), u"Centered · 50 : 50"_s);
    release(handle + QPoint(1, 1) + way);
    EXPECT_EQ(studio().design().node.ratio, 0.5);
    EXPECT_FALSE(board().gestures().ratioLabel());

    // Panning a photo, with something to pan.
    QTest::mouseClick(&board(), Qt::LeftButton, {}, middle(1));
    EXPECT_EQ(studio().selected(), 1);
    QTest::keyClick(&board(), Qt::Key_Plus);
    EXPECT_GT(cell(1).zoom, 1);
    drag(middle(1), {30, 25});
    release(middle(1));
    EXPECT_FALSE(cell(1).offset.isNull());

    // A frame for all cells.
    studio().select(2);
    SelectedCell(studio()).setFrame(CellFrame::white);
    press(u"copyTo2"_s);
    for (const CollageCell &each : studio().design().cells) {
        EXPECT_EQ(each.frame, CellFrame::white);
    }

    press(u"saveCollage"_s);
    EXPECT_TRUE(studio().saving());
    EXPECT_EQ(button(u"saveCollage"_s)->accessibleName(), u"Saving…"_s);
    ASSERT_TRUE(waitFor([this] { return m_finished.size() == 1; }));
    EXPECT_EQ(m_model.photos().size(), 13);
    EXPECT_EQ(m_model.photos().first().name, u"Collage"_s);
    EXPECT_EQ(m_model.selected(), m_model.photos().first().id);
    EXPECT_FALSE(m_screen->studio());
    EXPECT_TRUE(m_closed.isEmpty());
}

TEST_F(CollageScreenTest, ALongPressLiftsACellAndDroppingItSwaps)
{
    openBoard({0, 3, 4});
    const QUuid first = cell(0).photo;
    const QUuid third = cell(2).photo;
    lift(0);
    QTest::mouseMove(&board(), middle(2) - QPoint(5, 5));
    QTest::mouseMove(&board(), middle(2));
    release(middle(2));
    EXPECT_EQ(cell(0).photo, third);
    EXPECT_EQ(cell(2).photo, first);
    EXPECT_EQ(studio().selected(), 2);

    // Dropped beside the board, or given up with Esc, it stays.
    lift(0);
    QTest::mouseMove(&board(), {3, 3});
    release({3, 3});
    EXPECT_EQ(cell(0).photo, third);
    lift(0);
    QTest::keyClick(&board(), Qt::Key_Escape);
    QTest::mouseMove(&board(), middle(1));
    release(middle(1));
    EXPECT_EQ(cell(0).photo, third);
    EXPECT_TRUE(m_closed.isEmpty());
}

TEST_F(CollageScreenTest, TwoFingersZoomTheCellUnderThem)
{
    openBoard({0, 1, 2, 3});
    const std::unique_ptr<QPointingDevice> screen(QTest::createTouchDevice());
    const QPoint centre = middle(1);
    const QPoint arm(20, 0);
    QTest::touchEvent(&board(), screen.get())
        .press(0, centre - arm, &board())
        .press(1, centre + arm, &board());
    for (int i = 1; i <= 8; ++i) {
        const QPoint wider = arm * (8 + i) / 8;
        QTest::touchEvent(&board(), screen.get())
            .move(0, centre - wider, &board())
            .move(1, centre + wider, &board());
    }
    QTest::touchEvent(&board(), screen.get())
        .release(0, centre - 2 * arm, &board())
        .release(1, centre + 2 * arm, &board());
    EXPECT_GT(cell(1).zoom, 1.3);
    // Two fingers do not pan: what lies between them stays there.
    EXPECT_NEAR(cell(1).offset.width(), 0, 0.05);
    EXPECT_NEAR(cell(1).offset.height(), 0, 0.05);
    EXPECT_EQ(cell(0).zoom, 1);
}

TEST_F(CollageScreenTest, EveryCellAndDividerIsReachedAndMovedByKeys)
{
    openBoard({0, 3, 4});
    board().setFocus(Qt::TabFocusReason);
    QStringList names;
    for (int i = 0; i < board().count(); ++i) {
        EXPECT_EQ(board().cursor(), i);
        names.append(QAccessible::queryAccessibleInterface(&board())->child(i)->text(QAccessible::Name));
        if (i + 1 < board().count()) {
            QTest::keyClick(&board(), Qt::Key_Tab);
        }
    }
    EXPECT_EQ(names.size(), 5);
    EXPECT_TRUE(names.first().startsWith(u"Cell 1 of 3, "_s)) << names.first().toStdString();
    EXPECT_TRUE(names.last().startsWith(u"Divider, "_s)) << names.last().toStdString();
    QTest::keyClick(&board(), Qt::Key_Tab);
    EXPECT_FALSE(board().hasFocus());

    // The root's divider: one per cent, with Shift five.
    board().setFocus(Qt::TabFocusReason);
    EXPECT_EQ(board().cursor(), 2);
    QTest::keyClick(&board(), Qt::Key_Tab);
    const double before = studio().design().node.ratio;
    const bool horizontal = studio().design().node.axis == CollageAxis::Horizontal;
    QTest::keyClick(&board(), horizontal ? Qt::Key_Right : Qt::Key_Down);
    EXPECT_NEAR(studio().design().node.ratio, before + 0.01, 1e-9);
    QTest::keyClick(&board(), horizontal ? Qt::Key_Left : Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_NEAR(studio().design().node.ratio, before - 0.04, 1e-9);

    // Undo and redo by the window's usual keys.
    QTest::keyClick(&board(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NEAR(studio().design().node.ratio, before, 1e-9);
    QTest::keyClick(&board(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_NEAR(studio().design().node.ratio, before - 0.04, 1e-9);

    // Ctrl and an arrow swap with the neighbour, and the keyboard goes along.
    const QUuid photo = cell(1).photo;
    QTest::mouseClick(&board(), Qt::LeftButton, {}, middle(1));
    const int lower = middle(2).y() > middle(1).y() + 20 ? Qt::Key_Down : Qt::Key_Right;
    QTest::keyClick(&board(), static_cast<Qt::Key>(lower), Qt::ControlModifier);
    EXPECT_EQ(cell(2).photo, photo);
    EXPECT_EQ(board().cursor(), 2);
}

TEST_F(CollageScreenTest, APhotoDroppedOnACellTakesItsPlace)
{
    openBoard({0, 3, 4});
    QMimeData data;
    data.setData(QLatin1StringView(collagePhotoMime), m_model.photos().at(9).id.toString().toLatin1());
    const auto drop = [this](const QMimeData &what, QPoint at) {
        QDragEnterEvent enter(at, Qt::CopyAction, &what, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&board(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, &what, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&board(), &move);
        QDropEvent event(at, Qt::CopyAction, &what, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&board(), &event);
        return event.isAccepted();
    };
    EXPECT_FALSE(drop(data, {2, 2}));
    EXPECT_TRUE(drop(data, middle(1)));
    EXPECT_EQ(cell(1).photo, m_model.photos().at(9).id);

    photo(u"from disk.jpg"_s);
    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(m_library + u"/from disk.jpg"_s)});
    EXPECT_TRUE(drop(file, middle(2)));
    ASSERT_TRUE(waitFor([this] { return studio().photo(cell(2).photo)->name.startsWith(u"from disk"_s); }));

    // Beside the cells there is none to replace: the photo joins the others.
    photo(u"another.jpg"_s);
    file.setUrls({QUrl::fromLocalFile(m_library + u"/another.jpg"_s)});
    EXPECT_TRUE(drop(file, {2, 2}));
    ASSERT_TRUE(waitFor([this] { return studio().total() == 4; }));
}

TEST_F(CollageScreenTest, ALayoutIsChosenByTapAndOnlyAFilmStripHasAnEdge)
{
    openBoard({0, 3, 4});
    auto *layouts = m_screen->findChild<LayoutStrip *>();
    auto *tabs = m_screen->panel()->findChild<Segments *>();
    const auto choose = [&](int index) {
        QTest::mouseClick(layouts, Qt::LeftButton, {}, layouts->itemRect(index).center());
    };
    EXPECT_EQ(tabs->count(), 2);
    choose(layouts->count() - 1);
    EXPECT_TRUE(studio().design().preset.film);
    EXPECT_EQ(board().count(), 3) << "frames stand at their real distance";
    ASSERT_EQ(tabs->count(), 3);
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->itemRect(2).center());
    EXPECT_EQ(tabs->current(), 2);
    choose(0);
    EXPECT_FALSE(studio().design().preset.film);
    EXPECT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->current(), 0);
}

TEST_F(CollageScreenTest, AnArrangedBoardIsNotLostWithoutAQuestion)
{
    openBoard({0, 3, 4});
    QTest::mouseClick(&board(), Qt::LeftButton, {}, middle(1));
    SelectedCell(studio()).setFrame(CellFrame::instant);
    board().setFocus();
    QTest::keyClick(&board(), Qt::Key_Escape);
    EXPECT_FALSE(studio().selected());
    QTest::keyClick(&board(), Qt::Key_Escape);
    EXPECT_TRUE(m_closed.isEmpty());
    press(u"confirm"_s);
    EXPECT_EQ(m_closed.size(), 1);
    EXPECT_FALSE(m_screen->studio());
    EXPECT_EQ(m_model.photos().size(), 12);

    // Nothing has been arranged yet: nothing to ask.
    m_screen->begin();
    QCoreApplication::processEvents();
    openBoard({0, 3});
    board().setFocus();
    QTest::keyClick(&board(), Qt::Key_Escape);
    EXPECT_EQ(m_closed.size(), 2);
}

TEST_F(CollageScreenTest, EnterOnAFocusedButtonIsThatButtonsOwn)
{
    const auto enter = [](Button *button, Qt::Key key) {
        ASSERT_TRUE(button);
        button->setFocus(Qt::TabFocusReason);
        ASSERT_EQ(QApplication::focusWidget(), button);
        QTest::keyClick(button, key);
    };
    // In the question about an arranged board: the board stays as it is.
    openBoard({0, 3, 4});
    QTest::mouseClick(&board(), Qt::LeftButton, {}, middle(1));
    SelectedCell(studio()).setFrame(CellFrame::instant);
    QTest::keyClick(&board(), Qt::Key_Escape);
    QTest::keyClick(&board(), Qt::Key_Escape);
    enter(m_screen->findChild<Overlay *>()->findChild<Button *>(u"cancel"_s), Qt::Key_Return);
    EXPECT_TRUE(m_closed.isEmpty());
    ASSERT_TRUE(m_screen->studio());
    EXPECT_EQ(cell(1).frame, CellFrame::instant);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    // Beside a finished board and beside enough chosen photos it cancels, too, and makes nothing of them.
    enter(button(u"closeCollage"_s), Qt::Key_Return);
    EXPECT_FALSE(studio().saving());
    press(u"confirm"_s);
    EXPECT_EQ(m_closed.size(), 1);
    m_screen->begin();
    QCoreApplication::processEvents();
    tap(0);
    tap(1);
    enter(button(u"closeCollage"_s), Qt::Key_Enter);
    EXPECT_EQ(m_closed.size(), 2);
    EXPECT_FALSE(m_screen->studio());
    EXPECT_EQ(m_model.photos().size(), 12);
}

TEST_F(CollageScreenTest, OnlyAWheelWithItsKeyZooms)
{
    openBoard({0, 1});
    const auto turn = [this](Qt::KeyboardModifiers keys) {
        const QPointF at = middle(1);
        QWheelEvent event(at, board().mapToGlobal(at), {}, {0, 240}, Qt::NoButton, keys, Qt::NoScrollPhase,
                          false);
        QCoreApplication::sendEvent(&board(), &event);
    };
    turn(Qt::NoModifier);
    EXPECT_EQ(cell(1).zoom, 1);
    EXPECT_FALSE(studio().canUndo());
    turn(Qt::ControlModifier);
    EXPECT_GT(cell(1).zoom, 1.2);
}

TEST_F(CollageScreenTest, ACarriedCellLiesAboveTheVeilOfItsTarget)
{
    openBoard({0, 3, 4});
    const auto shown = [this](int slot) { return board().grab().toImage().pixelColor(middle(slot)); };
    ASSERT_TRUE(waitFor([&] { return shown(0).saturation() > 150 && shown(2).saturation() > 150; }));
    const QColor carried = shown(0);
    lift(0);
    QTest::mouseMove(&board(), middle(2) - QPoint(5, 5));
    QTest::mouseMove(&board(), middle(2));
    const QColor seen = shown(2);
    EXPECT_NEAR(seen.red(), carried.red(), 6);
    EXPECT_NEAR(seen.green(), carried.green(), 6);
    EXPECT_NEAR(seen.blue(), carried.blue(), 6);
    release(middle(2));
}

TEST_F(CollageScreenTest, ClosingWhileSavingGivesTheCollageUp)
{
    openBoard({0, 3, 4});
    CollagePage(studio()).setMargin(0.08);
    press(u"saveCollage"_s);
    ASSERT_TRUE(studio().saving());
    press(u"closeCollage"_s);
    EXPECT_TRUE(m_closed.isEmpty());
    press(u"confirm"_s);
    EXPECT_EQ(m_closed.size(), 1);
    // The next visit waits for what is left of the save.
    m_screen->begin();
    QCoreApplication::processEvents();
    EXPECT_EQ(m_model.photos().size(), 12);
    EXPECT_TRUE(m_finished.isEmpty());
    EXPECT_TRUE(studio().choosing());
}

TEST_F(CollageScreenTest, ACollageThatCannotBeSavedStaysOpenWithItsBoard)
{
    openBoard({0, 3, 4});
    CollagePage(studio()).setMargin(0.08);
    ASSERT_TRUE(QFile::remove(m_library + u"/3.jpg"_s));
    press(u"saveCollage"_s);
    ASSERT_TRUE(waitFor([this] { return !studio().saving(); }));
    EXPECT_TRUE(m_screen->findChild<Toast *>()->text().contains(u"Could not save the collage."_s));
    EXPECT_TRUE(button(u"saveCollage"_s)->isEnabled());
    EXPECT_EQ(studio().design().margin, 0.08);
    EXPECT_TRUE(m_finished.isEmpty());
}

} // namespace
} // namespace tarnovel::test
