#include <QDateTime>
#include <QFileInfo>

#include "base/FileError.h"
#include "editor/EditorWorld.h"
#include "export/ExportChoices.h"
#include "export/ExportFileLifetime.h"
#include "export/ExportReviewPolicy.h"
#include "export/FolderExport.h"
#include "export/LibraryExport.h"
#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

class Exports : public EditorWorld {
protected:
    EditorModel m_model{m_services, EditorModel::Load::Empty};
    QString m_goal = m_folder.filePath(u"goal"_s);
    const ExportOptions m_small = {.longEdge = 720};

    void SetUp() override { ASSERT_TRUE(QDir().mkpath(m_goal)); }

    static QStringList entries(const QString &folder)
    {
        return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    QStringList temporary() const { return entries(m_folder.filePath(u"temporary/Exports"_s)); }
};

using Choosing = Exports;
using IntoAFolder = Exports;
using IntoTheLibrary = Exports;
using TemporaryFiles = Exports;
using Review = Exports;

TEST_F(Choosing, RemembersThePanelAndCountsTheRun)
{
    EXPECT_EQ(ExportChoices::stored(m_preferences).resolution, 4096);
    ExportChoices choices{.resolution = 0, .png = true, .maxMB = 2};
    choices.store(m_preferences);
    m_preferences.set(PreferenceKeys::exportMaxMB, 7.0);
    m_preferences.set(Preference<QVariant>{PreferenceKeys::exportResolution.key}, {u"wide"_s});
    EXPECT_EQ(ExportChoices::stored(m_preferences).resolution, 4096);
    m_preferences.set(PreferenceKeys::exportResolution, 0.0);
    m_preferences.set(PreferenceKeys::exportMaxMB, 5.0);
    EXPECT_EQ(ExportChoices::stored(m_preferences).maxMB, 5);
    m_preferences.set(PreferenceKeys::exportMaxMB, 7.0);
    const ExportChoices stored = ExportChoices::stored(m_preferences);
    EXPECT_EQ(stored.resolution, 0);
    EXPECT_TRUE(stored.png);
    EXPECT_EQ(stored.maxMB, 0);
    EXPECT_EQ(ExportChoices::forSheet().resolution, 1080);
    EXPECT_EQ(choices.options(), (ExportOptions{true, 1080, true, 0}));
    choices.png = false;
    EXPECT_EQ(choices.options().maxMB, 2);
    EXPECT_EQ(choices.photos(m_model).size(), 0);
    m_model.append(photos(3));
    EXPECT_EQ(choices.photos(m_model).size(), 3);
    choices.all = false;
    EXPECT_EQ(choices.photos(m_model).first().id, m_model.selected());
    EXPECT_EQ(ExportTexts::startButton(1), u"Export to folder…"_s);
    EXPECT_EQ(ExportTexts::startButton(3), u"Export 3 photos to folder…"_s);
    EXPECT_EQ(ExportTexts::progress(2, 5), u"Processing photos 2 / 5"_s);
    EXPECT_EQ(ExportTexts::exported(1), u"1 photo exported"_s);
}

TEST_F(Choosing, SpeaksThreeLanguages)
{
    const struct Reset {
        ~Reset() { setLanguageSources({}); }
    } reset;
    const auto speak = [](const QString &name) { setLanguageSources({[name] { return name; }, {}}); };
    speak(u"french"_s);
    EXPECT_EQ(ExportTexts::startButton(3), u"Exporter vers un dossier…"_s);
    EXPECT_EQ(ExportTexts::cancelled(2), u"Annulé. 2 photos exportées restent dans le dossier."_s);
    EXPECT_EQ(ExportTexts::failed(u"X"_s), u"Échec de l’export : X"_s);
    EXPECT_EQ(ExportTexts::progress(1, 2), u"Traitement des photos 1 / 2"_s);
    EXPECT_EQ(ExportTexts::exported(2), u"2 photos exportées"_s);
    speak(u"chinese"_s);
    EXPECT_EQ(ExportTexts::startButton(3), u"3 张到文件夹…"_s);
    EXPECT_EQ(ExportTexts::startButton(1), u"导出到文件夹…"_s);
    EXPECT_EQ(ExportTexts::cancelled(2), u"已取消。已导出的 2 张保留在文件夹中。"_s);
    EXPECT_EQ(ExportTexts::progress(1, 2), u"正在处理照片 1 / 2"_s);
}

TEST_F(IntoAFolder, WritesEveryPhotoInOrderAndSumsUp)
{
    QList<PhotoItem> items = photos(6);
    items[1].name = items[0].name;
    FolderExport run(m_pipeline);
    QList<int> progress;
    QObject::connect(&run, &FolderExport::changed, &run, [&] { progress.append(run.progress()); });
    run.start(items, m_small, m_goal);
    EXPECT_TRUE(run.working());
    run.start(items, m_small, m_library); // one run at a time
    ASSERT_TRUE(waitFor([&] { return run.result() && run.thumbnails().size() == 4; }));
    EXPECT_EQ(run.result()->files.size(), 6);
    EXPECT_EQ(run.result()->files.at(1), m_goal + u"/0.jpg-framed-2.jpg"_s);
    EXPECT_EQ(run.thumbnails().first().size(), QSize(525, 700));
    EXPECT_TRUE(run.result()->quote);
    EXPECT_EQ(entries(m_goal).size(), 6);
    EXPECT_EQ(temporary(), QStringList());
    EXPECT_EQ(run.error(), QString());
    EXPECT_TRUE(std::ranges::is_sorted(progress));
    run.dismissResult();
    EXPECT_FALSE(run.result());
    run.start({}, m_small, m_goal);
    EXPECT_FALSE(run.working());
}

TEST_F(IntoAFolder, NamesFilesByAPattern)
{
    FolderExport run(m_pipeline);
    run.start(photos(2), m_small, m_goal, FieldPattern(u"{n:2} of {count} {size} {width}{iso}"_s), u"1080"_s);
    ASSERT_TRUE(waitFor([&] { return !run.working(); }));
    const QStringList names = entries(m_goal);
    ASSERT_EQ(names.size(), 2);
    EXPECT_TRUE(names.first().startsWith(u"01 of 2 1080 "_s)) << names.first().toStdString();
    EXPECT_TRUE(names.last().startsWith(u"02 of 2 1080 "_s)) << names.last().toStdString();
}

TEST_F(IntoAFolder, KeepsWhatIsDoneWhenCancelled)
{
    FolderExport run(m_pipeline);
    QObject::connect(&run, &FolderExport::changed, &run, [&] {
        if (run.progress() == 3) {
            run.cancel();
        }
    });
    run.start(photos(10), m_small, m_goal);
    ASSERT_TRUE(waitFor([&] { return !run.working(); }));
    EXPECT_EQ(run.error(), u"Cancelled. 3 exported photos remain in the folder."_s);
    EXPECT_FALSE(run.result());
    EXPECT_EQ(entries(m_goal).size(), 3);
    EXPECT_TRUE(waitFor([&] { return temporary().isEmpty(); }));
}

TEST_F(IntoAFolder, StopsAtAFailureWithASummaryOfTheRest)
{
    QList<PhotoItem> items = photos(6);
    items[4].file = u"gone.jpg"_s;
    FolderExport run(m_pipeline);
    run.start(items, m_small, m_goal);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    EXPECT_TRUE(run.working());
    EXPECT_EQ(run.run().problem()->photo.id, items[4].id);
    EXPECT_EQ(run.run().problem()->cause, u"There is no such file."_s);
    EXPECT_FALSE(run.run().problem()->worthRetrying);
    run.run().stop();
    EXPECT_FALSE(run.working());
    EXPECT_EQ(run.error(), u"Export failed: Cannot read this photo. Try JPEG, HEIC or PNG."_s);
    EXPECT_EQ(run.result()->files.size(), 4);
    EXPECT_EQ(entries(m_goal).size(), 4);
}

TEST_F(IntoAFolder, GoesOnWithoutWhatIsSkipped)
{
    QList<PhotoItem> items = photos(6);
    for (const int broken : {0, 3}) {
        items[broken].settings.background = Backdrop::image;
        items[broken].settings.backgroundFile = u"gone.jpg"_s;
    }
    items[5].file = u"gone.jpg"_s;
    FolderExport run(m_pipeline);
    run.start(items, m_small, m_goal);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    // The photo itself is whole, and is not blamed.
    EXPECT_EQ(run.run().problem()->cause, u"The background picture cannot be read. There is no such file."_s);
    run.run().skip(ExportRun::Skipping::AllAlike);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    EXPECT_EQ(run.run().problem()->photo.id, items[5].id);
    EXPECT_EQ(run.run().skippedNames(), (QStringList{u"0.jpg"_s, u"3.jpg"_s}));
    run.run().skip();
    ASSERT_FALSE(run.working());
    EXPECT_EQ(run.error(), QString());
    EXPECT_EQ(run.result()->skipped, (QStringList{u"0.jpg"_s, u"3.jpg"_s, u"5.jpg"_s}));
    EXPECT_EQ(entries(m_goal),
              (QStringList{u"1.jpg-framed.jpg"_s, u"2.jpg-framed.jpg"_s, u"4.jpg-framed.jpg"_s}));
    run.start({items[5]}, m_small, m_goal);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    run.run().skip();
    EXPECT_FALSE(run.result());
    EXPECT_NE(run.error(), QString());
}

TEST_F(IntoAFolder, TriesAgainWhenTheFolderIsBack)
{
    FolderExport run(m_pipeline);
    QDir(m_goal).removeRecursively();
    run.start(photos(2), m_small, m_goal);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    EXPECT_EQ(run.run().problem()->description, u"The folder is gone."_s);
    EXPECT_TRUE(run.run().problem()->worthRetrying);
    ASSERT_TRUE(QDir().mkpath(m_goal));
    run.run().retry();
    ASSERT_TRUE(waitFor([&] { return !run.working(); }));
    EXPECT_EQ(entries(m_goal).size(), 2);
    QDir(m_goal).removeRecursively();
    run.start(photos(1), m_small, m_goal);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    run.cancel();
    EXPECT_FALSE(run.working());
    EXPECT_EQ(run.error(), u"Export failed: The folder is gone."_s);
    EXPECT_FALSE(run.result());
    EXPECT_EQ(temporary(), QStringList());
}

TEST_F(IntoAFolder, TellsAFullTemporaryFolderFromTheChosenOne)
{
    QFile taken(m_folder.filePath(u"temporary"_s));
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly));
    FolderExport run(m_pipeline);
    run.start(photos(1), m_small, m_goal);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    EXPECT_TRUE(run.run().problem()->cause.startsWith(u"Temporary folder: "_s));
}

