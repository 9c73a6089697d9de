#include <chrono>
#include <thread>

#include <signal.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "base/Cancellation.h"
#include "decoder_client/PhotoDecoder.h"
#include "decoding/Fixtures.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

using namespace test;
using Cause = ImageError::Cause;
using std::chrono::milliseconds;

class PhotoDecoding : public testing::Test {
protected:
    QTemporaryDir m_folder;

    QString path(const QString &name) const { return m_folder.filePath(name); }

    static QList<QImage> parts(PhotoDecoder &decoder, const RegularFile &photo,
                               const std::stop_token &stop = {})
    {
        const QSize whole = decoder.facts(photo, stop).header.uprightSize();
        return decoder.decode(photo, {PicturePart::whole(whole, 50), {{-3, 20.5, 90, 40}, {61, 33}}}, stop);
    }

    static std::optional<Cause> causeOf(PhotoDecoder &decoder, const QString &path)
    {
        try {
            const RegularFile photo(path);
            parts(decoder, photo);
        } catch (const ImageError &error) {
            return error.cause();
        }
        return std::nullopt;
    }

    /// The decoders that this process has started and that live.
    static QList<pid_t> children()
    {
        QList<pid_t> found;
        for (const QString &task : QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            QFile file(u"/proc/self/task/"_s + task + u"/children"_s);
            if (file.open(QIODevice::ReadOnly)) {
                for (const QByteArray &pid : file.readAll().simplified().split(' ')) {
                    if (!pid.isEmpty()) {
                        found.append(pid.toInt());
                    }
                }
            }
        }
        return found;
    }
};

/// A decoder that behaves as `kind` says.
class FakeDecoding : public PhotoDecoding {
protected:
    explicit FakeDecoding() { written(path(u"a.jpg"_s), jpeg(texture({40, 30}))); }
    ~FakeDecoding() override { qunsetenv("TARNOVEL_FAKE_DECODER"); }

    static ChildProcess::Patience brief()
    {
        ChildProcess::Patience patience;
        patience.still = milliseconds(600);
        patience.work = milliseconds(400);
        return patience;
    }

    static void behave(const char *kind) { qputenv("TARNOVEL_FAKE_DECODER", kind); }
};

TEST_F(PhotoDecoding, GivesWhatTheLibrariesGiveInEveryFormat)
{
    const QImage image = texture({120, 80});
    QImage clear = image.convertToFormat(QImage::Format_ARGB32);
    clear.setPixel(50, 40, qRgba(200, 100, 50, 90));
    QStringList files;
    const auto saved = [&](const QString &name, const QString &brackets = {},
                           const SaveOptions &options = {}) {
        save(options.bands == 4 ? clear : image, path(name), brackets, options);
        files.append(path(name));
    };
    SaveOptions alpha;
    alpha.bands = 4;
    SaveOptions deep;
    deep.depth = 16;
    SaveOptions turned;
    turned.orientation = 6;
    SaveOptions inks;
    inks.cmyk = true;
    saved(u"a.jpg"_s);
    saved(u"turned.jpg"_s, {}, turned);
    saved(u"inks.jpg"_s, {}, inks);
    saved(u"p3.jpg"_s, u"[profile=p3]"_s);
    saved(u"a.png"_s);
    saved(u"alpha.png"_s, {}, alpha);
    saved(u"deep.png"_s, {}, deep);
    saved(u"a.heic"_s);
    saved(u"alpha.heic"_s, {}, alpha);
    saved(u"a.avif"_s);
    saved(u"a.webp"_s);
    saved(u"alpha.webp"_s, u"[lossless]"_s, alpha);
    saved(u"a.tif"_s);
    saved(u"deep.tif"_s, u"[compression=deflate]"_s, deep);
    written(path(u"exif.jpg"_s),
            withExif(jpeg(image), exifBlock({{0x010f, 2, 6, QByteArray("Maker\0", 6)}})));
    files.append(path(u"exif.jpg"_s));
    written(path(u"raw.rw2"_s), rawFile(jpeg(texture({1700, 1134}))));
    files.append(path(u"raw.rw2"_s));
    PhotoDecoder decoder;
    for (const QString &file : files) {
        const RegularFile photo(file);
        PhotoFile here{RegularFile(file)};
        const PhotoFacts &facts = decoder.facts(photo);
        EXPECT_EQ(facts.header.format, here.header().format) << file.toStdString();
        EXPECT_EQ(facts.header.uprightSize(), here.header().uprightSize()) << file.toStdString();
        EXPECT_EQ(facts.metadata.make, here.metadata().make) << file.toStdString();
        const QList<QImage> there = parts(decoder, photo);
        const QList<QImage> expected = here.decode(
            {PicturePart::whole(here.header().uprightSize(), 50), {{-3, 20.5, 90, 40}, {61, 33}}});
        EXPECT_EQ(there, expected) << file.toStdString();
    }
    EXPECT_EQ(decoder.starts(), 2)
        << "the one for JPEG, and the other: no format makes a call that is forbidden";
}

