#include <QApplication>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <QtTest/qtest_widgets.h>
#include <gtest/gtest.h>

#include "app/canvas/CanvasView.h"
#include "app/collage/CollageScreen.h"
#include "app/export/ExportPanel.h"
#include "app/inspector/TextSection.h"
#include "app/kit/Button.h"
#include "app/kit/CardGrid.h"
#include "app/kit/Overlay.h"
#include "app/kit/Press.h"
#include "app/window/EditorPage.h"
#include "app/window/FilmStrip.h"
#include "app/window/HomeScreen.h"
#include "app/window/ToolPanel.h"
#include "app/window/ToolRail.h"
#include "collage/CollagePage.h"
#include "collage/CollageStudio.h"
#include "render/BuiltInTemplate.h"
#include "support/AppWorld.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

class EditorWindow : public testing::Test {
protected:
    QTemporaryDir m_folder;
    std::unique_ptr<AppWorld> m_world;

    void SetUp() override { start(); }

    /// Starts the program, or starts it anew.
    void start()
    {
        m_world.reset();
        m_world = std::make_unique<AppWorld>(m_folder.path());
        window().resize(1440, 920);
        window().show();
        window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        m_world->settle();
    }

    MainWindow &window() { return m_world->window(); }
    EditorModel &model() { return m_world->model(); }
    EditorPage &page() { return *window().page(); }

    QString photo(const QString &name, QSize size = {600, 400}) const
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(static_cast<int>(qHash(name) % 360), 160, 200));
        const QString path = m_folder.filePath(name + u".jpg"_s);
        EXPECT_TRUE(image.save(path, "JPEG"));
        return path;
    }

    template<typename Widget = QWidget>
    Widget *control(const QString &name)
    {
        for (Widget *widget : window().findChildren<Widget *>(name)) {
            if (widget->isVisible()) {
                return widget;
            }
        }
        ADD_FAILURE() << "nothing is called " << name.toStdString();
        return nullptr;
    }

    void click(QWidget *widget, QPoint at = {})
    {
        ASSERT_NE(widget, nullptr);
        QTest::mouseClick(widget, Qt::LeftButton, {}, at);
    }

    void drag(QWidget *widget, QPointF from, QPointF way)
    {
        QTest::mousePress(widget, Qt::LeftButton, {}, from.toPoint());
        for (int step = 1; step <= 8; ++step) {
            QTest::mouseMove(widget, (from + way * step / 8).toPoint());
        }
        QTest::mouseRelease(widget, Qt::LeftButton, {}, (from + way).toPoint());
    }

    template<typename Condition>
    bool waitFor(Condition condition)
    {
        return QTest::qWaitFor(condition, 15'000);
    }

    const FrameSettings &settings() { return model().current()->settings; }
};

