#include <cmath>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <gtest/gtest.h>

#include "cli/Program.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

/// Small photos in folders, and a short way to export them.
class BatchList : public testing::Test {
protected:
    Program m_program;

    void photos(const QStringList &names)
    {
        for (const QString &name : names) {
            QDir().mkpath(QFileInfo(m_program.path(name)).path());
            m_program.photo(name, 60, 40);
        }
    }
    Outcome exported(const QStringList &arguments)
    {
        return m_program.run(QStringList{u"export"_s, u"-o"_s, u"out"_s, u"--size"_s, u"720"_s} + arguments);
    }
    QByteArray contents(const QString &name)
    {
        QFile file(m_program.path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }
};

QStringList texts(const Outcome &outcome, const char *key)
{
    QStringList found;
    for (const Json &line : outcome.lines()) {
        found.append(QString::fromStdString(line.value(key, "")));
    }
    return found;
}

TEST_F(BatchList, TakesThePicturesBelowAFolderInTheOrderOfTheirPaths)
{
    photos({u"in/b.jpg"_s, u"in/a/2.png"_s, u"in/a/10.jpg"_s, u"in/.hidden/x.jpg"_s, u"in/.y.jpg"_s,
            u"in/out/old.jpg"_s, u"in/C.JPG"_s});
    m_program.file(u"in/notes.txt"_s, "no picture");
    QDir().mkdir(m_program.path(u"in/empty"_s));
    QFile::link(m_program.path(u"in"_s), m_program.path(u"in/a/loop"_s));
    QFile::link(m_program.path(u"in/b.jpg"_s), m_program.path(u"in/d.jpg"_s));
    const Outcome outcome = m_program.run({u"export"_s, u"-o"_s, u"in/out"_s, u"--size"_s, u"720"_s,
                                           u"--json"_s, u"-r"_s, u"in"_s, u"in/b.jpg"_s});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_EQ(texts(outcome, "photo"), (QStringList{u"in/C.JPG"_s, u"in/a/10.jpg"_s, u"in/a/2.png"_s,
                                                    u"in/b.jpg"_s, u"in/d.jpg"_s, u"in/b.jpg"_s}));
    const Outcome none = exported({u"-r"_s, u"--json"_s, u"in/empty"_s, u"in/b.jpg"_s});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.errors, "tarnovel: in/empty: There are no photos in this folder.\n");
    EXPECT_EQ(texts(none, "code"), (QStringList{u"missing"_s, QString()}));
    const Outcome into = m_program.run({u"export"_s, u"-o"_s, u"in"_s, u"-r"_s, u"in/../in"_s});
    EXPECT_EQ(into.status, 2);
    EXPECT_EQ(into.errors.count('\n'), 1);
    const Outcome without = exported({u"in"_s});
    EXPECT_EQ(without.status, 1);
    EXPECT_EQ(without.errors, "tarnovel: in: This is a folder, not a file.\n");
}