TEST_F(PhotoDecoding, KeepsWhatLivesOnApartFromWhatComesNext)
{
    save(quarters({200, 100}), path(u"a.png"_s));
    save(texture({200, 100}), path(u"b.png"_s));
    PhotoDecoder decoder;
    const RegularFile first(path(u"a.png"_s));
    const RegularFile second(path(u"b.png"_s));
    const QImage one = decoder.decode(first, {PicturePart::whole({200, 100}, 200)}).first();
    const QImage copy = one.copy();
    const QImage other = decoder.decode(second, {PicturePart::whole({200, 100}, 200)}).first();
    EXPECT_EQ(one, copy);
    EXPECT_NE(one, other);
    QImage drawnOn = other;
    drawnOn.fill(Qt::red);
    EXPECT_NE(drawnOn, other);
}

TEST_F(PhotoDecoding, WritesIntoTheMemoryThatTheProgramReads)
{
    save(quarters({200, 100}), path(u"a.png"_s));
    save(texture({400, 300}), path(u"b.png"_s));
    PhotoDecoder decoder;
    const RegularFile small(path(u"a.png"_s));
    const RegularFile large(path(u"b.png"_s));
    decoder.decode(small, {PicturePart::whole({200, 100}, 200)});
    decoder.facts(large);
    // A photo that is gone between its description and its decoding takes no slot with it.
    written(path(u"c.png"_s), contents(path(u"b.png"_s)));
    const RegularFile emptied(path(u"c.png"_s));
    decoder.facts(emptied);
    QFile(path(u"c.png"_s)).resize(0);
    EXPECT_THROW(decoder.decode(emptied, {{{0, 0, 400, 300}, {1600, 1200}}}), ImageError);
    EXPECT_EQ(decoder.decode(large, {PicturePart::whole({400, 300}, 400)}).first(), texture({400, 300}));
    const QImage wide = decoder.decode(large, {{{0, 0, 400, 300}, {1600, 1200}}}).first();
    EXPECT_NE(wide.pixel(800, 600), qRgb(0, 0, 0));
    decoder.rest();
    EXPECT_EQ(decoder.decode(small, {PicturePart::whole({200, 100}, 200)}).first(), quarters({200, 100}));
    EXPECT_EQ(decoder.starts(), 1);
}

