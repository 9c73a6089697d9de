#include <algorithm>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/FileTrouble.h"
#include "base/ScratchFolder.h"

namespace tarnovel {
namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

TEST(ReplaceFile, LeavesOnlyTheNewBytes)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.json"));
    replaceFile(path, "one");
    replaceFile(path, "two");
    EXPECT_EQ(contents(path), "two");
    EXPECT_EQ(entries(folder.path()), QStringList{QStringLiteral("a.json")});
}

TEST(ReplaceFile, LeavesTheFolderAsItWasWhenItFails)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("taken"));
    ASSERT_TRUE(QDir().mkpath(path + QStringLiteral("/inner")));
    EXPECT_THROW(replaceFile(path, "bytes"), FileError);
    EXPECT_EQ(entries(folder.path()), QStringList{QStringLiteral("taken")});
    EXPECT_THROW(replaceFile(folder.filePath(QStringLiteral("absent/a")), "bytes"), FileError);
    EXPECT_THROW(replaceFile(QStringLiteral("/dev/full/a"), "bytes"), FileError);
}

/// The permissions of a file or folder.
mode_t mode(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 0777 : 0;
}

TEST(AtomicFile, ClosesWhatIsTheOwnersAlone)
{
    const mode_t before = umask(022);
    const QTemporaryDir folder;
    const QString open = folder.filePath(QStringLiteral("open"));
    const QString closed = folder.filePath(QStringLiteral("closed"));
    replaceFile(open, "1");
    replaceFile(closed, "1", Durability::Synced, Audience::Owner);
    const QString copy = publishFile(
        open, folder.path(), [](int) { return QStringLiteral("copy"); }, Audience::Owner);
    EXPECT_EQ(mode(open), 0644U);
    EXPECT_EQ(mode(closed), 0600U);
    EXPECT_EQ(mode(copy), 0600U);
    umask(before);
}

TEST(AtomicFile, TellsWhatCannotBeReadFromWhatCannotBeWritten)
{
    const QTemporaryDir folder;
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QString empty = folder.filePath(QStringLiteral("empty"));
    replaceFile(empty, "");
    const QString good = folder.filePath(QStringLiteral("good"));
    replaceFile(good, "1");
    const auto name = [](int) { return QStringLiteral("copy"); };
    const QString absent = folder.filePath(QStringLiteral("absent"));
    const QString misnamed = folder.filePath(QString(QChar::ReplacementCharacter));
    for (const auto &[path, code] : std::initializer_list<std::pair<QString, int>>{{absent, ENOENT},
                                                                                   {folder.path(), EISDIR},
                                                                                   {pipe, EINVAL},
                                                                                   {misnamed, EILSEQ},
                                                                                   {empty, ENODATA}}) {
        const std::optional<FileError> trouble = fileTrouble(path);
        ASSERT_TRUE(trouble) << path.toStdString();
        EXPECT_EQ(trouble->code(), code) << path.toStdString();
        EXPECT_EQ(trouble->access(), FileAccess::Read);
    }
    EXPECT_FALSE(fileTrouble(good));
    try {
        publishFile(pipe, folder.path(), name);
        ADD_FAILURE() << "a pipe was copied";
    } catch (const FileError &error) {
        EXPECT_EQ(error.access(), FileAccess::Read);
    }
    try {
        publishFile(good, absent, name);
        ADD_FAILURE() << "copied into nowhere";
    } catch (const FileError &error) {
        EXPECT_EQ(error.access(), FileAccess::Write);
    }
}

TEST(ScratchFolder, GoesWithItsOwnerAndWithTheNextOneAfterAKill)
{
    const QString prefix = QStringLiteral("scratch-test-");
    const QDir temporary(QDir::tempPath());
    const auto folders = [&] { return temporary.entryList({prefix + u'*'}, QDir::Dirs).size(); };
    const auto age = [&](const QString &path) {
        const timespec longAgo[2] = {{1'000'000, 0}, {1'000'000, 0}};
        return utimensat(AT_FDCWD, QFile::encodeName(path).constData(), longAgo, 0) == 0;
    };
    const QString left = temporary.filePath(prefix + QStringLiteral("abcdef"));
    const QString foreign = temporary.filePath(prefix + QStringLiteral("abc"));
    ASSERT_TRUE(temporary.mkdir(left) && temporary.mkdir(foreign));
    replaceFile(left + QStringLiteral("/photo"), "1");
    ASSERT_TRUE(age(left) && age(foreign));
    {
        const ScratchFolder held(prefix);
        EXPECT_EQ(mode(held.path()), 0700U);
        EXPECT_FALSE(QFileInfo::exists(left));
        replaceFile(held.filePath(QStringLiteral("photo")), "1");
        ASSERT_TRUE(age(held.path()));
        const ScratchFolder other(prefix);
        EXPECT_TRUE(QFileInfo::exists(held.path()));
        EXPECT_EQ(folders(), 3);
    }
    EXPECT_EQ(folders(), 1);
    QDir(foreign).removeRecursively();
}

