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

TEST(Export, GoesOnAfterHostileFilesWithinBoundedTime)
{
    const Program program;
    program.photo(u"good.jpg"_s);
    QFile good(program.path(u"good.jpg"_s));
    ASSERT_TRUE(good.open(QIODevice::ReadOnly));
    const QByteArray jpeg = good.readAll();
    program.file(u"empty.jpg"_s, "");
    program.file(u"half.jpg"_s, jpeg.left(jpeg.size() / 2));
    program.file(u"page.jpg"_s, "<!DOCTYPE html><html></html>");
    program.file(u"drawing.jpg"_s, "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>");
    program.file(u"paper.jpg"_s, "%PDF-1.7\n");
    program.file(u"packed.jpg"_s, QByteArray::fromHex("1f8b0800000000000003") + QByteArray(85, 'x'));
    program.file(u"movie.jpg"_s, QByteArray::fromHex("00000018") + "ftypmp42" + QByteArray(64, '\0'));
    program.file(QString::fromUtf8("line\nbreak.jpg"), "x");
    program.file(u"-dash.jpg"_s, jpeg);
    program.file(u"[a],{b} %1 😀.jpg"_s, jpeg);
    program.file(QString(251, u'n') + u".jpg"_s, jpeg);
    QDir().mkdir(program.path(u"folder.jpg"_s));
    QFile::link(u"/nowhere"_s, program.path(u"link.jpg"_s));
    ASSERT_EQ(mkfifo(QFile::encodeName(program.path(u"pipe.jpg"_s)).constData(), 0600), 0);
    QStringList arguments = {u"export"_s, u"-q"_s,  u"--size"_s,      u"720"_s,
                             u"-o"_s,     u"out"_s, u"missing.jpg"_s, u"--"_s};
    for (const QString &name : program.entries(u"."_s)) {
        if (name.endsWith(u".jpg"_s)) {
            arguments.append(name);
        }
    }
    QElapsedTimer timer;
    timer.start();
    const Outcome outcome = program.run(arguments);
    EXPECT_LT(timer.elapsed(), 10'000);
    EXPECT_EQ(outcome.status, 1);
    QList<QByteArray> complaints = outcome.errors.split('\n');
    EXPECT_EQ(complaints.takeLast(), "");
    EXPECT_EQ(complaints.size(), 12) << outcome.errors.toStdString();
    EXPECT_TRUE(
        complaints.contains("tarnovel: line\\nbreak.jpg: Cannot read this photo. Try JPEG, HEIC or PNG."));
    EXPECT_EQ(program.entries(u"out"_s).size(), 4);
    EXPECT_TRUE(program.entries(u"out"_s).contains(u"-dash-framed.jpg"_s));
}

TEST(Export, SaysWhatIsWrongWithTheDestination)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    program.file(u"taken"_s, "");
    const Outcome taken = program.run({u"export"_s, u"-o"_s, u"taken"_s, u"a.jpg"_s});
    EXPECT_EQ(taken.status, 1);
    EXPECT_EQ(taken.errors, "tarnovel: taken: A file stands where the folder should be.\n");
    const Outcome full =
        program.run({u"export"_s, u"--language"_s, u"fr"_s, u"-o"_s, u"/proc"_s, u"a.jpg"_s});
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.errors.count('\n'), 1);
    EXPECT_TRUE(full.errors.startsWith("tarnovel: a.jpg: /proc: ")) << full.errors.toStdString();
}

