#include <sys/stat.h>
#include <thread>

#include <QEventLoop>

#include "editor/EditorWorld.h"
#include "editor/ImportFlow.h"
#include "editor/SingleInstance.h"
#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

class Importing : public EditorWorld {
protected:
    EditorModel m_model{m_services, EditorModel::Load::StoredSession};
    ImportFlow m_flow{m_model, m_pipeline};

    /// A file outside the library.
    QString outside(const QString &name, const QByteArray &bytes = {}) const
    {
        const QString path = m_folder.filePath(name);
        if (bytes.isEmpty()) {
            QImage image(60, 40, QImage::Format_RGB32);
            image.fill(Qt::darkGreen);
            EXPECT_TRUE(image.save(path, "JPEG"));
        } else {
            QFile file(path);
            EXPECT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
        return path;
    }

    ImportSummary run(const ImportRequest &request)
    {
        std::optional<ImportSummary> result;
        const auto connection =
            QObject::connect(&m_flow, &ImportFlow::finished, &m_model,
                             [&result](const ImportSummary &summary) { result = summary; });
        m_flow.start(request);
        EXPECT_TRUE(waitFor([&result] { return result.has_value(); }));
        QObject::disconnect(connection);
        return result.value_or(ImportSummary());
    }

    qsizetype libraryFiles() const { return QDir(m_library).entryList({u"*.jpg"_s}, QDir::Files).size(); }
};

TEST_F(Importing, AddsPhotosUnderTheirOwnNames)
{
    QStringList progress;
    QObject::connect(&m_model, &EditorModel::changed, &m_model,
                     [&] { progress.append(m_model.importProgress()); });
    const ImportSummary summary = run(
        {.paths = {outside(u"one.a.jpg"_s), outside(u"broken.jpg"_s, "no picture"), outside(u"two.jpg"_s)}});
    EXPECT_EQ(summary.added, 2);
    ASSERT_EQ(m_model.photos().size(), 2);
    EXPECT_EQ(m_model.photos().first().name, u"one.a"_s);
    EXPECT_NE(m_model.photos().first().file, u"one.a.jpg"_s);
    EXPECT_EQ(m_model.message(), u"1 file could not be read."_s);
    EXPECT_EQ(libraryFiles(), 2);
    EXPECT_TRUE(progress.contains(u"2 / 3"_s));
    EXPECT_FALSE(m_model.busy());
}

TEST_F(Importing, StopsAtFiftyAndSaysSo)
{
    m_model.append(photos(45));
    QStringList paths;
    for (int i = 0; i < 10; ++i) {
        paths.append(outside(u"new %1.jpg"_s.arg(i)));
    }
    const qsizetype before = libraryFiles();
    EXPECT_EQ(run({.paths = paths}).added, 5);
    EXPECT_EQ(m_model.message(), u"Up to 50 photos per session. Added the first 5."_s);
    EXPECT_EQ(m_model.photos().first().name, u"new 0"_s);
    EXPECT_EQ(libraryFiles(), before + 5);
    EXPECT_EQ(run({.paths = paths}).added, 0);
}

TEST_F(Importing, UsesTheFirstReadableFileAsBackdrop)
{
    m_model.append(photos(1));
    run({.paths = {outside(u"no.txt"_s, "text"), outside(u"yes.jpg"_s), outside(u"other.jpg"_s)},
         .mode = ImportMode::Background});
    EXPECT_EQ(m_model.photos().size(), 1);
    const FrameSettings &settings = m_model.current()->settings;
    EXPECT_EQ(settings.background, Backdrop::image);
    EXPECT_TRUE(exists(*settings.backgroundFile));
    EXPECT_EQ(stepsBack(m_model), 1);
    EXPECT_EQ(libraryFiles(), 2);
}

TEST_F(Importing, LeavesNothingBehindWhenCancelled)
{
    QStringList paths;
    for (int i = 0; i < 10; ++i) {
        paths.append(outside(u"%1.jpg"_s.arg(i)));
    }
    QObject::connect(&m_model, &EditorModel::changed, &m_model, [&] {
        if (m_model.importProgress().startsWith(u'3')) {
            m_flow.cancel();
        }
    });
    EXPECT_TRUE(run({.paths = paths}).cancelled);
    EXPECT_EQ(m_model.photos().size(), 0);
    EXPECT_EQ(libraryFiles(), 0);
    EXPECT_EQ(m_model.message(), QString());
}

TEST_F(Importing, RefusesAPipeAndCleansUpWhenItIsDestroyed)
{
    const QString pipe = m_folder.filePath(u"pipe.jpg"_s);
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(run({.paths = {pipe}}).refused.size(), 1);
    EXPECT_EQ(m_model.message(), u"pipe.jpg: This is not an ordinary file."_s);
    // One directory that says that it is a smaller version of another picture.
    QFile preview(m_folder.filePath(u"raw.tif"_s));
    ASSERT_TRUE(preview.open(QIODevice::WriteOnly));
    preview.write(QByteArray::fromHex("49492a00080000000100fe000400010000000100000000000000"));
    preview.close();
    const ImportSummary onlyPreview = run({.paths = {preview.fileName()}});
    EXPECT_EQ(onlyPreview.unreadable, 0);
    EXPECT_TRUE(m_model.message().startsWith(u"raw.tif: This file holds only a small preview."_s));
    EXPECT_EQ(libraryFiles(), 0);
    QStringList paths;
    for (int i = 0; i < 10; ++i) {
        paths.append(outside(u"%1.jpg"_s.arg(i)));
    }
    {
        ImportFlow flow(m_model, m_pipeline);
        QEventLoop untilTheFourth;
        QObject::connect(&m_model, &EditorModel::changed, &untilTheFourth, [&] {
            if (m_model.importProgress().startsWith(u'4')) {
                untilTheFourth.quit();
            }
        });
        flow.start({.paths = paths});
        untilTheFourth.exec();
    }
    EXPECT_EQ(libraryFiles(), 0);
}

TEST_F(Importing, SaysOfEachFileWhatIsTheMatter)
{
    const QString folder = m_folder.filePath(u"album.jpg"_s);
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString misnamed = m_folder.filePath(u"a"_s + QChar(QChar::ReplacementCharacter) + u".jpg"_s);
    const ImportSummary summary =
        run({.paths = {outside(u"one.jpg"_s), folder, m_folder.filePath(u"gone.jpg"_s),
                       m_folder.filePath(u"gone too.jpg"_s), m_folder.filePath(u"*.jpg"_s), misnamed,
                       outside(u"broken.jpg"_s, "no picture")}});
    EXPECT_EQ(summary.added, 1);
    EXPECT_EQ(m_model.message(),
              u"1 file could not be read. album.jpg: This is a folder, not a file. "
              "2 files: There is no such file. *.jpg: No file matches this pattern. a\uFFFD.jpg: "
              "The file’s name is not UTF-8. Rename it first."_s);
}

TEST_F(Importing, StopsWhereTheDiskTakesNoMore)
{
    const QStringList paths = {outside(u"a.jpg"_s), outside(u"b.jpg"_s)};
    // A file where the library should be: no copy can be made.
    ASSERT_TRUE(QDir(m_library).removeRecursively());
    QFile taken(m_library);
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly));
    const ImportSummary summary = run({.paths = paths});
    EXPECT_EQ(summary.unreadable, 0);
    EXPECT_EQ(summary.stopped, u"A file stands where a folder is needed."_s);
    EXPECT_EQ(m_model.message(), u"A file stands where a folder is needed. 0 photos were added."_s);
}