TEST_F(BatchList, ReadsNamesFromAListOrFromStandardInput)
{
    photos({u"a.jpg"_s, u"b c.jpg"_s, QString::fromUtf8("line\nbreak.jpg")});
    m_program.file(u"list.txt"_s, "\xef\xbb\xbf"
                                  "b c.jpg\r\n\na.jpg");
    m_program.file(u"nul.txt"_s, QByteArray("line\nbreak.jpg\0a.jpg\0", 20));
    EXPECT_EQ(texts(exported({u"--json"_s, u"a.jpg"_s, u"--files-from"_s, u"list.txt"_s}), "photo"),
              (QStringList{u"a.jpg"_s, u"b c.jpg"_s, u"a.jpg"_s}));
    EXPECT_EQ(texts(exported({u"--json"_s, u"-0"_s, u"--files-from"_s, u"nul.txt"_s}), "photo"),
              (QStringList{QString::fromUtf8("line\nbreak.jpg"), u"a.jpg"_s}));
    QProcess shell;
    shell.setWorkingDirectory(m_program.path(QString()));
    shell.start(u"bash"_s, {u"-c"_s, u"ls [ab]*.jpg | LANG=C \"$0\" export --dry-run -o new --files-from -"_s,
                            Program::executable()});
    ASSERT_TRUE(shell.waitForFinished(60'000));
    EXPECT_EQ(shell.readAllStandardOutput(), "a.jpg: new/a-framed.jpg\nb c.jpg: new/b c-framed.jpg\n");
    m_program.file(u"empty.txt"_s, "\n\n");
    for (const auto &[list, message] : {std::pair(u"empty.txt"_s, "The list names no photo."),
                                        {u"none.txt"_s, "There is no such file."},
                                        {u"."_s, "This is a folder, not a file."}}) {
        const Outcome outcome = exported({u"--files-from"_s, list});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.errors, "tarnovel: " + list.toUtf8() + ": " + message + "\n");
    }
}

TEST_F(BatchList, GivesEveryPartOfAListTheNamesOfTheWhole)
{
    photos({u"1/x.jpg"_s, u"2/x.jpg"_s, u"3/x.jpg"_s, u"4/y.jpg"_s, u"5/x.jpg"_s});
    const QStringList list = {u"1/x.jpg"_s, u"2/x.jpg"_s, u"3/x.jpg"_s, u"4/y.jpg"_s, u"5/x.jpg"_s};
    const QStringList style = {u"--json"_s, u"-t"_s, u"film"_s, u"--name"_s, u"{name}"_s};
    QStringList files;
    QList<int> numbers;
    for (const QString &shard : {u"2/3"_s, u"3/3"_s, u"1/3"_s}) {
        const Outcome outcome = exported(style + list + QStringList{u"--shard"_s, shard});
        EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
        files += texts(outcome, "file");
        for (const Json &line : outcome.lines()) {
            numbers.append(line["style"]["film"]["number"].get<int>());
        }
    }
    EXPECT_EQ(files, (QStringList{u"out/x-2.jpg"_s, u"out/x-4.jpg"_s, u"out/x-3.jpg"_s, u"out/x.jpg"_s,
                                  u"out/y.jpg"_s}));
    EXPECT_EQ(numbers, (QList<int>{2, 5, 3, 1, 4}));
    const Outcome idle = exported(QStringList{u"--shard"_s, u"9/9"_s} + list);
    EXPECT_EQ(idle.status, 0);
    EXPECT_EQ(idle.errors, "");
    for (const char *wrong : {"0/0", "0/3", "4/3", "1", "1/", "a/b", "1/2/3", "-1/3", "+1/3"}) {
        EXPECT_EQ(exported(QStringList{u"--shard=%1"_s.arg(QLatin1StringView(wrong))} + list).status, 2)
            << wrong;
    }
}

TEST_F(BatchList, GoesOnWhereItStopped)
{
    photos({u"a/x.jpg"_s, u"b/x.jpg"_s, u"c.jpg"_s});
    const QStringList list = {u"--json"_s, u"--skip-existing"_s, u"a/x.jpg"_s, u"b/x.jpg"_s, u"c.jpg"_s};
    ASSERT_EQ(exported(list).status, 0);
    ASSERT_TRUE(QFile::remove(m_program.path(u"out/x-framed-2.jpg"_s)));
    const Outcome again = exported(list);
    EXPECT_EQ(again.status, 0);
    ASSERT_EQ(again.lines().size(), 3);
    EXPECT_EQ(again.lines()[0],
              (Json{{"photo", "a/x.jpg"}, {"file", "out/x-framed.jpg"}, {"skipped", true}}));
    EXPECT_EQ(again.lines()[1]["file"], "out/x-framed-2.jpg");
    EXPECT_FALSE(again.lines()[1].contains("skipped"));
    EXPECT_TRUE(again.lines()[2]["skipped"].get<bool>());
    EXPECT_EQ(m_program.entries(u"out"_s).size(), 3);
}

TEST_F(BatchList, TwoRunsOfOnePartMakeEachPhotoOnce)
{
    // The result appears while the photo is being made, as another machine's would.
    photos({u"a/x.jpg"_s, u"b/x.jpg"_s});
    const QString path = m_program.path(u"out/x-framed.jpg"_s);
    const Outcome first =
        exported({u"--skip-existing"_s, u"--json"_s, u"--shard"_s, u"1/2"_s, u"a/x.jpg"_s, u"b/x.jpg"_s});
    ASSERT_EQ(first.status, 0);
    QProcess one;
    QProcess other;
    ASSERT_TRUE(QFile::remove(path));
    const QStringList again = {u"export"_s,
                               u"-q"_s,
                               u"--size"_s,
                               u"720"_s,
                               u"--skip-existing"_s,
                               u"--shard"_s,
                               u"1/2"_s,
                               u"-o"_s,
                               m_program.path(u"out"_s),
                               m_program.path(u"a/x.jpg"_s),
                               m_program.path(u"b/x.jpg"_s)};
    one.start(QStringLiteral(TARNOVEL_EXECUTABLE), again);
    other.start(QStringLiteral(TARNOVEL_EXECUTABLE), again);
    ASSERT_TRUE(one.waitForFinished(60'000) && other.waitForFinished(60'000));
    EXPECT_EQ(one.exitCode() + other.exitCode(), 0);
    EXPECT_EQ(m_program.entries(u"out"_s), QStringList{u"x-framed.jpg"_s});
}

TEST_F(BatchList, SaysWhatItWouldWriteAndWritesNothing)
{
    photos({u"a.jpg"_s, u"b.jpg"_s});
    QDir().mkdir(m_program.path(u"there"_s));
    m_program.file(u"there/a-framed.jpg"_s, "kept");
    const Outcome outcome = m_program.run({u"export"_s, u"-o"_s, u"there"_s, u"--dry-run"_s, u"a.jpg"_s,
                                           u"b.jpg"_s, u"a.jpg"_s, u"gone.jpg"_s});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "a.jpg: there/a-framed-2.jpg\n"
                              "b.jpg: there/b-framed.jpg\n"
                              "a.jpg: there/a-framed-3.jpg\n");
    EXPECT_EQ(outcome.errors, "tarnovel: gone.jpg: There is no such file.\n");
    EXPECT_EQ(m_program.entries(u"there"_s), QStringList{u"a-framed.jpg"_s});
    EXPECT_EQ(exported({u"--dry-run"_s, u"a.jpg"_s}).status, 0);
    EXPECT_FALSE(QFileInfo::exists(m_program.path(u"out"_s)));
}

