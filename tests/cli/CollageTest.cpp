#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <gtest/gtest.h>

#include "cli/Program.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

TEST(Collage, MakesOneFileAndTellsItsCells)
{
    const Program program;
    program.photo(u"wide.jpg"_s, 300, 200);
    program.photo(u"tall.jpg"_s, 200, 300);
    const Outcome outcome =
        program.run({u"collage"_s,  u"--json"_s,   u"-o"_s,      u"out/made.jpg"_s, u"--ratio"_s,
                     u"=0.3"_s,     u"--ratio"_s,  u"1=0.4"_s,   u"--gap"_s,        u"0"_s,
                     u"--margin"_s, u"0"_s,        u"--frame"_s, u"white"_s,        u"--frame"_s,
                     u"2=film"_s,   u"--pan"_s,    u"0=1,-1"_s,  u"--zoom"_s,       u"1=2.5"_s,
                     u"tall.jpg"_s, u"wide.jpg"_s, u"tall.jpg"_s});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const Json line = outcome.lines().value(0);
    EXPECT_EQ(line["layout"], "big-left");
    EXPECT_EQ(line["cells"]["0"], Json::parse("[0.0, 0.0, 720.0, 2400.0]"));
    EXPECT_EQ(line["cells"]["1"], Json::parse("[720.0, 0.0, 1680.0, 960.0]"));
    EXPECT_EQ(QImage(program.path(u"out/made.jpg"_s)).size(), QSize(2400, 2400));
    program.run({u"collage"_s, u"-o"_s, u"out/made.jpg"_s, u"tall.jpg"_s, u"wide.jpg"_s});
    EXPECT_EQ(program.entries(u"out"_s), (QStringList{u"made-2.jpg"_s, u"made.jpg"_s}));
    EXPECT_EQ(program.entries(u"temporary"_s), QStringList());
}

TEST(Collage, NamesThePhotoThatCannotBeRead)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    program.file(u"broken.jpg"_s, "no picture");
    const Outcome outcome = program.run({u"collage"_s, u"-o"_s, u"out.jpg"_s, u"a.jpg"_s, u"broken.jpg"_s});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "tarnovel: broken.jpg: Cannot read this photo. Try JPEG, HEIC or PNG.\n");
    EXPECT_FALSE(QFileInfo::exists(program.path(u"out.jpg"_s)));
}

TEST(Collage, RefusesWhatCannotBeMeant)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    const QList<QStringList> faults = {
        {u"--layout"_s, u"g4"_s},      {u"--aspect"_s, u"wide"_s},    {u"--gap"_s, u"-1"_s},
        {u"--radius"_s, u"much"_s},    {u"--background"_s, u"red"_s}, {u"--frame"_s, u"wood"_s},
        {u"--frame"_s, u"2=white"_s},  {u"--pan"_s, u"0=2,0"_s},      {u"--pan"_s, u"0=1"_s},
        {u"--zoom"_s, u"0=9"_s},       {u"--ratio"_s, u"1=0.5"_s},    {u"--ratio"_s, u"=0.9"_s},
        {u"--start-number"_s, u"x"_s}, {u"--format"_s, u"gif"_s},     {u"--size"_s, u"719"_s},
        {u"--size"_s, u"4097"_s},      {u"--size"_s, u"original"_s}};
    for (const QStringList &fault : faults) {
        const Outcome outcome =
            program.run(QStringList{u"collage"_s, u"-o"_s, u"out.jpg"_s, u"a.jpg"_s, u"a.jpg"_s} + fault);
        EXPECT_EQ(outcome.status, 2) << fault.join(u' ').toStdString() << outcome.errors.toStdString();
        EXPECT_EQ(outcome.errors.count('\n'), 1);
    }
    EXPECT_EQ(program.run({u"collage"_s, u"-o"_s, u"out.jpg"_s, u"a.jpg"_s}).status, 2);
    EXPECT_EQ(
        program.run(QStringList{u"collage"_s, u"-o"_s, u"out.jpg"_s} + QStringList(10, u"a.jpg"_s)).status,
        2);
    EXPECT_FALSE(QFileInfo::exists(program.path(u"out.jpg"_s)));
}

TEST(Collage, IsInTheFormatThatItsNameSays)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    const auto made = [&program](const QString &file, const QStringList &more = {}) {
        const Outcome outcome =
            program.run(QStringList{u"collage"_s, u"--json"_s, u"-q"_s, u"-o"_s, file, u"a.jpg"_s, u"a.jpg"_s} + more);
        EXPECT_EQ(outcome.errors, "") << file.toStdString();
        return outcome.lines().value(0);
    };
    // The path is told as it was given, and so is that of a second one.
    EXPECT_EQ(made(u"out/one.png"_s)["file"], "out/one.png");
    EXPECT_EQ(made(u"./out/one.png"_s)["file"], "./out/one-2.png");
    EXPECT_EQ(made(program.path(u"two.JPEG"_s))["file"], program.path(u"two.JPEG"_s).toStdString());
    EXPECT_EQ(made(u"three.jpg"_s)["file"], "three.jpg");
    const auto begins = [&program](const QString &file) {
        QFile opened(program.path(file));
        EXPECT_TRUE(opened.open(QIODevice::ReadOnly));
        return opened.read(4);
    };
    EXPECT_EQ(begins(u"out/one.png"_s), QByteArray("\x89PNG"));
    EXPECT_EQ(begins(u"two.JPEG"_s).left(2), QByteArray("\xff\xd8"));

    const Json small = made(u"small.png"_s, {u"--size"_s, u"800"_s, u"--layout"_s, u"v2"_s, u"--gap"_s, u"0"_s,
                                             u"--margin"_s, u"0"_s});
    EXPECT_EQ(small["width"], 640);
    EXPECT_EQ(small["height"], 800);
    EXPECT_EQ(small["cells"]["1"], Json::parse("[0.0, 400.0, 640.0, 400.0]"));

    ASSERT_TRUE(QDir().mkpath(program.path(u"folder.png"_s)));
    for (const QString &wrong : {u"name"_s, u"name.gif"_s, u"-"_s, u"out/"_s, u"out"_s, u"folder.png"_s}) {
        const Outcome outcome = program.run({u"collage"_s, u"-o"_s, wrong, u"a.jpg"_s, u"a.jpg"_s});
        EXPECT_EQ(outcome.status, 2) << wrong.toStdString();
        EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.toStdString();
    }
}

TEST(Layouts, AreListedForOneToNinePhotos)
{
    const Program program;
    const QList<Json> lines =
        program.run({u"layouts"_s, u"2"_s, u"--json"_s, u"--language"_s, u"fr"_s}).lines();
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[3]["title"], "Bande film");
    EXPECT_EQ(lines[0], (Json{{"id", "h2"}, {"title", "Côte à côte"}, {"aspect", 1.0}}));
    const QList<Json> single = program.run({u"layouts"_s, u"1"_s, u"--json"_s}).lines();
    ASSERT_EQ(single.size(), 2);
    EXPECT_EQ(single[0]["id"], "grid");
    EXPECT_EQ(single[1]["id"], "filmstrip");
    for (const QString &wrong : {u"0"_s, u"10"_s, u"two"_s, u""_s}) {
        EXPECT_EQ(program.run({u"layouts"_s, wrong}).status, 2) << wrong.toStdString();
    }
}

} // namespace
} // namespace tarnovel::test
