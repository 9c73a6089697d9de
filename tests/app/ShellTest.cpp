// The window around the editor: keys, the keyboard's place, overlays, what comes from outside, where it
// stands.

#include <QClipboard>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMimeData>
#include <QWheelEvent>

#include "app/canvas/CanvasView.h"
#include "app/collage/CollageBoard.h"
#include "app/collage/CollageScreen.h"
#include "app/collage/LayoutStrip.h"
#include "app/export/ExportPanel.h"
#include "app/export/SizeChoice.h"
#include "app/inspector/Section.h"
#include "app/kit/Button.h"
#include "app/kit/Focus.h"
#include "app/kit/Overlay.h"
#include "app/kit/Segments.h"
#include "app/kit/Switch.h"
#include "app/screens/ManagePhotos.h"
#include "app/screens/SetPreview.h"
#include "app/window/FileDrops.h"
#include "app/window/FilmStrip.h"
#include "app/window/HomeScreen.h"
#include "app/window/ToolRail.h"
#include "collage/CollageStudio.h"
#include "support/WindowTest.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

class Shell : public WindowTest {
protected:
    Overlay *overlay()
    {
        for (Overlay *each : window().findChildren<Overlay *>()) {
            if (each->isVisible()) {
                return each;
            }
        }
        return nullptr;
    }
};

TEST_F(Shell, ButtonsAndSwitchesTakeEnterAndSpace)
{
    Button button(Button::Kind::Secondary, [] { return u"Go"_s; });
    Switch toggle([] { return u"On"_s; });
    int clicks = 0;
    QObject::connect(&button, &QPushButton::clicked, &button, [&] { ++clicks; });
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        const auto modifier = key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier;
        const bool on = toggle.isChecked();
        const int before = clicks;
        QTest::keyClick(&button, key, modifier);
        QTest::keyClick(&toggle, key, modifier);
        EXPECT_EQ(clicks, before + 1);
        EXPECT_NE(toggle.isChecked(), on);
    }
    QTest::keyClick(&button, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(clicks, 3) << "Ctrl+Return is the window's";
}