TEST(Export, SaysWhatIsWrongWithAPictureThatCannotBeFramed)
{
    Program program;
    program.photo(u"a.jpg"_s);
    // One directory that says that it is a smaller version of another picture.
    program.file(u"preview.tif"_s, QByteArray::fromHex("49492a0008000000"
                                                       "0300"
                                                       "fe0004000100000001000000"
                                                       "000104000100000040000000"
                                                       "010104000100000030000000"
                                                       "00000000"));
    // A header that asks for 60,000 × 60,000 pixels.
    QFile photo(program.path(u"a.jpg"_s));
    ASSERT_TRUE(photo.open(QIODevice::ReadOnly));
    QByteArray giant = photo.readAll();
    const qsizetype frame = giant.indexOf("\xff\xc0");
    ASSERT_GT(frame, 0);
    giant.replace(frame + 5, 4, QByteArray::fromHex("ea60ea60"));
    program.file(u"giant.jpg"_s, giant);
    for (const auto &[language, preview, tooLarge] :
         {std::tuple(
              u"en"_s,
              "This file holds only a small preview. Save it as JPEG or TIFF in a raw developer first.",
              "This picture is too large to be read into memory. Make it smaller first."),
          {u"zh"_s, "文件里只有小预览图，请先在 RAW 软件中导出为 JPEG 或 TIFF。",
           "图片太大，无法读入内存。请先缩小尺寸。"},
          {u"fr"_s,
           "Ce fichier ne contient qu’un petit aperçu. Enregistrez-le d’abord en JPEG ou en TIFF depuis un "
           "logiciel RAW.",
           "Cette image est trop grande pour tenir en mémoire. Réduisez-la d’abord."}}) {
        for (const auto &[file, sentence] :
             {std::pair(u"preview.tif"_s, preview), {u"giant.jpg"_s, tooLarge}}) {
            const QByteArray line = "tarnovel: " + file.toUtf8() + ": " + sentence + "\n";
            for (const QStringList &command :
                 {QStringList{u"export"_s, u"-o"_s, u"out"_s, file},
                  {u"inspect"_s, file},
                  {u"collage"_s, u"-o"_s, u"c.jpg"_s, u"a.jpg"_s, file},
                  {u"export"_s, u"-o"_s, u"out"_s, u"--logo"_s, file, u"a.jpg"_s}}) {
                const Outcome outcome = program.run(command + QStringList{u"--language"_s, language});
                EXPECT_EQ(outcome.status, 1);
                EXPECT_EQ(outcome.errors, line) << command.join(u' ').toStdString();
            }
        }
    }
    EXPECT_EQ(program.entries(u"out"_s), QStringList());
}

TEST(Export, NamesAMissingFontOnceAndOnlyWhereATextNeedsIt)
{
    Program program;
    program.photo(u"a.jpg"_s);
    program.file(u"fonts.conf"_s,
                 "<?xml version=\"1.0\"?><!DOCTYPE fontconfig SYSTEM \"urn:fontconfig:fonts.dtd\">"
                 "<fontconfig><include>/etc/fonts/fonts.conf</include><selectfont><rejectfont>"
                 "<pattern><patelt name=\"family\"><string>Noto Color Emoji</string></patelt>"
                 "</pattern></rejectfont></selectfont></fontconfig>");
    program.environment().insert(u"FONTCONFIG_FILE"_s, program.path(u"fonts.conf"_s));
    const auto errors = [&program](const QString &text) {
        return program
            .run({u"export"_s, u"-o"_s, u"out"_s, u"--size"_s, u"720"_s, u"--text"_s, u"title="_s + text,
                  u"--text"_s, u"caption="_s + text, u"a.jpg"_s, u"a.jpg"_s})
            .errors;
    };
    EXPECT_EQ(errors(u"Plain"_s), "");
    EXPECT_EQ(errors(u"Sun ☀\uFE0F"_s).count("fonts-noto-color-emoji"), 1);
}

TEST(Export, RefusesWrongUsageBeforeItWritesAnything)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    const QList<QStringList> faults = {{},
                                       {u"--size"_s, u"big"_s},
                                       {u"--size"_s, u" 1080"_s},
                                       {u"--set"_s, u"color={\"r\":1,\"g\":0,\"b\":0,\"z\":3}"_s},
                                       {u"--size"_s, u"-5"_s},
                                       {u"--size"_s, u"719"_s},
                                       {u"--size"_s, u"8193"_s},
                                       {u"--size"_s, u"0"_s},
                                       {u"--format"_s, u"gif"_s},
                                       {u"--max-mb"_s, u"0"_s},
                                       {u"--max-mb"_s, u"nan"_s},
                                       {u"-t"_s, u"none"_s},
                                       {u"-t"_s, u"gear"_s, u"--style"_s, u"a.jpg"_s},
                                       {u"--set"_s, u"scale"_s},
                                       {u"--set"_s, u"scales=1"_s},
                                       {u"--set"_s, u"scale=big"_s},
                                       {u"--set"_s, u"lockX=1"_s},
                                       {u"--set"_s, u"layers.none.size=1"_s},
                                       {u"--set"_s, u"layers.title.sizes=1"_s},
                                       {u"--set"_s, u"scale=null"_s},
                                       {u"--set"_s, u"film.number=one"_s},
                                       {u"--set"_s, u"preset=panorama"_s},
                                       {u"--text"_s, u"none=x"_s},
                                       {u"--language"_s, u"de"_s},
                                       {u"--unknown"_s},
                                       {u"--size"_s},
                                       {u"--session"_s}};
    for (QStringList fault : faults) {
        const bool bare = fault.isEmpty();
        const Outcome outcome = program.run(QStringList{u"export"_s, u"a.jpg"_s} + fault +
                                            (bare ? QStringList() : QStringList{u"-o"_s, u"out"_s}));
        EXPECT_EQ(outcome.status, 2) << fault.join(u' ').toStdString();
        EXPECT_EQ(outcome.errors.count('\n'), 1) << outcome.errors.toStdString();
        EXPECT_TRUE(outcome.errors.endsWith("See tarnovel --help\n")) << outcome.errors.toStdString();
        EXPECT_EQ(outcome.output, "");
    }
    EXPECT_FALSE(QFileInfo::exists(program.path(u"out"_s)));
}