TEST(PublishFile, TakesTheFirstFreeNameAndNoOther)
{
    const QTemporaryDir folder;
    const QString source = folder.filePath(QStringLiteral("source"));
    replaceFile(source, QByteArray(3'000'000, 'x'));
    const QString goal = folder.filePath(QStringLiteral("out"));
    ASSERT_TRUE(QDir().mkdir(goal));
    ASSERT_TRUE(QFile::link(QStringLiteral("/nowhere"), goal + QStringLiteral("/0")));
    const auto name = [](int attempt) { return QString::number(attempt); };
    EXPECT_EQ(publishFile(source, goal, name), goal + QStringLiteral("/1"));
    EXPECT_EQ(publishFile(source, goal, name), goal + QStringLiteral("/2"));
    EXPECT_EQ(contents(goal + QStringLiteral("/2")).size(), 3'000'000);
    EXPECT_EQ(entries(goal).size(), 3);
    EXPECT_THROW(publishFile(source, source, name), FileError);
    EXPECT_THROW(publishFile(goal + QStringLiteral("/none"), goal, name), FileError);
    EXPECT_EQ(entries(goal).size(), 3);
}

TEST(PublishFile, AsksForEachNumberOfANameOnce)
{
    const QTemporaryDir folder;
    const QString source = folder.filePath(QStringLiteral("source"));
    replaceFile(source, "bytes");
    constexpr int files = 60;
    TakenNames taken;
    int asked = 0;
    for (int i = 0; i < files; ++i) {
        for (const QChar kind : {u'a', u'b'}) {
            const auto name = [&asked, kind](int attempt) {
                ++asked;
                return kind + QString::number(attempt);
            };
            EXPECT_EQ(publishFile(source, folder.path(), name, taken),
                      folder.path() + u'/' + kind + QString::number(i));
        }
    }
    EXPECT_LE(asked, 2 * files * 3);
    // What others took meanwhile is passed over, and another run finds what was given free.
    replaceFile(folder.filePath(QStringLiteral("a60")), "theirs");
    const auto name = [](int attempt) { return u'a' + QString::number(attempt); };
    EXPECT_EQ(publishFile(source, folder.path(), name, taken), folder.filePath(QStringLiteral("a61")));
    ASSERT_TRUE(QFile::remove(folder.filePath(QStringLiteral("a7"))));
    EXPECT_EQ(publishFile(source, folder.path(), name), folder.filePath(QStringLiteral("a7")));
    // A batch that has to be taken back leaves its numbers to the next.
    StagedFiles staged(folder.path());
    staged.stage(source);
    staged.stage(source);
    EXPECT_THROW(staged.publish(
                     [](qsizetype index, int attempt) {
                         return index == 0 ? u'c' + QString::number(attempt) : QStringLiteral("absent/d");
                     },
                     taken),
                 FileError);
    EXPECT_EQ(taken.first(QStringLiteral("c0")), 0);
}

TEST(StagedFiles, AppearTogetherOrNotAtAll)
{
    const QTemporaryDir folder;
    const QString source = folder.filePath(QStringLiteral("source"));
    replaceFile(source, "bytes");
    const QString goal = folder.filePath(QStringLiteral("goal"));
    ASSERT_TRUE(QDir().mkdir(goal));
    const auto publish = [&](const QStringList &names) {
        StagedFiles staged(goal);
        for (qsizetype i = 0; i < names.size(); ++i) {
            staged.stage(source);
        }
        EXPECT_TRUE(
            std::ranges::all_of(entries(goal), [](const QString &name) { return name.startsWith(u'.'); }));
        return staged.publish([&](qsizetype index, int) { return names.at(index); });
    };
    EXPECT_THROW(publish({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("absent/c")}), FileError);
    EXPECT_EQ(entries(goal), QStringList());
    EXPECT_EQ(publish({QStringLiteral("a"), QStringLiteral("b")}).size(), 2);
    EXPECT_EQ(entries(goal), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
}

TEST(SweepTemporaryFiles, TakesOnlyWhatNobodyWrites)
{
    const QTemporaryDir folder;
    const QString left = QStringLiteral(".tarnovel-0123456789abcdef");
    const QString held = QStringLiteral(".tarnovel-fedcba9876543210");
    const QStringList foreign = {QStringLiteral(".tarnovel-"), QStringLiteral(".tarnovel-notes"),
                                 QStringLiteral(".tarnovel-0123456789abcdef.txt"),
                                 QStringLiteral("note.txt")};
    for (const QString &name : QStringList{left, held} + foreign) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    QFile writer(folder.filePath(held));
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    ASSERT_EQ(flock(writer.handle(), LOCK_EX), 0);
    sweepTemporaryFiles(folder.path());
    EXPECT_FALSE(entries(folder.path()).contains(left));
    EXPECT_EQ(entries(folder.path()).size(), 1 + foreign.size());
}

} // namespace
} // namespace tarnovel
