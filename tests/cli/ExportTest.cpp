#include <csignal>
#include <sys/stat.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QProcess>
#include <gtest/gtest.h>

#include "cli/Program.h"
#include "model/FrameSettingsJson.h"
#include "model/LibraryPaths.h"
#include "model/SessionWriter.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

TEST(Export, WritesAFramedFileAPhotoAndSaysNothing)
{
    const Program program;
    program.photo(u"one.jpg"_s);
    program.photo(u"two.png"_s, 200, 300);
    const Outcome outcome =
        program.run({u"export"_s, u"-o"_s, u"out/inner"_s, u"one.jpg"_s, u"two.png"_s, u"one.jpg"_s});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(program.entries(u"out/inner"_s),
              (QStringList{u"one-framed-2.jpg"_s, u"one-framed.jpg"_s, u"two-framed.jpg"_s}));
    EXPECT_EQ(QImage(program.path(u"out/inner/two-framed.jpg"_s)).size(), QSize(3072, 4096));
    EXPECT_EQ(program.entries(u"temporary"_s), QStringList());
    EXPECT_FALSE(QFileInfo::exists(program.path(u"data"_s)));
    EXPECT_FALSE(QFileInfo::exists(program.path(u"config"_s)));
}

TEST(Export, ReportsEachPhotoAsALineOfJson)
{
    const Program program;
    program.photo(u"one.jpg"_s, 300, 200);
    program.file(u"broken.jpg"_s, "<html>");
    const Outcome outcome = program.run({u"export"_s, u"--json"_s, u"--size"_s, u"1080"_s, u"-t"_s, u"full"_s,
                                         u"-o"_s, u"out"_s, u"broken.jpg"_s, u"one.jpg"_s});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "tarnovel: broken.jpg: Cannot read this photo. Try JPEG, HEIC or PNG.\n");
    const QList<Json> lines = outcome.lines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], (Json{{"photo", "broken.jpg"},
                              {"error", "Cannot read this photo. Try JPEG, HEIC or PNG."},
                              {"code", "unreadable"}}));
    // `full` keeps the photo's ratio, and the 1080 canvas of a photo's own ratio its own short edge.
    const Json &line = lines[1];
    EXPECT_EQ(line["file"], "out/one-framed.jpg");
    EXPECT_EQ(line["canvas"], Json::parse("[300, 200]"));
    EXPECT_EQ(line["photoRect"], Json::parse("[0.0, 0.0, 300.0, 200.0]"));
    EXPECT_EQ(line["bytes"].get<qint64>(), QFileInfo(program.path(u"out/one-framed.jpg"_s)).size());
    EXPECT_EQ(frameSettingsFromJson(JsonReader(line["style"])).templateID, u"full"_s);
}

TEST(Export, AppliesStylePicturesFieldsAndTextsInThatOrder)
{
    const Program program;
    program.photo(u"one.jpg"_s);
    program.photo(u"logo.png"_s, 40, 20);
    FrameSettings style;
    style.scale = 0.3;
    style.layers.removeLast();
    program.file(u"style.json"_s, writeJson(toJson(style)));
    const Outcome outcome = program.run({u"export"_s,       u"--json"_s,
                                         u"--size"_s,       u"720"_s,
                                         u"--style"_s,      u"style.json"_s,
                                         u"--logo"_s,       u"logo.png"_s,
                                         u"--background"_s, u"one.jpg"_s,
                                         u"--signature"_s,  u"logo.png"_s,
                                         u"--set"_s,        u"scale=0.4"_s,
                                         u"--set"_s,        u"color={\"r\":1,\"g\":0,\"b\":0}"_s,
                                         u"--set"_s,        u"preset=square"_s,
                                         u"--set"_s,        u"background=solid"_s,
                                         u"--set"_s,        u"film.stock=Kodak Tri-X 400"_s,
                                         u"--set"_s,        u"layers.title.size=0.05"_s,
                                         u"--set"_s,        u"layers.caption.text=2024"_s,
                                         u"--text"_s,       u"title=a=b"_s,
                                         u"-o"_s,           u"out"_s,
                                         u"one.jpg"_s});
    EXPECT_EQ(outcome.errors, "");
    ASSERT_EQ(outcome.lines().size(), 1);
    const Json line = outcome.lines().first();
    const FrameSettings used = frameSettingsFromJson(JsonReader(line["style"]));
    EXPECT_EQ(used.scale, 0.4);
    EXPECT_EQ(used.color, (Ink{1, 0, 0}));
    EXPECT_EQ(used.background, Backdrop::solid);
    EXPECT_EQ(used.film->stock, u"Kodak Tri-X 400"_s);
    EXPECT_EQ(used.layer(u"title"_s)->text, u"a=b"_s);
    EXPECT_EQ(used.layer(u"caption"_s)->text, u"2024"_s);
    EXPECT_TRUE(used.layer(u"title"_s)->visible);
    EXPECT_EQ(used.layer(u"watermark"_s)->imageAspect, 2);
    EXPECT_EQ(used.handwritingAspect, 2);
    // Over the whole width, in the middle: 720 × 360 from row 180 on.
    EXPECT_EQ(used.handwritingWidth, 1);
    const QImage canvas(program.path(u"out/one-framed.jpg"_s));
    EXPECT_EQ(canvas.pixelColor(3, 170), canvas.pixelColor(3, 10));
    EXPECT_NE(canvas.pixelColor(3, 190), canvas.pixelColor(3, 10));
    EXPECT_NE(canvas.pixelColor(716, 530), canvas.pixelColor(3, 10));
    EXPECT_EQ(used.layers.size(), 7);
    EXPECT_EQ(line["canvas"], Json::parse("[720, 720]"));
    EXPECT_LE(canvas.pixelColor(2, 600).green(), 2);
}