TEST_F(Importing, EndsAtOnceWithWhatHasComeIn)
{
    QStringList paths;
    for (int i = 0; i < 10; ++i) {
        paths.append(outside(u"%1.jpg"_s.arg(i)));
    }
    m_flow.start({.paths = paths});
    m_flow.start({.paths = paths});
    ASSERT_TRUE(waitFor([this] { return m_model.importProgress().startsWith(u'4'); }));
    m_flow.endNow();
    EXPECT_FALSE(m_flow.running());
    EXPECT_FALSE(m_model.busy());
    // The fourth was copied already.
    EXPECT_EQ(m_model.photos().size(), 4);
    EXPECT_EQ(libraryFiles(), 4);
    // What its thread tells afterwards comes too late.
    m_flow.start({.paths = {outside(u"next.jpg"_s)}});
    EXPECT_TRUE(waitFor([this] { return !m_flow.running(); }));
    EXPECT_EQ(m_model.photos().size(), 5);
    EXPECT_EQ(libraryFiles(), 5);
}

TEST_F(Importing, TellsItsEndInThreeLanguages)
{
    const struct Reset {
        ~Reset() { setLanguageSources({}); }
    } reset;
    const ImportSummary full = {.added = 5, .truncated = true};
    const ImportSummary unreadable = {.unreadable = 2};
    setLanguageSources({[] { return u"french"_s; }, {}});
    EXPECT_EQ(full.message(), u"50 photos maximum par session. Les 5 premières ont été ajoutées."_s);
    EXPECT_EQ(unreadable.message(), u"2 fichiers illisibles."_s);
    EXPECT_EQ((ImportSummary{.added = 1, .truncated = true}).message(),
              u"50 photos maximum par session. La première a été ajoutée."_s);
    EXPECT_EQ((ImportSummary{.truncated = true}).message(),
              u"50 photos maximum par session. Aucune n’a été ajoutée."_s);
    EXPECT_EQ((ImportSummary{.unreadable = 1}).message(), u"1 fichier illisible."_s);
    setLanguageSources({[] { return u"chinese"_s; }, {}});
    EXPECT_EQ(full.message(), u"一次最多编辑 50 张，已添加前 5 张。"_s);
    EXPECT_EQ(unreadable.message(), u"2 个文件无法读取。"_s);
}