TEST_F(BatchList, NamesResultsByAPattern)
{
    photos({u"a.jpg"_s, u"b.jpg"_s});
    const auto names = [this](const QString &pattern, const QStringList &more = {}) {
        return texts(
            exported(QStringList{u"--json"_s, u"--dry-run"_s, u"--name"_s, pattern, u"a.jpg"_s, u"b.jpg"_s} +
                     more),
            "file");
    };
    EXPECT_EQ(names(u"{n:3}-{count} {template}"_s, {u"-t"_s, u"gear"_s}),
              (QStringList{u"out/001-2 gear.jpg"_s, u"out/002-2 gear.jpg"_s}));
    EXPECT_EQ(names(u"{width}x{height}"_s), (QStringList{u"out/540x720.jpg"_s, u"out/540x720-2.jpg"_s}));
    EXPECT_EQ(names(u"all{iso}"_s), (QStringList{u"out/all.jpg"_s, u"out/all-2.jpg"_s}));
    const Outcome unknown = exported({u"--name"_s, u"{name}-{nam}"_s, u"a.jpg"_s});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.errors.startsWith("tarnovel: --name: there is no field {nam}, at character 8"))
        << unknown.errors.toStdString();
    EXPECT_EQ(exported({u"--name="_s, u"a.jpg"_s}).status, 2);
}

TEST_F(BatchList, MakesEverySizeAsIfItWereTheOnlyOne)
{
    m_program.photo(u"a.jpg"_s, 3000, 2000);
    const QStringList style = {u"export"_s, u"--json"_s,          u"-t"_s,   u"full"_s,
                               u"--set"_s,  u"background=blur"_s, u"a.jpg"_s};
    const Outcome several =
        m_program.run(style + QStringList{u"-o"_s, u"out"_s, u"--size"_s, u"1080"_s, u"--size"_s,
                                          u"original"_s, u"--size"_s, u"2000"_s});
    EXPECT_EQ(several.status, 0) << several.errors.toStdString();
    EXPECT_EQ(texts(several, "file"), (QStringList{u"out/a-framed-1080.jpg"_s, u"out/a-framed-original.jpg"_s,
                                                   u"out/a-framed-2000.jpg"_s}));
    EXPECT_EQ(texts(several, "size"), (QStringList{u"1080"_s, u"original"_s, u"2000"_s}));
    for (const QString &size : {u"1080"_s, u"original"_s, u"2000"_s}) {
        ASSERT_EQ(m_program.run(style + QStringList{u"-o"_s, size, u"--size"_s, size}).status, 0);
        const QImage alone(m_program.path(size + u"/a-framed.jpg"_s));
        const QImage among(m_program.path(u"out/a-framed-"_s + size + u".jpg"_s));
        ASSERT_EQ(alone.size(), among.size());
        double difference = 0;
        for (int y = 0; y < alone.height(); y += 3) {
            for (int x = 0; x < alone.width(); x += 3) {
                difference += std::abs(qGreen(alone.pixel(x, y)) - qGreen(among.pixel(x, y)));
            }
        }
        EXPECT_LT(difference / (alone.width() * alone.height() / 9.0), 0.5) << size.toStdString();
    }
    EXPECT_EQ(contents(u"out/a-framed-original.jpg"_s), contents(u"original/a-framed.jpg"_s));
    // One size that cannot be made costs that one alone, and what fails as a whole is told once.
    m_program.photo(u"b.jpg"_s, 300, 200);
    const Outcome one =
        m_program.run({u"export"_s, u"--json"_s, u"-o"_s, u"out"_s, u"--set"_s, u"preset=square"_s,
                       u"--size"_s, u"720"_s, u"--size"_s, u"8192"_s, u"b.jpg"_s, u"gone.jpg"_s});
    EXPECT_EQ(one.status, 1);
    ASSERT_EQ(one.lines().size(), 3);
    EXPECT_EQ(one.lines()[0]["width"], 720);
    EXPECT_EQ(one.lines()[1]["size"], "8192");
    EXPECT_EQ(one.lines()[1]["code"], "too-large");
    EXPECT_EQ(one.lines()[2]["code"], "missing");
    EXPECT_FALSE(one.lines()[2].contains("size"));
}

} // namespace
} // namespace tarnovel::test
