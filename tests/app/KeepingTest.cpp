// What the window does when something would be lost: closing, sudden ends, sessions set aside, exports that
// stop.

#include <QClipboard>
#include <QProcess>

#include "app/collage/CollageScreen.h"
#include "app/export/ExportPanel.h"
#include "app/export/ProblemCard.h"
#include "app/handwriting/HandwritingScreen.h"
#include "app/kit/Button.h"
#include "app/kit/Label.h"
#include "app/kit/Overlay.h"
#include "app/kit/Switch.h"
#include "app/window/HomeScreen.h"
#include "app/window/RecoveryCard.h"
#include "base/Json.h"
#include "base/Log.h"
#include "collage/SelectedCell.h"
#include "model/Drafts.h"
#include "support/WindowTest.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

class KeepingWindow : public WindowTest {
protected:
    QString sessionFile() { return m_world->library() + u"/session.json"_s; }

    /// The next start of the program over the same folder.
    void restart()
    {
        m_world.reset();
        SetUp();
    }

    app::Overlay *question()
    {
        for (app::Overlay *overlay : window().findChildren<app::Overlay *>(Qt::FindDirectChildrenOnly)) {
            if (overlay->isVisible()) {
                return overlay;
            }
        }
        return nullptr;
    }

    /// Answers the open question by the place of its button, from the left.
    void answer(int button)
    {
        ASSERT_TRUE(waitFor([this] { return question() != nullptr; }));
        QList<app::Button *> buttons = question()->findChildren<app::Button *>();
        std::ranges::sort(buttons, {}, [](const app::Button *each) { return each->x(); });
        ASSERT_LT(button, buttons.size());
        click(buttons.at(button));
    }

    /// A folder stands where the document should be: nothing can be saved.
    void blockSaving()
    {
        model().flush();
        QFile::remove(sessionFile());
        ASSERT_TRUE(QDir().mkpath(sessionFile() + u"/in the way"_s));
    }
    void unblockSaving() { ASSERT_TRUE(QDir(sessionFile()).removeRecursively()); }

    void scaleTo(double scale)
    {
        FrameSettings changed = settings();
        changed.scale = scale;
        model().checkpoint();
        model().update(changed);
    }
};

TEST_F(KeepingWindow, ClosingAsksWhenTheLastSaveFailed)
{
    showPhotos(1);
    blockSaving();
    scaleTo(0.4);
    window().close();
    EXPECT_TRUE(window().isVisible());
    answer(1); // stay
    EXPECT_TRUE(waitFor([this] { return !question(); }));
    EXPECT_TRUE(window().isVisible());
    window().close();
    unblockSaving();
    answer(2); // try again
    EXPECT_TRUE(waitFor([this] { return !window().isVisible(); }));
    restart();
    EXPECT_EQ(settings().scale, 0.4);
    blockSaving();
    scaleTo(0.5);
    window().close();
    answer(0); // close anyway
    EXPECT_TRUE(waitFor([this] { return !window().isVisible(); }));
    unblockSaving();
}

TEST_F(KeepingWindow, ClosingInMidImportKeepsWhatHasComeIn)
{
    QStringList paths;
    for (int i = 0; i < 30; ++i) {
        paths.append(photo(QString::number(i)));
    }
    m_world->context().imports.start({.paths = paths});
    ASSERT_TRUE(waitFor([this] { return model().importProgress().startsWith(u"4 "_s); }));
    window().close();
    ASSERT_TRUE(window().isVisible());
    answer(1);
    EXPECT_TRUE(waitFor([this] { return !window().isVisible(); }));
    const qsizetype kept = model().photos().size();
    EXPECT_GE(kept, 3);
    restart();
    EXPECT_EQ(model().photos().size(), kept);
}