TEST_F(EditorWindow, TakesASetFromDropToExportAndFindsItAgain)
{
    EXPECT_TRUE(page().atHome());
    m_world->answers().photos = {photo(u"one"_s), photo(u"two"_s, {400, 600})};
    click(page().home()->addButton());
    ASSERT_TRUE(waitFor([this] { return model().photos().size() == 2; }));
    m_world->settle();
    EXPECT_FALSE(page().atHome());

    // A template from its card.
    auto *grid = page().panel()->findChild<CardGrid *>();
    const auto gallery = BuiltInTemplates::all().indexOf(BuiltInTemplate::gallery);
    click(grid, grid->itemRect(static_cast<int>(gallery)).center());
    EXPECT_EQ(settings().templateID, u"gallery"_s);

    // The photo follows the hand; an axis that comes near the centre holds to it.
    const FrameSettings before = settings();
    const QRectF frame = page().canvas()->frameRect();
    drag(page().canvas(), frame.center() + QPointF(0, -40), {0, 50});
    EXPECT_EQ(settings().x, 0);
    EXPECT_NEAR(settings().y, before.y + 50 / frame.height(), 0.01);

    // A title, typed.
    window().state().setTool(Tool::Text);
    window().state().selectLayer(u"title"_s);
    auto *field = control<QLineEdit>(u"text"_s);
    ASSERT_NE(field, nullptr);
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, u"Evening"_s);
    EXPECT_EQ(settings().layer(u"title"_s)->text, u"Evening"_s);
    EXPECT_TRUE(settings().layer(u"title"_s)->visible);

    // The title goes and comes back; then the drag, the title and the template are one step each.
    page().canvas()->setFocus();
    QTest::keyClick(page().canvas(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(settings().layer(u"title"_s)->text, u"Evening"_s);
    EXPECT_NE(settings().y, before.y);
    QTest::keyClick(page().canvas(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(settings().layer(u"title"_s)->text, u"Evening"_s);

    click(control(u"applyToAll"_s));
    for (const PhotoItem &item : model().photos()) {
        EXPECT_EQ(item.settings.layer(u"title"_s)->text, u"Evening"_s);
        EXPECT_EQ(item.settings.y, settings().y);
    }

    m_world->answers().folder = m_folder.filePath(u"out"_s);
    QDir().mkpath(m_world->answers().folder);
    QTest::keyClick(page().canvas(), Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(page().exportShown());
    click(control(u"startExport"_s));
    ASSERT_TRUE(waitFor([this] { return !page().exporting()->working(); }));
    EXPECT_EQ(QDir(m_world->answers().folder).entryList(QDir::Files),
              (QStringList{u"one-framed.jpg"_s, u"two-framed.jpg"_s}));
    EXPECT_TRUE(waitFor([this] { return window().findChild<Overlay *>() != nullptr; }));
    click(control(u"closeSheet"_s));

    const QList<PhotoItem> left = model().photos();
    window().close();
    start();
    EXPECT_TRUE(page().atHome());
    click(control(u"continueSession"_s));
    EXPECT_FALSE(page().atHome());
    EXPECT_EQ(model().photos(), left);
}

TEST_F(EditorWindow, EditsTextsOnThePicture)
{
    m_world->import({photo(u"one"_s)});
    FrameSettings settings = model().current()->settings;
    settings.layer(u"title"_s)->text = u"Title"_s;
    settings.layer(u"title"_s)->visible = true;
    model().update(settings);
    m_world->settle();
    CanvasView *canvas = page().canvas();
    const QRectF frame = canvas->frameRect();
    const TextLayer start = *this->settings().layer(u"title"_s);
    const QPointF centre = frame.topLeft() + QPointF(start.x * frame.width(), start.y * frame.height());

    drag(canvas, centre, {-60, -30});
    EXPECT_NEAR(this->settings().layer(u"title"_s)->x, start.x - 60 / frame.width(), 0.01);
    EXPECT_NEAR(this->settings().layer(u"title"_s)->y, start.y - 30 / frame.height(), 0.01);
    EXPECT_EQ(this->settings().x, 0) << "the photo stays";

    // A corner of its box makes it larger, in one step.
    const QRectF box = *canvas->layerBox();
    const QPointF corner = box.bottomRight() + QPointF(8, 8);
    drag(canvas, corner, corner - box.center());
    EXPECT_NEAR(this->settings().layer(u"title"_s)->size, start.size * 2, start.size * 0.1);
    model().undo();
    EXPECT_EQ(this->settings().layer(u"title"_s)->size, start.size);

    // Keys: the layer is nudged by half a percent, and Esc lets go of it.
    canvas->setFocus();
    const double x = this->settings().layer(u"title"_s)->x;
    QTest::keyClick(canvas, Qt::Key_Right);
    EXPECT_NEAR(this->settings().layer(u"title"_s)->x, x + 0.005, 1e-9);
    QTest::keyClick(canvas, Qt::Key_Escape);
    EXPECT_FALSE(window().state().selectedLayer());
    QTest::keyClick(canvas, Qt::Key_Tab);
    EXPECT_EQ(window().state().selectedLayer(), u"title"_s);

    // A double click opens the small editor, where typing changes the picture at once.
    const TextLayer moved = *this->settings().layer(u"title"_s);
    const QPointF now = frame.topLeft() + QPointF(moved.x * frame.width(), moved.y * frame.height());
    QTest::mouseDClick(canvas, Qt::LeftButton, {}, now.toPoint());
    auto *field = qobject_cast<QLineEdit *>(QApplication::focusWidget());
    ASSERT_NE(field, nullptr);
    QTest::keyClicks(field, u"New"_s);
    EXPECT_EQ(this->settings().layer(u"title"_s)->text, u"New"_s);
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), canvas) << "the keyboard returns";
}

TEST_F(EditorWindow, TheSmallEditorGoesWithItsText)
{
    m_world->import({photo(u"one"_s)});
    window().state().setTool(Tool::Text);
    click(control(u"addText"_s));
    const QString id = *window().state().selectedLayer();
    page().canvas()->setFocus();
    Q_EMIT page().canvas()->editTextAsked(id);
    auto *overlay = window().findChild<Overlay *>();
    ASSERT_NE(overlay, nullptr);
    model().undo();
    EXPECT_FALSE(settings().layer(id));
    EXPECT_FALSE(overlay->isVisible());
}

TEST_F(EditorWindow, AGestureThatIsUndoneIsOver)
{
    m_world->import({photo(u"one"_s)});
    CanvasView *canvas = page().canvas();
    const QPoint from = canvas->frameRect().center().toPoint();
    QTest::mousePress(canvas, Qt::LeftButton, {}, from);
    QTest::mouseMove(canvas, from + QPoint(60, 0));
    EXPECT_NE(settings().x, 0);
    model().undo();
    QTest::mouseMove(canvas, from + QPoint(120, 0));
    QTest::mouseRelease(canvas, Qt::LeftButton, {}, from + QPoint(120, 0));
    EXPECT_EQ(settings().x, 0) << "what follows would be a change without a step";
    EXPECT_TRUE(model().canRedo());
}

TEST_F(EditorWindow, ThePictureOfOnePhotoStaysWithIt)
{
    m_world->import({photo(u"one"_s), photo(u"two"_s)});
    const QUuid chosen = *model().selected();
    m_world->answers().picture = {photo(u"paper"_s)};
    Q_EMIT window().state().backgroundAsked();
    model().select(model().photos().at(1).id);
    m_world->settle();
    EXPECT_EQ(model().photo(chosen)->settings.background, Backdrop::image);
    EXPECT_EQ(settings().background, Backdrop::solid);
}

TEST_F(EditorWindow, ARunKeepsTheFilesOfPhotosThatAreRemoved)
{
    m_world->import(
        {photo(u"one"_s, {3000, 2000}), photo(u"two"_s, {3000, 2000}), photo(u"three"_s, {3000, 2000})});
    m_world->answers().folder = m_folder.filePath(u"out"_s);
    QDir().mkpath(m_world->answers().folder);
    page().showExport(true);
    click(control(u"startExport"_s));
    model().removePhotos({model().photos().last().id});
    model().scheduleSave(SaveScheduler::Moment::AtOnce);
    ASSERT_TRUE(waitFor([this] { return !page().exporting()->working(); }));
    EXPECT_EQ(QDir(m_world->answers().folder).entryList(QDir::Files).size(), 3);
    EXPECT_EQ(page().exporting()->folderExport().error(), QString());
}

TEST_F(EditorWindow, NoKeyReachesWhatLiesUnderASheet)
{
    m_world->import({photo(u"one"_s)});
    QTest::keyClick(page().canvas(), Qt::Key_F1);
    for (const auto &[key, modifier] :
         {std::pair(Qt::Key_F1, Qt::NoModifier), std::pair(Qt::Key_Comma, Qt::ControlModifier),
          std::pair(Qt::Key_M, Qt::ControlModifier), std::pair(Qt::Key_4, Qt::AltModifier)}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifier);
    }
    EXPECT_EQ(window().findChildren<Overlay *>().size(), 1);
    EXPECT_EQ(window().currentPage(), &page());
    EXPECT_EQ(window().state().tool(), Tool::Templates);
}

TEST_F(EditorWindow, TheStripScrollsWithoutAsking)
{
    QStringList files;
    for (int i = 0; i < 20; ++i) {
        files.append(photo(QString::number(i), {60, 40}));
    }
    m_world->import(files);
    StripView *strip = page().strip()->view();
    const QUuid selected = *model().selected();
    QTest::mousePress(strip, Qt::LeftButton, {}, QPoint(400, 30));
    QTest::mouseMove(strip, QPoint(380, 30));
    QTest::mouseMove(strip, QPoint(300, 30));
    bool asked = false;
    QObject::connect(strip, &ItemView::menuRequested, strip, [&asked] { asked = true; });
    EXPECT_FALSE(QTest::qWaitFor([&asked] { return asked; }, 2 * Press::menuMs)) << "a drag is no long press";
    QTest::mouseRelease(strip, Qt::LeftButton, {}, QPoint(300, 30));
    const int dragged = strip->itemRect(0).left();
    EXPECT_LT(dragged, -60) << "the photos follow the hand";
    QWheelEvent turn({400, 30}, strip->mapToGlobal(QPointF(400, 30)), {}, {0, 60}, {}, {}, Qt::NoScrollPhase,
                     false);
    QCoreApplication::sendEvent(strip, &turn);
    EXPECT_GT(strip->itemRect(0).left(), dragged) << "and the wheel as in any list";
    EXPECT_EQ(window().findChild<Overlay *>(), nullptr);
    EXPECT_EQ(model().selected(), selected);
    strip->setFocus();
    QTest::keyClick(strip, Qt::Key_End);
    EXPECT_EQ(model().selected(), model().photos().last().id);
    EXPECT_TRUE(strip->rect().contains(strip->itemRect(19))) << "what is chosen comes into sight";
    QStringList shown;
    for (const QLabel *label : page().strip()->findChildren<QLabel *>()) {
        shown.append(label->text());
    }
    EXPECT_TRUE(shown.contains(u"20 of 20"_s)) << shown.join(u'|').toStdString();
}

TEST_F(EditorWindow, SaysWhatCouldNotBeReadAndKeepsTheRest)
{
    QFile broken(m_folder.filePath(u"broken.jpg"_s));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("no picture");
    broken.close();
    m_world->import({photo(u"one"_s), broken.fileName()});
    EXPECT_EQ(model().photos().size(), 1);
    EXPECT_EQ(window().toast()->text(), u"1 file could not be read."_s);
    EXPECT_TRUE(window().toast()->isVisible());

    // A file that goes while the program runs: its export fails with a message, the program goes on.
    QFile::remove(m_world->library() + u'/' + model().current()->file);
    m_world->answers().folder = m_folder.path();
    page().showExport(true);
    click(control(u"startExport"_s));
    ASSERT_TRUE(waitFor([this] { return page().exporting()->problem().has_value(); }));
    click(control(u"stopExport"_s));
    EXPECT_TRUE(page().exporting()->folderExport().error().startsWith(u"Export failed: "_s));
}

TEST_F(EditorWindow, AsksBeforePhotosGo)
{
    m_world->import({photo(u"one"_s), photo(u"two"_s), photo(u"three"_s)});
    StripView *strip = page().strip()->view();
    strip->setFocus();
    QTest::keyClick(strip, Qt::Key_Right);
    EXPECT_EQ(model().selected(), model().photos().at(1).id);
    QTest::keyClick(strip, Qt::Key_Delete);
    EXPECT_EQ(QApplication::focusWidget(), control(u"cancel"_s)) << "the keyboard starts on Cancel";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_EQ(model().photos().size(), 3);
    QTest::keyClick(strip, Qt::Key_Delete);
    click(control(u"confirm"_s));
    EXPECT_EQ(model().photos().size(), 2);

    window().showManage();
    click(control(u"selectAll"_s));
    click(control(u"removePicked"_s));
    click(control(u"confirm"_s));
    EXPECT_TRUE(model().photos().isEmpty());
    EXPECT_TRUE(page().atHome());
}

TEST_F(EditorWindow, SpeaksTheChosenLanguageAtOnce)
{
    m_world->import({photo(u"one"_s)});
    EXPECT_EQ(control(u"applyToAll"_s)->accessibleName(), u"Apply to all"_s);
    setLanguageSources({[] { return u"french"_s; }, [] { return QStringList(); }});
    window().retranslate();
    EXPECT_EQ(control(u"applyToAll"_s)->accessibleName(), u"Appliquer à tout"_s);
    EXPECT_EQ(page().findChild<ToolRail *>()->itemName(0), u"Modèles"_s);
    setLanguageSources({});
}

TEST_F(EditorWindow, StoppingAnExportToQuitStillAsksForABoard)
{
    QStringList files;
    for (int i = 0; i < 9; ++i) {
        files.append(photo(QString::number(i), {3000, 2000}));
    }
    m_world->import(files);
    m_world->answers().folder = m_folder.filePath(u"out"_s);
    QDir().mkpath(m_world->answers().folder);
    page().showExport(true);
    click(control(u"startExport"_s));
    window().showCollage();
    CollageStudio &studio = *window().collage()->studio();
    studio.toggle(model().photos().at(0).id);
    studio.toggle(model().photos().at(1).id);
    studio.start();
    CollagePage(studio).setGap(0.05);
    ASSERT_TRUE(page().exporting()->working());
    window().close();
    click(control(u"confirm"_s));
    EXPECT_TRUE(window().isVisible());
    QCoreApplication::processEvents();
    click(control(u"confirm"_s));
    EXPECT_TRUE(waitFor([this] { return !window().isVisible(); }));
}

TEST_F(EditorWindow, NamesEveryControlForScreenReaders)
{
    m_world->import({photo(u"one"_s)});
    for (const ToolRow &row : toolRows) {
        window().state().setTool(row.tool);
        for (const QWidget *widget : window().findChildren<QWidget *>()) {
            if (widget->isVisible() && widget->focusPolicy() & Qt::TabFocus) {
                EXPECT_FALSE(widget->accessibleName().isEmpty())
                    << widget->metaObject()->className() << " in " << row.id;
            }
        }
    }
}

} // namespace
} // namespace tarnovel::test
