#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
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
    for (const auto &[name, format] : {std::pair(u"out.png"_s, u"jpeg"_s), {u"out.JPG"_s, u"png"_s}}) {
        const Outcome outcome =
            program.run({u"collage"_s, u"-o"_s, name, u"--format"_s, format, u"a.jpg"_s, u"a.jpg"_s});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_TRUE(outcome.errors.startsWith("tarnovel: --format contradicts the name given to -o: " +
                                              name.toUtf8()))
            << outcome.errors.toStdString();
        EXPECT_FALSE(QFileInfo::exists(program.path(name)));
    }
    EXPECT_EQ(program.run({u"collage"_s, u"-o"_s, u"out.jpg"_s, u"a.jpg"_s}).status, 2);
    EXPECT_EQ(
        program.run(QStringList{u"collage"_s, u"-o"_s, u"out.jpg"_s} + QStringList(10, u"a.jpg"_s)).status,
        2);
    EXPECT_FALSE(QFileInfo::exists(program.path(u"out.jpg"_s)));
}

TEST(Collage, PansEachPhotoItsOwnWayAndLeavesNumbersOut)
{
    const Program program;
    // A tall one with its upper half red and its lower half blue, and a wide one halved from left to right.
    for (const auto &[name, size] :
         {std::pair(u"tall.png"_s, QSize(200, 400)), {u"wide.png"_s, QSize(400, 200)}}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::blue);
        QPainter(&image).fillRect(0, 0, 200, 200, Qt::red);
        ASSERT_TRUE(image.save(program.path(name)));
    }
    // X moves along the row, Y down the column: 1 shows the left or upper end.
    for (const auto &[tallPan, widePan, tall, wide] :
         {std::tuple(u"0,1"_s, u"1,0"_s, QColor(Qt::red), QColor(Qt::red)),
          {u"0,-1"_s, u"-1,0"_s, QColor(Qt::blue), QColor(Qt::blue)},
          {u"1,1"_s, u"-1,1"_s, QColor(Qt::red), QColor(Qt::blue)}}) {
        const Outcome outcome = program.run(
            {u"collage"_s,  u"--json"_s, u"-o"_s,       u"panned.png"_s,   u"--size"_s,   u"800"_s,
             u"--layout"_s, u"h2"_s,     u"--aspect"_s, u"preset"_s,       u"--gap"_s,    u"0"_s,
             u"--margin"_s, u"0"_s,      u"--pan"_s,    u"0="_s + tallPan, u"--pan"_s,    u"1="_s + widePan,
             u"--zoom"_s,   u"0=2"_s,    u"--zoom"_s,   u"1=2"_s,          u"tall.png"_s, u"wide.png"_s});
        ASSERT_EQ(outcome.status, 0) << outcome.errors.toStdString();
        const QImage made(
            program.path(QString::fromStdString(outcome.lines().value(0)["file"].get<std::string>())));
        EXPECT_EQ(made.pixelColor(200, 400), tall) << tallPan.toStdString();
        EXPECT_EQ(made.pixelColor(600, 400), wide) << widePan.toStdString();
    }
    const auto strip = [&program](const QStringList &more) {
        const Outcome outcome =
            program.run(QStringList{u"collage"_s, u"--json"_s, u"-o"_s, u"strip.png"_s, u"--layout"_s,
                                    u"filmstrip"_s, u"wide.png"_s, u"wide.png"_s} +
                        more);
        return QImage(
            program.path(QString::fromStdString(outcome.lines().value(0)["file"].get<std::string>())));
    };
    const QImage numbered = strip({});
    const QImage bare = strip({u"--no-numbers"_s});
    const double unit = numbered.height() / 35.0;
    int more = 0;
    for (int x = static_cast<int>(1.2 * unit); x < static_cast<int>(4.5 * unit); ++x) {
        for (int y = static_cast<int>(0.2 * unit); y < static_cast<int>(1.4 * unit); ++y) {
            EXPECT_LT(bare.pixelColor(x, y).red(), 40);
            more += numbered.pixelColor(x, y).red() > 120;
        }
    }
    EXPECT_GT(more, 20);
}

TEST(Collage, IsInTheFormatThatItsNameSays)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    const auto made = [&program](const QString &file, const QStringList &more = {}) {
        const Outcome outcome = program.run(
            QStringList{u"collage"_s, u"--json"_s, u"-q"_s, u"-o"_s, file, u"a.jpg"_s, u"a.jpg"_s} + more);
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

    const Json small = made(u"small.png"_s, {u"--size"_s, u"800"_s, u"--layout"_s, u"v2"_s, u"--gap"_s,
                                             u"0"_s, u"--margin"_s, u"0"_s});
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