TEST_F(Importing, TakesRequestsInTurn)
{
    m_flow.start({.paths = {outside(u"a.jpg"_s)}});
    m_flow.start({.paths = {outside(u"b.jpg"_s)}});
    EXPECT_TRUE(waitFor([this] { return m_model.photos().size() == 2 && !m_flow.running(); }));
    EXPECT_EQ(m_model.photos().first().name, u"b"_s);
}

using Instances = EditorWorld;

TEST_F(Instances, HandTheirPhotosToTheFirst)
{
    SingleInstance first(m_library);
    ASSERT_TRUE(first.acquire({}));
    QStringList received;
    QString leave;
    QObject::connect(&first, &SingleInstance::photosReceived, &first,
                     [&](const QStringList &photos, const QString &token) {
                         received = photos;
                         leave = token;
                     });
    // The second one waits for an answer, so the first has to live on another thread's time.
    bool owner = true;
    bool handed = false;
    std::jthread second([&] {
        SingleInstance other(m_library);
        owner = other.acquire({u"relative.jpg"_s, u"/tmp/été.jpg"_s}, u"come to the front"_s);
        handed = other.handedOver();
    });
    EXPECT_TRUE(waitFor([&] { return received.size() == 2; }));
    second.join();
    EXPECT_FALSE(owner);
    EXPECT_TRUE(handed);
    EXPECT_EQ(leave, u"come to the front"_s);
    EXPECT_EQ(received,
              (QStringList{QDir::current().absoluteFilePath(u"relative.jpg"_s), u"/tmp/été.jpg"_s}));
    SingleInstance elsewhere(m_folder.path());
    EXPECT_TRUE(elsewhere.acquire({}));
}

} // namespace
} // namespace tarnovel::test