TEST_F(PhotoDecoding, TellsHostileFilesApartAndLivesOn)
{
    save(texture({90, 60}), path(u"a.png"_s));
    written(path(u"movie.jpg"_s), "GIF89a and so on");
    written(path(u"half.png"_s), contents(path(u"a.png"_s)).left(900));
    PhotoDecoder decoder;
    EXPECT_EQ(causeOf(decoder, path(u"none.jpg"_s)), Cause::Missing);
    EXPECT_EQ(causeOf(decoder, path(u"."_s)), Cause::Missing);
    EXPECT_EQ(causeOf(decoder, path(u"movie.jpg"_s)), Cause::Unsupported);
    EXPECT_EQ(causeOf(decoder, path(u"half.png"_s)), Cause::Damaged);
    EXPECT_EQ(causeOf(decoder, path(u"a.png"_s)), std::nullopt);
    EXPECT_THROW(decoder.decode(RegularFile(path(u"a.png"_s)), {{{0, 0, 1e9, NAN}, {3, 3}}}), ImageError);
    EXPECT_THROW(decoder.decode(RegularFile(path(u"a.png"_s)), {{{0, 0, 9, 9}, {3, 90'000}}}), ImageError);
    EXPECT_EQ(decoder.starts(), 1);
    // Another file under the same name is another photo.
    save(texture({60, 90}), path(u"a.png"_s));
    EXPECT_EQ(decoder.facts(RegularFile(path(u"a.png"_s))).header.storedSize, QSize(60, 90));
}

TEST_F(PhotoDecoding, StartsAnotherOneWhereTheDecoderHasBeenKilled)
{
    save(texture({90, 60}), path(u"a.png"_s));
    PhotoDecoder decoder;
    const RegularFile photo(path(u"a.png"_s));
    const QList<QImage> before = parts(decoder, photo);
    ASSERT_EQ(children().size(), 1);
    kill(children().first(), SIGKILL);
    std::this_thread::sleep_for(milliseconds(100));
    EXPECT_EQ(parts(decoder, photo), before) << "nothing was being read";
    EXPECT_EQ(decoder.starts(), 2);
    ASSERT_EQ(children().size(), 1);
    {
        PhotoDecoder another;
        parts(another, photo);
        EXPECT_EQ(children().size(), 2);
    }
    EXPECT_EQ(children().size(), 1) << "it goes with its owner";
}

TEST_F(FakeDecoding, GivesUpAtOnceWhatIsNoLongerWanted)
{
    behave("hangs at pictures");
    ChildProcess::Patience patience;
    patience.still = std::chrono::minutes(10);
    PhotoDecoder decoder(QStringLiteral(FAKE_DECODER), patience);
    const RegularFile photo(path(u"a.jpg"_s));
    std::stop_source stop;
    std::jthread hand([&stop] {
        std::this_thread::sleep_for(milliseconds(60));
        stop.request_stop();
    });
    EXPECT_THROW(parts(decoder, photo, stop.get_token()), OperationCancelled);
    behave("honest");
    EXPECT_EQ(causeOf(decoder, path(u"a.jpg"_s)), std::nullopt) << "it was nobody's fault";
    EXPECT_EQ(decoder.starts(), 2);
}

TEST_F(FakeDecoding, BelievesNothingThatComesBack)
{
    for (const char *kind : {"garbage", "another id", "giant", "turned eleven ways", "another answer",
                             "too many", "dies", "hangs", "spins"}) {
        behave(kind);
        PhotoDecoder decoder(QStringLiteral(FAKE_DECODER), brief());
        const std::optional<Cause> cause = causeOf(decoder, path(u"a.jpg"_s));
        EXPECT_TRUE(cause) << kind;
        EXPECT_NE(cause.value_or(Cause::NoDecoder), Cause::NoDecoder) << kind;
    }
    behave("honest");
    PhotoDecoder decoder(QStringLiteral(FAKE_DECODER), brief());
    const PhotoFacts facts = decoder.facts(RegularFile(path(u"a.jpg"_s)));
    EXPECT_EQ(facts.metadata.make.size(), 1000);
    EXPECT_EQ(facts.metadata.focalLengthMm, std::nullopt);
    EXPECT_EQ(
        decoder.decode(RegularFile(path(u"a.jpg"_s)), {PicturePart::whole({40, 30}, 40)}).first().size(),
        QSize(40, 30));
}

TEST_F(PhotoDecoding, StartsTheSmallDecoderForAsLongAsItWillDo)
{
    const QImage image = texture({120, 80});
    SaveOptions inks;
    inks.cmyk = true;
    save(image, path(u"plain.jpg"_s));
    save(image, path(u"p3.jpg"_s), u"[profile=p3]"_s);
    save(image, path(u"inks.jpg"_s), {}, inks);
    save(image, path(u"a.png"_s));
    written(path(u"broken.jpg"_s), jpeg(image).first(900));
    PhotoDecoder whole(decoderProgram());
    for (const QString &other : {u"inks.jpg"_s, u"a.png"_s}) {
        PhotoDecoder decoder;
        for (const QString &name : {u"plain.jpg"_s, u"p3.jpg"_s}) {
            const RegularFile photo(path(name));
            const QList<QImage> made = parts(decoder, photo);
            EXPECT_EQ(made, parts(whole, photo)) << name.toStdString();
        }
        EXPECT_EQ(causeOf(decoder, path(u"broken.jpg"_s)), Cause::Damaged);
        EXPECT_EQ(decoder.starts(), 1);
        const RegularFile photo(path(other));
        EXPECT_EQ(parts(decoder, photo), parts(whole, photo)) << other.toStdString();
        EXPECT_EQ(causeOf(decoder, path(u"plain.jpg"_s)), std::nullopt);
        EXPECT_EQ(decoder.starts(), 2) << "the second one stays, whatever comes";
    }
    PhotoDecoder lame(decoderProgram(), {}, u"/bin/false"_s);
    EXPECT_EQ(causeOf(lame, path(u"plain.jpg"_s)), std::nullopt) << "without the small one, the other one";
}

TEST_F(FakeDecoding, APhotoThatKillsTwiceIsNotTriedAgain)
{
    behave("dies");
    PhotoDecoder decoder(QStringLiteral(FAKE_DECODER), brief());
    EXPECT_EQ(causeOf(decoder, path(u"a.jpg"_s)), Cause::Damaged);
    EXPECT_EQ(causeOf(decoder, path(u"a.jpg"_s)), Cause::Damaged);
    EXPECT_EQ(decoder.starts(), 2);
    EXPECT_EQ(causeOf(decoder, path(u"a.jpg"_s)), Cause::Damaged);
    EXPECT_EQ(decoder.starts(), 2);
    written(path(u"b.jpg"_s), jpeg(texture({50, 40})));
    behave("honest");
    EXPECT_EQ(causeOf(decoder, path(u"b.jpg"_s)), std::nullopt);
}

TEST_F(FakeDecoding, TheDecoderItselfIsMissedByItsName)
{
    for (const char *kind : {"does not start", "hangs at once", "of another version"}) {
        behave(kind);
        PhotoDecoder decoder(QStringLiteral(FAKE_DECODER), brief());
        EXPECT_EQ(causeOf(decoder, path(u"a.jpg"_s)), Cause::NoDecoder) << kind;
    }
    PhotoDecoder absent(u"/nowhere/tarnovel-decoder"_s, brief());
    EXPECT_EQ(causeOf(absent, path(u"a.jpg"_s)), Cause::NoDecoder);
    behave("ends afterwards");
    PhotoDecoder decoder(QStringLiteral(FAKE_DECODER), brief());
    const RegularFile photo(path(u"a.jpg"_s));
    decoder.facts(photo);
    std::this_thread::sleep_for(milliseconds(100));
    EXPECT_EQ(decoder.decode(photo, {PicturePart::whole({40, 30}, 40)}).size(), 1)
        << "another one is started";
}

TEST(Lockdown, RefusesWhatADecoderHasNoNeedOf)
{
    for (const char *call : {"open", "create", "unlink", "socket", "fork", "vfork", "execve", "ptrace",
                             "kill", "signal another", "executable memory", "look up a path",
                             "too much memory", "more limits", "io_uring", "another process's memory"}) {
        QProcess program;
        program.start(QStringLiteral(LOCKED_CALL), {QString::fromLatin1(call)});
        ASSERT_TRUE(program.waitForFinished(60'000));
        if (program.exitStatus() == QProcess::NormalExit && program.exitCode() == 3) {
            GTEST_SKIP() << "no filter here: a sanitizer, or a kernel without it";
        }
        const bool killed = program.exitStatus() == QProcess::CrashExit && program.exitCode() == SIGSYS;
        EXPECT_TRUE(killed || (program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0))
            << call;
    }
}

} // namespace
} // namespace tarnovel
