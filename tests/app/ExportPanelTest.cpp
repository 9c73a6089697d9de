// What the export panel offers, what it remembers, and what then lies in the folder.

#include <QDirIterator>
#include <QImageReader>

#include "app/export/ExportPanel.h"
#include "app/export/SizeChoice.h"
#include "app/kit/Button.h"
#include "app/kit/Overlay.h"
#include "app/kit/Segments.h"
#include "app/kit/Switch.h"
#include "app/kit/Theme.h"
#include "app/window/HomeScreen.h"
#include "support/WindowTest.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

class Exporting : public WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        showPhotos(3);
        m_world->answers().folder = m_folder.filePath(u"out"_s);
        QDir().mkpath(m_world->answers().folder);
        page().showExport(true);
    }

    ExportPanel &panel() { return *page().exporting(); }

    /// Exports, ends the summary, and gives the files of the folder.
    QFileInfoList exported()
    {
        click(control(u"startExport"_s));
        EXPECT_TRUE(waitFor([this] { return !panel().working() && window().findChild<Overlay *>(); }));
        press(Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(window().findChild<Overlay *>(), nullptr);
        return QDir(m_world->answers().folder).entryInfoList(QDir::Files, QDir::Name);
    }
};

TEST_F(Exporting, WritesWhatWasChosen)
{
    const QList<ExportTexts::Choice> sizes = ExportTexts::sizes();
    clickItem(u"sizes"_s,
              static_cast<int>(std::ranges::find(sizes, 1080, &ExportTexts::Choice::value) - sizes.begin()));
    clickItem(u"which"_s, 1);
    clickItem(u"format"_s, 1);
    EXPECT_FALSE(control(u"limit"_s)->isEnabled()) << "only a JPEG has a limit";
    model().select(model().photos().at(1).id);
    QFileInfoList files = exported();
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(files.first().fileName(), u"1-framed.png"_s);
    QImageReader picture(files.first().filePath());
    EXPECT_EQ(picture.size(), QSize(1080, 1440));
    EXPECT_EQ(picture.format(), "png");

    clickItem(u"format"_s, 0);
    EXPECT_TRUE(control(u"limit"_s)->isEnabled());
    clickItem(u"limit"_s, 1);
    clickItem(u"which"_s, 0);
    QFile::remove(files.first().filePath());
    files = exported();
    ASSERT_EQ(files.size(), 3);
    for (const QFileInfo &file : files) {
        EXPECT_EQ(QImageReader(file.filePath()).format(), "jpeg");
        EXPECT_LE(double(file.size()), ExportTexts::limits().at(1).value * 1'000'000 * 1.05);
    }
}

TEST_F(Exporting, RemembersTheFoldersChoicesAndNotThePicturesFolders)
{
    clickItem(u"format"_s, 1);
    page().showExport(false);
    page().showExport(true);
    EXPECT_EQ(control<Segments>(u"format"_s)->current(), 1);
    EXPECT_TRUE(ExportChoices::stored(m_world->preferences()).png);
    clickItem(u"destination"_s, 1);
    EXPECT_EQ(control<Segments>(u"format"_s)->current(), 0) << "a share of its own, always fresh";
    clickItem(u"destination"_s, 0);
    EXPECT_EQ(control<Segments>(u"format"_s)->current(), 1);
    clickItem(u"format"_s, 0);
    clickItem(u"limit"_s, 2);
    EXPECT_EQ(ExportChoices::stored(m_world->preferences()).maxMB, ExportTexts::limits().at(2).value);
    // Into the pictures folder, without a folder to choose.
    m_world->answers().folder.clear();
    clickItem(u"destination"_s, 1);
    click(control(u"startExport"_s));
    ASSERT_TRUE(waitFor([this] { return !panel().working() && window().findChild<Overlay *>(); }));
    int pictures = 0;
    for (QDirIterator found(m_folder.filePath(u"Pictures"_s), QDir::Files, QDirIterator::Subdirectories);
         found.hasNext(); found.next()) {
        ++pictures;
    }
    EXPECT_EQ(pictures, 3);
}

TEST_F(Exporting, GivesTheKeyboardBackAndEscClosesOnlyThePanel)
{
    press(Qt::Key_Escape);
    EXPECT_FALSE(page().exportShown());
    page().panel()->setFocus();
    QWidget *start = control(u"applyToAll"_s);
    start->setFocus();
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget(), control(u"startExport"_s));
    press(Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), start);
    press(Qt::Key_E, Qt::ControlModifier);
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_FALSE(page().exportShown());
}

TEST_F(Exporting, SettingsTakeEffectAtOnce)
{
    page().showExport(false);
    window().showSettings();
    clickItem(u"appearance"_s, 2);
    EXPECT_TRUE(theme().dark);
    clickItem(u"appearance"_s, 1);
    EXPECT_FALSE(theme().dark);
    EXPECT_EQ(m_world->preferences().get(PreferenceKeys::appearance).toString(), u"light"_s);
    const bool before = model().autoApplyLastStyle();
    click(control(u"autoApplyStyle"_s));
    EXPECT_EQ(model().autoApplyLastStyle(), !before);
    press(Qt::Key_Escape);
    page().showHome();
    auto *onHome = page().home()->findChild<Switch *>();
    EXPECT_EQ(onHome->isChecked(), !before) << "home shows the same choice";
    click(onHome);
    EXPECT_EQ(model().autoApplyLastStyle(), before);
}

} // namespace
} // namespace tarnovel::test