TEST_F(IntoAFolder, LeavesNothingBehindWhenItIsDestroyed)
{
    {
        FolderExport run(m_pipeline);
        run.start(photos(4), m_small, m_goal);
        ASSERT_TRUE(waitFor([&] { return run.progress() == 1; }));
    }
    // What was being rendered lands where nobody takes it any more.
    m_pipeline.read(photo(u"last.jpg"_s).file, 10).waitForFinished();
    EXPECT_TRUE(waitFor([&] { return temporary().isEmpty(); }));
}

TEST_F(IntoAFolder, StartsTheNextRunFromTheEndOfOne)
{
    QList<PhotoItem> items = photos(2);
    items[0].file = u"gone.jpg"_s;
    ExportRun run(m_pipeline);
    QStringList heard;
    const ExportRun::Steps second = {.deliver = [](int, const ExportedFile &) {},
                                     .progressed = [](int) {},
                                     .completed = [&] { heard.append(u"completed"_s); },
                                     .cancelled = [] {},
                                     .paused = [] {},
                                     .failed = [](const ExportProblem &) {}};
    ExportRun::Steps first = second;
    first.paused = [&] { run.stop(); };
    first.failed = [&](const ExportProblem &problem) {
        run.start({items[1]}, m_small, second);
        heard.append(problem.photo.name); // what was told outlives the steps that were replaced
    };
    run.start(items, m_small, first);
    ASSERT_TRUE(waitFor([&] { return heard.size() == 2; }));
    EXPECT_EQ(heard, (QStringList{u"0.jpg"_s, u"completed"_s}));
}