TEST_F(Shell, OverlaysTakeEnterAndEscAndGiveTheKeyboardBack)
{
    showPhotos(3);
    struct Row {
        const char *what;
        std::function<void()> open;
        bool enterConfirms;
    };
    const std::vector<Row> rows = {
        {"remove", [&] { press(Qt::Key_Delete); }, false},
        {"save a style", [&] { press(Qt::Key_S, Qt::ControlModifier); }, true},
        {"settings", [&] { press(Qt::Key_Comma, Qt::ControlModifier); }, false},
        {"guide", [&] { press(Qt::Key_F1); }, false},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        for (const Qt::Key end : {Qt::Key_Escape, Qt::Key_Return}) {
            QWidget *start = page().strip()->view();
            start->setFocus();
            row.open();
            ASSERT_NE(overlay(), nullptr);
            EXPECT_TRUE(overlay()->isAncestorOf(QApplication::focusWidget()));
            EXPECT_TRUE(keyboardFocusVisible()) << "opened by a key, it shows where the keyboard is";
            if (end == Qt::Key_Escape) {
                press(end);
                EXPECT_EQ(overlay(), nullptr);
                EXPECT_EQ(QApplication::focusWidget(), start);
            } else if (row.enterConfirms) {
                type(u"Mine"_s);
                press(end);
                EXPECT_EQ(overlay(), nullptr);
                EXPECT_EQ(QApplication::focusWidget(), start);
                EXPECT_EQ(model().presets().size(), 1);
            } else {
                // Whatever has the keyboard at first, Tab never leaves the card.
                for (int i = 0; i < 12; ++i) {
                    press(Qt::Key_Tab);
                    EXPECT_TRUE(overlay()->isAncestorOf(QApplication::focusWidget()));
                }
                press(Qt::Key_Escape);
            }
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    // The question before a removal starts on Cancel; one Tab on is the button that removes.
    page().strip()->view()->setFocus();
    press(Qt::Key_Delete);
    press(Qt::Key_Return);
    EXPECT_EQ(model().photos().size(), 3);
    press(Qt::Key_Delete);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_EQ(model().photos().size(), 2);
}

TEST_F(Shell, TakesASessionByKeyboardAloneFromEmptyToExported)
{
    ASSERT_TRUE(page().atHome());
    EXPECT_EQ(QApplication::focusWidget(), page().home()->addButton());
    m_world->answers().photos = {photo(u"IMG_1"_s), photo(u"IMG_2"_s)};
    m_world->answers().folder = m_folder.filePath(u"out"_s);
    QDir().mkpath(m_world->answers().folder);
    press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([this] { return model().photos().size() == 2; }));
    m_world->settle();
    EXPECT_EQ(QApplication::focusWidget(), page().canvas());
    press(Qt::Key_6, Qt::AltModifier);
    EXPECT_EQ(window().state().tool(), Tool::Border);
    press(Qt::Key_F6);
    EXPECT_EQ(QApplication::focusWidget(), page().strip()->view());
    press(Qt::Key_Right);
    EXPECT_EQ(model().selected(), model().photos().last().id);
    press(Qt::Key_F6);
    EXPECT_TRUE(page().panel()->isAncestorOf(QApplication::focusWidget()));
    EXPECT_TRUE(keyboardFocusVisible());
    press(Qt::Key_Return, Qt::ControlModifier);
    press(Qt::Key_E, Qt::ControlModifier);
    ASSERT_TRUE(page().exportShown());
    press(Qt::Key_Return);
    EXPECT_TRUE(page().exporting()->isAncestorOf(QApplication::focusWidget())) << "on Cancel meanwhile";
    ASSERT_TRUE(waitFor([this] { return overlay() != nullptr; }));
    const QStringList files = QDir(m_world->answers().folder).entryList(QDir::Files);
    EXPECT_EQ(files.size(), 2);
    // One before Done, the files are copied.
    for (Button *button : overlay()->findChildren<Button *>()) {
        if (button->objectName() == u"copyFiles"_s) {
            click(button);
        }
    }
    EXPECT_EQ(QGuiApplication::clipboard()->mimeData()->urls().size(), 2);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_EQ(overlay(), nullptr);
}

TEST_F(Shell, TheWheelMakesThePhotoLargerAndSmaller)
{
    showPhotos(1);
    const double before = settings().scale;
    const auto turn = [&](int by) {
        CanvasView *canvas = page().canvas();
        const QPointF at = canvas->rect().center();
        QWheelEvent event(at, canvas->mapToGlobal(at), {}, {0, by}, {}, Qt::ControlModifier,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(canvas, &event);
    };
    turn(-240);
    EXPECT_LT(settings().scale, before);
    turn(480);
    EXPECT_GT(settings().scale, before);
}

TEST_F(Shell, TheSetIsReorderedByHandAndByKeys)
{
    showPhotos(4);
    window().showSetPreview();
    auto *grid = window().currentPage()->findChild<PostGrid *>();
    const QList<PhotoItem> before = model().photos();
    drag(grid, grid->itemRect(0).center(), grid->itemRect(2).center() - grid->itemRect(0).center());
    EXPECT_EQ(model().photos().at(2).id, before.at(0).id);
    grid->setFocus();
    grid->setCursorItem(2);
    press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(model().photos().at(1).id, before.at(0).id);
    press(Qt::Key_Right, Qt::AltModifier);
    press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(model().photos().at(1).id, before.at(0).id);
    grid->setCursorItem(3);
    press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(model().photos().at(0).id, before.at(3).id);
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(model().photos().at(3).id, before.at(3).id);
    // A photo that is lifted goes back with Esc, and the screen stays.
    const QList<PhotoItem> ordered = model().photos();
    QTest::mousePress(grid, Qt::LeftButton, {}, grid->itemRect(0).center());
    QTest::mouseMove(grid, grid->itemRect(1).center());
    QTest::mouseMove(grid, grid->itemRect(2).center());
    press(Qt::Key_Escape);
    QTest::mouseRelease(grid, Qt::LeftButton, {}, grid->itemRect(2).center());
    EXPECT_EQ(model().photos(), ordered);
    EXPECT_NE(window().currentPage(), &page());
    press(Qt::Key_Escape);
    EXPECT_EQ(window().currentPage(), &page());
    click(control<Button>(u"previewSet"_s));
    EXPECT_TRUE(window().currentPage()->findChild<PostGrid *>());
    click(control<Button>(u"exportSet"_s));
    EXPECT_EQ(window().currentPage(), &page());
    EXPECT_TRUE(page().exportShown());
    page().showExport(false);
    click(control<Button>(u"managePhotos"_s));
    EXPECT_TRUE(window().currentPage()->findChild<ManageGrid *>());
}

TEST_F(Shell, ManagingRemovesThePickedAndClearsAll)
{
    showPhotos(4);
    window().showManage();
    auto *grid = window().currentPage()->findChild<ManageGrid *>();
    const QUuid second = model().photos().at(1).id;
    click(grid, grid->itemRect(0).center());
    EXPECT_EQ(grid->picked().size(), 1);
    click(grid, grid->itemRect(0).center());
    EXPECT_TRUE(grid->picked().empty()) << "a second click lets it go";
    press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(grid->picked().size(), 4);
    click(control<Button>(u"deselect"_s));
    EXPECT_TRUE(grid->picked().empty());
    grid->setFocus();
    click(grid, grid->itemRect(1).center());
    press(Qt::Key_Delete);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_EQ(model().photos().size(), 3);
    EXPECT_EQ(model().photo(second), nullptr);
    click(control<Button>(u"clearAll"_s));
    press(Qt::Key_Return);
    EXPECT_EQ(model().photos().size(), 3) << "the question starts on Cancel";
    click(control<Button>(u"clearAll"_s));
    press(Qt::Key_Tab);
    press(Qt::Key_Return);
    EXPECT_TRUE(model().photos().isEmpty());
    EXPECT_TRUE(page().atHome());
}

TEST_F(Shell, ChoicesAreKept)
{
    showPhotos(1);
    page().showExport(true);
    auto *sizes = page().exporting()->findChild<SizeChoice *>();
    const int other = sizes->current() == 0 ? 1 : 0;
    click(sizes, sizes->itemRect(other).center());
    page().showExport(false);
    page().showExport(true);
    EXPECT_EQ(sizes->current(), other);
    EXPECT_EQ(ExportChoices::stored(m_world->preferences()).resolution,
              static_cast<int>(ExportTexts::sizes().at(other).value));
    page().showExport(false);
    window().showSettings();
    auto *languages = overlay()->findChild<Segments *>();
    const std::array names = {u"chinese"_s, u"english"_s, u"french"_s};
    for (int i = 0; i < 3; ++i) {
        click(languages, languages->itemRect(i + 1).center());
        EXPECT_EQ(m_world->preferences().get(PreferenceKeys::language).toString(),
                  names.at(static_cast<size_t>(i)));
    }
}

TEST_F(Shell, WindowKeysCloseQuitAndFill)
{
    press(Qt::Key_F11);
    EXPECT_TRUE(window().isFullScreen());
    press(Qt::Key_F11);
    EXPECT_FALSE(window().isFullScreen());
    // Whatever lies over the page, these are the window's.
    showPhotos(1);
    window().showSettings();
    press(Qt::Key_F11);
    EXPECT_TRUE(window().isFullScreen());
    press(Qt::Key_F11);
    EXPECT_NE(overlay(), nullptr);
    for (const Qt::Key key : {Qt::Key_W, Qt::Key_Q}) {
        window().show();
        window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        press(key, Qt::ControlModifier);
        EXPECT_FALSE(window().isVisible());
    }
}

TEST_F(Shell, EveryPanelsFreeHeightIsBelowItsLastControl)
{
    showPhotos(1);
    window().setMinimumSize(0, 0);
    for (const ToolRow &row : toolRows) {
        SCOPED_TRACE(row.id);
        const auto bottoms = [&](int height) {
            window().resize(1440, height);
            window().state().setTool(row.tool);
            m_world->settle();
            QList<QRect> places;
            QWidget *section = page().panel()->section();
            for (QWidget *part : section->findChildren<QWidget *>()) {
                if (part->isVisible()) {
                    places.append({part->mapTo(section, QPoint()), part->size()});
                }
            }
            return places;
        };
        EXPECT_EQ(bottoms(1400), bottoms(1030));
    }
}

TEST_F(Shell, TheStripKeepsEveryFramesRatio)
{
    showPhotos(1);
    for (const auto &[width, height] :
         {std::pair{5.0, 1.0}, {2.39, 1.0}, {3.0, 2.0}, {1.0, 1.0}, {1.0, 4.0}}) {
        FrameSettings wide = settings();
        wide.preset = CanvasPreset::custom;
        wide.customWidth = width;
        wide.customHeight = height;
        model().update(wide);
        m_world->settle();
        const StripView *strip = page().strip()->view();
        const QRect picture = strip->pictureRect(0);
        EXPECT_TRUE(strip->itemRect(0).contains(picture));
        const double wanted = wide.ratio(model().current()->size());
        EXPECT_NEAR(double(picture.width()) / picture.height(), wanted, wanted * 0.06)
            << width << ':' << height;
    }
}

TEST_F(Shell, ASmallWindowFoldsThePanelToADrawer)
{
    showPhotos(2);
    window().setMinimumSize(900, 600);
    window().resize(900, 600);
    m_world->settle();
    EXPECT_FALSE(page().panel()->isVisible());
    EXPECT_EQ(page().canvas()->width(), 820);
    const auto tapTool = [&](Tool tool) {
        auto *rail = page().findChild<ToolRail *>();
        click(rail, rail->itemRect(static_cast<int>(tool)).center());
    };
    tapTool(Tool::Border);
    EXPECT_TRUE(page().panel()->isVisible());
    EXPECT_EQ(page().panel()->mapTo(&window(), QPoint(304, 0)).x(), 820);
    m_world->settle();
    EXPECT_EQ(page().canvas()->width(), 820 - 304) << "the picture stays in sight beside its controls";
    tapTool(Tool::Text);
    EXPECT_TRUE(page().panel()->isVisible());
    tapTool(Tool::Text);
    EXPECT_FALSE(page().panel()->isVisible());
    press(Qt::Key_5, Qt::AltModifier);
    EXPECT_TRUE(page().panel()->isVisible());
    press(Qt::Key_Escape);
    EXPECT_FALSE(page().panel()->isVisible());
    window().resize(1440, 920);
    m_world->settle();
    EXPECT_TRUE(page().panel()->isVisible());
    EXPECT_EQ(page().canvas()->width(), 1440 - 304 - 80);
}

TEST_F(Shell, TakesDropsOfFilesFoldersAndImages)
{
    const QString folder = m_folder.filePath(u"set"_s);
    QDir().mkpath(folder);
    const auto drop = [&](const std::function<void(QMimeData &)> &fill) {
        QMimeData data;
        fill(data);
        const QPoint at = window().rect().center();
        QDragEnterEvent enters(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &enters);
        QDropEvent event(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&window(), &event);
        m_world->settle();
    };
    photo(u"set/IMG"_s);
    QFile::rename(folder + u"/IMG.jpg"_s, folder + u"/IMG.JPG"_s);
    drop([&](QMimeData &data) { data.setUrls({QUrl::fromLocalFile(folder)}); });
    EXPECT_EQ(model().photos().size(), 1) << "IMG.JPG of a folder";
    drop([&](QMimeData &data) { data.setUrls({QUrl::fromLocalFile(photo(u"single"_s))}); });
    EXPECT_EQ(model().photos().size(), 2);
    drop([](QMimeData &data) {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::blue);
        data.setImageData(image);
        data.setUrls({QUrl(u"https://example.org/picture"_s)});
    });
    EXPECT_TRUE(waitFor([&] { return model().photos().size() == 3; })) << "the picture itself";
    window().toast()->hide();
    drop([](QMimeData &data) { data.setUrls({QUrl(u"https://example.org/picture"_s)}); });
    EXPECT_EQ(model().photos().size(), 3);
    EXPECT_TRUE(window().toast()->isVisible()) << "refused with a word";
    EXPECT_EQ(FileDrops::pictures(QStringList{folder}).size(), 1);
    EXPECT_EQ(FileDrops::pathOf(QUrl::fromLocalFile(folder).toString()), folder);
}

TEST_F(Shell, TheLayoutStripFollowsThePhotosOfTheBoard)
{
    showPhotos(5);
    window().showCollage();
    CollageStudio &studio = *window().collage()->studio();
    studio.clearPicked();
    const QList<PhotoItem> photos = model().photos();
    for (int i = 0; i < 3; ++i) {
        studio.toggle(photos.at(i).id);
    }
    studio.start();
    const auto *strip = window().collage()->findChild<LayoutStrip *>();
    for (const int photo : {3, 4, 3}) {
        studio.toggle(photos.at(photo).id);
        ASSERT_EQ(strip->count(), studio.presets().size());
        for (int i = 0; i < strip->count(); ++i) {
            EXPECT_TRUE(strip->itemName(i).contains(studio.presets().at(i).title));
        }
    }
}

TEST_F(Shell, MessagesGoByThemselvesAndErrorsLater)
{
    const auto gone = [this] { return !window().toast()->isVisible(); };
    const auto timeOf = [&](Toast::Kind kind) {
        QElapsedTimer shown;
        shown.start();
        window().state().say(u"A message"_s, kind);
        EXPECT_TRUE(window().toast()->isVisible());
        EXPECT_TRUE(QTest::qWaitFor(gone, 30'000));
        return shown.elapsed();
    };
    // Both are counted by the same machine, however slow it is.
    EXPECT_GT(timeOf(Toast::Kind::Error), timeOf(Toast::Kind::Done) + 1000);
    window().state().say(u"A message"_s, Toast::Kind::Error);
    click(window().toast(), window().toast()->rect().center());
    EXPECT_TRUE(gone()) << "a click sends it away";
}

TEST_F(Shell, AClickOutsideClosesAPopoverAndNotASheet)
{
    showPhotos(1);
    press(Qt::Key_S, Qt::ControlModifier);
    ASSERT_NE(overlay(), nullptr);
    click(overlay(), {4, 4});
    EXPECT_EQ(overlay(), nullptr);
    window().showSettings();
    click(overlay(), {4, 4});
    EXPECT_NE(overlay(), nullptr);
}

} // namespace
} // namespace tarnovel::test
