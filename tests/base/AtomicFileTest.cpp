#include <algorithm>

#include <sys/file.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "base/AtomicFile.h"
#include "base/FileError.h"

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