/// A library that says and does what the test wants.
class FakeLibrary : public PhotoLibrary {
public:
    PhotoLibraryAccess access = PhotoLibraryAccess::Authorised;
    bool refuses = false;
    QList<Addition> added;

    PhotoLibraryAccess requestAccess() override { return access; }
    QStringList add(const QList<Addition> &additions) override
    {
        if (refuses) {
            throw FileError(u"album"_s, ENOSPC);
        }
        added = additions;
        QStringList paths;
        for (const Addition &addition : additions) {
            paths.append(addition.file);
        }
        return paths;
    }
};

TEST_F(IntoTheLibrary, AddsTheWholeBatch)
{
    const QString album = m_folder.filePath(u"Pictures/Tarnovel"_s);
    PicturesFolder library(m_folder.filePath(u"Pictures"_s));
    LibraryExport run(m_pipeline, library);
    int successes = 0;
    QObject::connect(&run, &LibraryExport::succeeded, &run, [&] { ++successes; });
    run.start(photos(3), m_small);
    ASSERT_TRUE(
        waitFor([&] { return run.phase() == LibraryExport::Phase::Saved && run.thumbnails().size() == 3; }));
    EXPECT_EQ(entries(album),
              (QStringList{u"0.jpg-framed.jpg"_s, u"1.jpg-framed.jpg"_s, u"2.jpg-framed.jpg"_s}));
    EXPECT_EQ(successes, 1);
    // The photos are in the album: a second set would only take room.
    EXPECT_TRUE(run.files()->files().isEmpty());
    EXPECT_EQ(temporary(), QStringList());
    run.start(photos(1), m_small);
    ASSERT_TRUE(waitFor([&] { return run.phase() == LibraryExport::Phase::Saved; }));
    EXPECT_EQ(run.saved(), QStringList{album + u"/0.jpg-framed-2.jpg"_s});
    EXPECT_EQ(temporary(), QStringList());
}