TEST_F(KeepingWindow, ASuddenEndKeepsEditsAndDraftsForTheNextStart)
{
    showPhotos(3);
    scaleTo(0.4);
    window().showCollage();
    CollageStudio &studio = *window().collage()->studio();
    for (const PhotoItem &item : model().photos()) {
        studio.toggle(item.id);
    }
    studio.start();
    studio.choosePreset(studio.presets().last().id);
    studio.select(1);
    SelectedCell(studio).setZoom(2);
    const CollageDesign design = studio.design();
    window().saveNow();
    restart();
    EXPECT_EQ(settings().scale, 0.4);
    // Put off, it outlives a visit that has nothing to do with it.
    window().offerDrafts();
    press(Qt::Key_Escape);
    window().showCollage();
    window().collage()->askToClose();
    EXPECT_TRUE(Drafts::read(m_world->library(), Drafts::Kind::Collage));
    window().offerDrafts();
    answer(2);
    ASSERT_TRUE(waitFor([this] { return window().collage() && window().collage()->studio(); }));
    EXPECT_EQ(window().collage()->studio()->design(), design);
    EXPECT_TRUE(window().collage()->studio()->canUndo());
    // Left with the question that any arranged board gets, it is no draft any more.
    window().collage()->askToClose();
    answer(1);
    EXPECT_TRUE(waitFor([this] { return !Drafts::read(m_world->library(), Drafts::Kind::Collage); }));
}

TEST_F(KeepingWindow, ASuddenEndKeepsInkAndAsksAgainUntilItIsGivenUp)
{
    showPhotos(2);
    window().showHandwriting();
    HandwritingController &studio = *window().handwriting()->studio();
    studio.setFinish(HandwritingFinish::rainbow);
    studio.penDown({{200, 300}, 0, 0.5});
    for (int i = 1; i < 20; ++i) {
        studio.penMove({{200.0 + 10 * i, 300.0 + 5 * i}, i * 0.01, 0.5, {10, -5}});
    }
    studio.penUp({{400, 400}, 0.2});
    const InkStroke stroke = studio.drawing().first()->stroke;
    window().saveNow();
    const QUuid signedPhoto = *model().selected();
    restart();
    window().offerDrafts();
    press(Qt::Key_Escape); // later
    EXPECT_TRUE(waitFor([this] { return !question(); }));
    restart();
    model().select(model().photos().last().id);
    window().offerDrafts();
    answer(2);
    ASSERT_TRUE(waitFor([this] { return window().handwriting() && window().handwriting()->studio(); }));
    EXPECT_EQ(model().selected(), signedPhoto);
    EXPECT_EQ(window().handwriting()->studio()->drawing().first()->stroke, stroke);
    EXPECT_EQ(window().handwriting()->studio()->finish(), HandwritingFinish::rainbow);
    window().saveNow();
    restart();
    window().offerDrafts();
    answer(0);
    EXPECT_TRUE(waitFor([this] { return !Drafts::read(m_world->library(), Drafts::Kind::Handwriting); }));
}

TEST_F(KeepingWindow, HomeBringsASetAsideSessionBack)
{
    showPhotos(3);
    ASSERT_TRUE(model().savePreset(u"mine"_s));
    model().flush();
    QFile file(sessionFile());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    Json document = parseJson(file.readAll());
    document["photos"][2]["settings"]["style"] = "of a newer version";
    file.resize(0);
    file.write(writeJson(document));
    file.close();
    Drafts::keep(m_world->library(), Drafts::Kind::Collage, "{}");
    restart();
    EXPECT_TRUE(model().photos().isEmpty());
    // Its photos are still to be brought back: the draft waits for them.
    window().offerDrafts();
    EXPECT_FALSE(question());
    Drafts::remove(m_world->library(), Drafts::Kind::Collage);
    auto *card = page().home()->findChild<app::RecoveryCard *>();
    ASSERT_TRUE(card && card->isVisible());
    // The keyboard is on what one most likely wants.
    press(Qt::Key_Return);
    EXPECT_EQ(model().photos().size(), 3);
    EXPECT_EQ(model().presets().size(), 1);
    EXPECT_FALSE(page().atHome());
    model().flush();
    restart();
    EXPECT_EQ(model().photos().size(), 3);
    // Not all of it could be read as it was: the document stays until it is discarded.
    card = page().home()->findChild<app::RecoveryCard *>();
    ASSERT_TRUE(card->isVisible());
    QList<app::Button *> buttons = card->findChildren<app::Button *>();
    std::ranges::sort(buttons, {}, [](const app::Button *each) { return each->x(); });
    EXPECT_FALSE(buttons.at(2)->isEnabled());
    click(buttons.at(0));
    answer(1);
    EXPECT_TRUE(waitFor([&] { return !card->isVisible(); }));
    EXPECT_EQ(model().photos().size(), 3);
}