TEST(Export, NumbersFilmFramesInTheOrderGiven)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    const Outcome outcome =
        program.run({u"export"_s, u"--json"_s, u"--size"_s, u"720"_s, u"-t"_s, u"film"_s, u"--set"_s,
                     u"film.number=5"_s, u"-o"_s, u"out"_s, u"a.jpg"_s, u"a.jpg"_s, u"a.jpg"_s});
    QList<int> numbers;
    for (const Json &line : outcome.lines()) {
        numbers.append(line["style"]["film"]["number"].get<int>());
    }
    EXPECT_EQ(numbers, (QList<int>{5, 6, 7}));
}

TEST(Export, MeetsFormatAndSizeLimit)
{
    const Program program;
    program.photo(u"a.jpg"_s, 3000, 2000);
    const auto written = [&program](const QStringList &options) {
        const Outcome outcome =
            program.run(QStringList{u"export"_s, u"--json"_s, u"-o"_s, u"out"_s, u"a.jpg"_s} + options);
        EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
        return outcome.lines().value(0);
    };
    EXPECT_LE(written({u"--max-mb"_s, u"0.3"_s})["bytes"].get<int>(), 300'000);
    EXPECT_EQ(written({u"--size"_s, u"original"_s, u"-t"_s, u"full"_s})["canvas"],
              Json::parse("[3000, 2000]"));
    const Json png = written({u"--size"_s, u"720"_s, u"--format"_s, u"png"_s, u"--max-mb"_s, u"0.001"_s});
    EXPECT_EQ(QImageReader::imageFormat(program.path(QString::fromStdString(png["file"]))), "png");
    const Outcome tight =
        program.run({u"export"_s, u"-o"_s, u"tight"_s, u"a.jpg"_s, u"--max-mb"_s, u"0.001"_s});
    EXPECT_EQ(tight.status, 1);
    EXPECT_EQ(
        tight.errors,
        "tarnovel: a.jpg: Cannot meet this file-size limit. Lower the resolution or raise the limit.\n");
    const Outcome large = program.run({u"export"_s, u"-o"_s, u"tight"_s, u"a.jpg"_s, u"--size"_s, u"8192"_s,
                                       u"--set"_s, u"preset=square"_s});
    EXPECT_EQ(large.errors, "tarnovel: a.jpg: Output exceeds the memory limit. Choose 4096 pixels.\n");
    EXPECT_EQ(program.entries(u"tight"_s), QStringList());
}

TEST(Export, LeavesNoTraceOfTheSource)
{
    const Program program;
    const QString sample = QStringLiteral(TARNOVEL_SOURCE_DIR "/samples/");
    const QStringList names = QDir(sample).entryList({u"*.jpg"_s});
    ASSERT_EQ(names.size(), 6);
    program.run(
        {u"export"_s, u"-o"_s, u"out"_s, u"--size"_s, u"720"_s, u"-t"_s, u"plain"_s, sample + names.first()});
    QFile file(program.path(u"out/"_s + program.entries(u"out"_s).first()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    for (const char *trace : {"Exif", "http://", "arnovel", "Kesmar"}) {
        EXPECT_FALSE(bytes.contains(trace)) << trace;
    }
}

TEST(Export, TakesTheLastOfAnOptionGivenTwiceAndSparesForeignFiles)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    ASSERT_TRUE(QDir().mkdir(program.path(u"out"_s)));
    program.file(u"out/.tarnovel-notes"_s, "precious");
    const Outcome outcome = program.run(
        {u"export"_s, u"--json"_s, u"-t"_s, u"gear"_s, u"-t"_s, u"full"_s, u"-o"_s, u"out"_s, u"a.jpg"_s});
    EXPECT_EQ(outcome.lines().value(0)["style"]["templateID"], "full");
    EXPECT_EQ(program.entries(u"out"_s), (QStringList{u".tarnovel-notes"_s, u"a-framed.jpg"_s}));
}

TEST(Export, SpeaksTheUsersLanguage)
{
    Program program;
    program.file(u"none.jpg"_s, "no picture");
    const auto complaint = [&program] {
        return QString::fromUtf8(program.run({u"export"_s, u"-o"_s, u"out"_s, u"none.jpg"_s}).errors);
    };
    program.environment().insert(u"LANG"_s, u"fr_CA.UTF-8"_s);
    EXPECT_EQ(complaint(),
              u"tarnovel: none.jpg: Impossible de lire cette photo. Essayez JPEG, HEIC ou PNG.\n"_s);
    program.environment().insert(u"LANGUAGE"_s, u"zh_CN:fr"_s);
    EXPECT_EQ(complaint(), u"tarnovel: none.jpg: 无法读取这张照片，请尝试 JPEG、HEIC 或 PNG。\n"_s);
    program.environment().insert(u"LC_ALL"_s, u"POSIX"_s);
    program.environment().remove(u"LANGUAGE"_s);
    EXPECT_EQ(complaint(), u"tarnovel: none.jpg: Cannot read this photo. Try JPEG, HEIC or PNG.\n"_s);
}

TEST(ExportSession, KeepsStoredStylesAndTheDocument)
{
    Program program;
    const QString library = program.path(u"data/TarnovelMac"_s);
    ASSERT_TRUE(QDir().mkpath(library));
    program.photo(u"data/TarnovelMac/a.jpg"_s, 300, 200);
    Session session;
    session.photos.append({QUuid::createUuid(), u"a.jpg"_s, u"holiday"_s, 300, 200, {}});
    session.photos.first().settings.style = FrameStyle::film;
    session.photos.first().settings.film = FilmOptions();
    session.photos.first().settings.film->number = 12;
    session.photos.append({QUuid::createUuid(), u"gone.jpg"_s, u"gone"_s, 300, 200, {}});
    ASSERT_TRUE(SessionWriter(library).save(session, 1));
    QFile document(library + u"/session.json"_s);
    ASSERT_TRUE(document.open(QIODevice::ReadOnly));
    const QByteArray before = document.readAll();

    const Outcome outcome =
        program.run({u"export"_s, u"--session"_s, u"--json"_s, u"--size"_s, u"720"_s, u"-o"_s, u"out"_s});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(program.entries(u"out"_s), QStringList{u"holiday-framed.jpg"_s});
    EXPECT_EQ(frameSettingsFromJson(JsonReader(outcome.lines().value(0)["style"])),
              session.photos.first().settings);
    document.seek(0);
    EXPECT_EQ(document.readAll(), before);

    ASSERT_TRUE(QFile::remove(document.fileName()));
    program.file(u"data/TarnovelMac/session.json"_s, "{");
    const Outcome damaged = program.run({u"export"_s, u"--session"_s, u"-o"_s, u"out"_s});
    EXPECT_EQ(damaged.status, 1);
    EXPECT_TRUE(damaged.errors.endsWith("session.json: Cannot read the stored session.\n"));
    EXPECT_EQ(program.entries(u"data/TarnovelMac"_s), (QStringList{u"a.jpg"_s, u"session.json"_s}));
}

TEST(Interruption, EndsCleanlyWithTheFinishedFiles)
{
    const Program program;
    program.photo(u"a.jpg"_s, 4000, 3000);
    QStringList arguments = {u"export"_s, u"--json"_s, u"-o"_s, u"out"_s};
    for (int i = 0; i < 200; ++i) {
        arguments.append(u"a.jpg"_s);
    }
    QProcess process;
    process.setWorkingDirectory(program.path(u"."_s));
    process.setProcessEnvironment([&] {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"TMPDIR"_s, program.path(u"temporary"_s));
        return environment;
    }());
    process.start(Program::executable(), arguments);
    ASSERT_TRUE(process.waitForReadyRead(60'000));
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(30'000));
    EXPECT_EQ(process.exitCode(), 130);
    const QStringList files = program.entries(u"out"_s);
    EXPECT_GT(files.size(), 0);
    EXPECT_LT(files.size(), 200);
    for (const QString &file : files) {
        EXPECT_FALSE(QImage(program.path(u"out/"_s + file)).isNull()) << file.toStdString();
    }
    EXPECT_EQ(program.entries(u"temporary"_s), QStringList());
}

} // namespace
} // namespace tarnovel::test