TEST_F(IntoTheLibrary, AddsAllButWhatIsSkipped)
{
    FakeLibrary library;
    LibraryExport run(m_pipeline, library);
    QList<PhotoItem> items = photos(3);
    items[1].file = u"gone.jpg"_s;
    run.start(items, m_small);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    run.run().skip();
    ASSERT_TRUE(waitFor([&] { return run.phase() == LibraryExport::Phase::Saved; }));
    ASSERT_EQ(library.added.size(), 2);
    EXPECT_EQ(library.added.at(1).photoName, u"2.jpg"_s);
    run.start({items[1]}, m_small);
    ASSERT_TRUE(waitFor([&] { return run.run().problem().has_value(); }));
    run.run().skip();
    EXPECT_EQ(run.phase(), LibraryExport::Phase::Idle);
    EXPECT_NE(run.error(), QString());
}

TEST_F(IntoTheLibrary, AddsNothingWhenAnythingFails)
{
    FakeLibrary library;
    LibraryExport run(m_pipeline, library);
    const auto error = [&](const QList<PhotoItem> &items) {
        run.start(items, m_small);
        EXPECT_TRUE(
            waitFor([&] { return run.phase() == LibraryExport::Phase::Idle || run.run().problem(); }));
        run.run().stop();
        return run.error();
    };
    library.access = PhotoLibraryAccess::Denied;
    EXPECT_EQ(error(photos(2)),
              u"No photos were saved. Allow Tarnovel to add photos in Settings, then try again."_s);
    EXPECT_TRUE(run.denied());
    library.access = PhotoLibraryAccess::Restricted;
    EXPECT_TRUE(error(photos(2)).startsWith(u"Photo access is restricted"_s));
    EXPECT_FALSE(run.denied());
    library.access = PhotoLibraryAccess::Authorised;
    library.refuses = true;
    EXPECT_EQ(error(photos(2)), u"Could not save to Photos: No space is left on the disk."_s);
    library.refuses = false;
    run.start(photos(2), m_small);
    run.cancel(); // while the library is still being asked
    ASSERT_TRUE(waitFor([&] { return run.phase() == LibraryExport::Phase::Idle; }));
    EXPECT_EQ(run.error(), u"Export cancelled. No photos were added to your library."_s);
    QList<PhotoItem> items = photos(3);
    items[2].file = u"gone.jpg"_s;
    EXPECT_TRUE(
        error(items).startsWith(u"Could not process this batch. It has not been saved to Photos: Cannot"_s));
    QObject::connect(&run, &LibraryExport::changed, &run, [&] {
        if (run.progress() == 1) {
            run.cancel();
        }
    });
    EXPECT_EQ(error(photos(5)), u"Export cancelled. No photos were added to your library."_s);
    EXPECT_TRUE(library.added.isEmpty());
    EXPECT_TRUE(waitFor([&] { return temporary().isEmpty(); })) << "what was on its way goes, too";
}