TEST_F(KeepingWindow, AStoppedExportNamesThePhotoAndGoesOnWithoutIt)
{
    showPhotos(3);
    QFile::remove(m_world->library() + u'/' + model().photos().at(1).file);
    const QString goal = m_folder.filePath(u"goal"_s);
    ASSERT_TRUE(QDir().mkpath(goal));
    m_world->answers().folder = goal;
    press(Qt::Key_E, Qt::ControlModifier);
    press(Qt::Key_Return);
    app::ExportPanel &panel = *page().exporting();
    ASSERT_TRUE(waitFor([&] { return panel.problem().has_value(); }));
    auto *card = panel.findChild<app::ProblemCard *>();
    ASSERT_TRUE(card->isVisible());
    QString said;
    for (const app::Label *label : card->findChildren<app::Label *>()) {
        said += label->text() + u'\n';
    }
    EXPECT_TRUE(said.contains(model().photos().at(1).name)) << said.toStdString();
    EXPECT_TRUE(said.contains(u"There is no such file."_s));
    // The panel may be closed meanwhile; the run waits.
    press(Qt::Key_Escape);
    EXPECT_FALSE(page().exportShown());
    EXPECT_TRUE(panel.working());
    page().showExport(true);
    press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !panel.working(); }));
    EXPECT_EQ(QDir(goal).entryList(QDir::Files).size(), 2);
    ASSERT_TRUE(question());
    QString summary;
    for (const app::Label *label : question()->findChildren<app::Label *>()) {
        summary += label->text();
    }
    EXPECT_TRUE(summary.contains(u"Skipped: 1"_s)) << summary.toStdString();
}

TEST_F(KeepingWindow, ClosingAsksThroughWhateverIsOpen)
{
    showPhotos(1);
    blockSaving();
    scaleTo(0.4);
    window().showSettings();
    window().close();
    ASSERT_TRUE(window().isVisible());
    unblockSaving();
    answer(2);
    EXPECT_TRUE(waitFor([this] { return !window().isVisible(); }));
}

TEST_F(KeepingWindow, AMissingPictureIsShownWhereThePhotoIs)
{
    showPhotos(2);
    FrameSettings changed = settings();
    changed.background = Backdrop::image;
    changed.backgroundFile = u"gone.jpg"_s;
    model().change(*model().selected(), changed);
    EXPECT_TRUE(waitFor([this] { return model().previews().missing == QList{FramePicture::Background}; }));
    m_world->settle();
    EXPECT_TRUE(m_world->context().thumbnails.incomplete(*model().current()));
    EXPECT_FALSE(m_world->context().thumbnails.incomplete(model().photos().last()));
    changed.background = Backdrop::solid;
    changed.backgroundFile.reset();
    model().change(*model().selected(), changed);
    EXPECT_TRUE(waitFor([this] { return model().previews().missing.isEmpty(); }));
}

TEST_F(KeepingWindow, AStyleGivesWhatItsCardShows)
{
    showPhotos(2);
    const auto setBrand = [this](const QString &text) {
        FrameSettings changed = settings();
        changed.layer(u"brand"_s)->text = text;
        model().update(changed);
    };
    setBrand(u"of the first"_s);
    ASSERT_TRUE(model().savePreset(u"mine"_s));
    model().select(model().photos().last().id);
    setBrand(u"of the second"_s);
    window().state().setTool(app::Tool::Styles);
    m_world->settle();
    clickItem(u"styles"_s, 0);
    EXPECT_EQ(settings().layer(u"brand"_s)->text, u"of the second"_s);
    click(control(u"keepCameraTexts"_s));
    clickItem(u"styles"_s, 0);
    EXPECT_EQ(settings().layer(u"brand"_s)->text, u"of the first"_s);
    restart();
    EXPECT_FALSE(m_world->preferences().get(PreferenceKeys::keepCameraTexts));
}

TEST_F(KeepingWindow, AboutCopiesVersionsAndTheLog)
{
    installLog();
    qCWarning(logApp) << "a cause";
    window().showSettings();
    EXPECT_TRUE(control<app::Label>(u"licence"_s)->text().contains(u"GPL-3.0-or-later"_s));
    click(control(u"copyDetails"_s));
    const QString copied = QApplication::clipboard()->text();
    EXPECT_TRUE(copied.startsWith(u"Tarnovel "_s));
    EXPECT_TRUE(copied.contains(u"Qt "_s));
    EXPECT_TRUE(copied.contains(u"tarnovel.app: a cause"_s));
}

} // namespace
} // namespace tarnovel::test