TEST(Export, NamesThePictureThatIsAtFault)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    QFile whole(program.path(u"a.jpg"_s));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    program.file(u"half.jpg"_s, whole.read(whole.size() / 2));
    const Outcome option =
        program.run({u"export"_s, u"-o"_s, u"out"_s, u"--signature"_s, u"half.jpg"_s, u"a.jpg"_s});
    EXPECT_EQ(option.errors, "tarnovel: half.jpg: Cannot read this picture. Try JPEG, HEIC or PNG.\n");
    const Outcome field = program.run({u"export"_s, u"-o"_s, u"out"_s, u"--set"_s, u"background=image"_s,
                                       u"--set"_s, u"backgroundFile=none.png"_s, u"a.jpg"_s});
    EXPECT_EQ(field.status, 1);
    EXPECT_EQ(field.errors,
              "tarnovel: a.jpg: none.png: The background picture cannot be read. There is no such file.\n");
}

TEST(Export, SaysOfEachPhotoWhyItCannotBeRead)
{
    const Program program;
    ASSERT_TRUE(QDir().mkdir(program.path(u"album"_s)));
    ASSERT_EQ(mkfifo(QFile::encodeName(program.path(u"pipe"_s)).constData(), 0600), 0);
    program.file(u"empty.jpg"_s, "");
    const Outcome outcome = program.run(
        {u"export"_s, u"-o"_s, u"out"_s, u"gone.jpg"_s, u"album"_s, u"*.png"_s, u"pipe"_s, u"empty.jpg"_s});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "tarnovel: gone.jpg: There is no such file.\n"
                              "tarnovel: album: This is a folder, not a file.\n"
                              "tarnovel: *.png: No file matches this pattern.\n"
                              "tarnovel: pipe: This is not an ordinary file.\n"
                              "tarnovel: empty.jpg: The file is empty.\n");
    // A name that is not UTF-8 cannot even be written as an argument of Qt's.
    QProcess shell;
    shell.setWorkingDirectory(program.path(QString()));
    shell.start(u"bash"_s,
                {u"-c"_s, u"printf x >$'a\\xff.jpg'; LANG=C \"$0\" inspect $'a\\xff.jpg'; rm $'a\\xff.jpg'"_s,
                 Program::executable()});
    ASSERT_TRUE(shell.waitForFinished(30'000));
    EXPECT_TRUE(shell.readAllStandardError().contains("The file’s name is not UTF-8. Rename it first."));
    const Outcome silent = program.run({u"inspect"_s, u"gone.jpg"_s});
    EXPECT_EQ(silent.errors.count('\n'), 1);
    const Outcome verbose = program.run({u"inspect"_s, u"--verbose"_s, u"gone.jpg"_s});
    EXPECT_TRUE(verbose.errors.contains("tarnovel.imaging: ")) << verbose.errors.toStdString();
    EXPECT_TRUE(verbose.errors.contains("gone.jpg"));
}

TEST(Export, LeavesNoHalfFileWhereFilesMayNotGrow)
{
    const Program program;
    program.photo(u"a.jpg"_s, 3000, 2000);
    QProcess shell;
    shell.setWorkingDirectory(program.path(QString()));
    shell.start(u"bash"_s, {u"-c"_s, u"ulimit -f 8; exec env LANG=C \"$0\" export -o out a.jpg"_s,
                            Program::executable()});
    ASSERT_TRUE(shell.waitForFinished(60'000));
    EXPECT_EQ(shell.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(shell.exitCode(), 1);
    EXPECT_TRUE(shell.readAllStandardError().contains("The file would be larger than is allowed here."));
    EXPECT_EQ(program.entries(u"out"_s), QStringList());
}

TEST(Export, RefusesAStyleThatIsTooLargeBeforeReadingIt)
{
    const Program program;
    program.photo(u"a.jpg"_s);
    QFile huge(program.path(u"huge.json"_s));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(20'000'000'000));
    const Outcome outcome =
        program.run({u"export"_s, u"-o"_s, u"out"_s, u"--style"_s, u"huge.json"_s, u"a.jpg"_s});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "tarnovel: huge.json: Not a valid style: /: larger than 64 MB\n");
}

} // namespace
} // namespace tarnovel::test