TEST_F(IntoTheLibrary, StagesEverythingBeforeAnythingShows)
{
    PicturesFolder library(m_folder.filePath(u"Pictures"_s));
    ASSERT_EQ(library.requestAccess(), PhotoLibraryAccess::Authorised);
    const PhotoItem item = photo(u"a.jpg"_s);
    const QString file = m_library + u"/a.jpg"_s;
    EXPECT_THROW(library.add({{file, u"one"_s}, {m_library + u"/gone.jpg"_s, u"two"_s}}), FileError);
    EXPECT_EQ(entries(m_folder.filePath(u"Pictures/Tarnovel"_s)), QStringList());
    QFile blocked(m_folder.filePath(u"file"_s));
    ASSERT_TRUE(blocked.open(QIODevice::WriteOnly));
    PicturesFolder denied(blocked.fileName());
    EXPECT_EQ(denied.requestAccess(), PhotoLibraryAccess::Denied);
    ASSERT_TRUE(denied.refusal());
    EXPECT_EQ(denied.refusal()->code(), ENOTDIR);
}

TEST_F(TemporaryFiles, AreSweptAfterADay)
{
    const QString folder = m_folder.filePath(u"temporary/Exports"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const auto write = [&](const QString &name, int hoursAgo) {
        QFile file(folder + u'/' + name);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("x");
        file.flush();
        EXPECT_TRUE(file.setFileTime(now.addSecs(-3600 * hoursAgo), QFileDevice::FileModificationTime));
    };
    write(u"Kesmar-OLD.jpg"_s, 25);
    write(u"Kesmar-NEW.jpg"_s, 23);
    write(u"other.jpg"_s, 99);
    ASSERT_TRUE(QDir().mkdir(folder + u"/Kesmar-folder"_s));
    ExportFileLifetime::sweep(m_folder.filePath(u"temporary"_s), now.toMSecsSinceEpoch());
    EXPECT_EQ(entries(folder), (QStringList{u"Kesmar-NEW.jpg"_s, u"other.jpg"_s}));
    {
        ExportFileLifetime lifetime;
        for (const QString &path : {folder + u"/Kesmar-NEW.jpg"_s, folder + u"/gone.jpg"_s}) {
            lifetime.add({std::make_shared<UnclaimedFile>(path), path, {}, 0});
        }
        EXPECT_EQ(lifetime.files().size(), 2);
    }
    EXPECT_EQ(entries(folder), QStringList{u"other.jpg"_s});
}

TEST_F(Review, AsksOnceAVersionFromTheThirdSuccessOn)
{
    const auto success = [this](const QString &version, const QStringList &arguments = {}) {
        return ExportReviewPolicy::recordSuccess(m_preferences, version, arguments, {});
    };
    EXPECT_FALSE(success(u"1.2"_s));
    EXPECT_FALSE(success(u"1.2"_s));
    EXPECT_FALSE(success(u"1.2"_s, {u"-disable-review-prompt"_s}));
    EXPECT_FALSE(success(u""_s));
    EXPECT_TRUE(success(u"1.2"_s));
    EXPECT_FALSE(success(u"1.2"_s));
    EXPECT_TRUE(success(u"1.3"_s));
    EXPECT_EQ(m_preferences.get(PreferenceKeys::successfulExportCount), 7);
    EXPECT_TRUE(ExportReviewPolicy::promptsDisabled({u"-UITestMode"_s}, {}));
    EXPECT_TRUE(ExportReviewPolicy::promptsDisabled({u"-preview-x"_s}, {}));
    QProcessEnvironment environment;
    environment.insert(u"XCODE_RUNNING_FOR_PREVIEWS"_s, u"0"_s);
    EXPECT_FALSE(ExportReviewPolicy::promptsDisabled({u"photo.jpg"_s}, environment));
    environment.insert(u"XCODE_RUNNING_FOR_PREVIEWS"_s, u"1"_s);
    EXPECT_TRUE(ExportReviewPolicy::promptsDisabled({}, environment));
}

} // namespace
} // namespace tarnovel::test
