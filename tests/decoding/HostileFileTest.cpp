#include <chrono>
#include <optional>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <turbojpeg.h>

#include "decoding/Fixtures.h"
#include "imaging/ImageError.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

using namespace test;
using Cause = ImageError::Cause;

std::optional<Cause> causeOf(const QString &path)
{
    try {
        decodeImage(path, 500);
    } catch (const ImageError &error) {
        EXPECT_STRNE(error.what(), "");
        return error.cause();
    }
    return std::nullopt;
}

QByteArray big16(int value)
{
    const quint16 big = qToBigEndian(static_cast<quint16>(value));
    return QByteArray(reinterpret_cast<const char *>(&big), 2);
}

/// The file with the sides that its JPEG frame header states replaced.
QByteArray withJpegSize(QByteArray file, int width, int height)
{
    for (qsizetype at = 2; at + 9 < file.size();) {
        const int marker = static_cast<uchar>(file[at + 1]);
        if (marker == 0xc0 || marker == 0xc2) {
            return file.replace(at + 5, 4, big16(height) + big16(width));
        }
        at += 2 + qFromBigEndian<quint16>(file.constData() + at + 2);
    }
    return {};
}

/// Whether another decoder of JPEG files complains; bytes too many before the end are no matter.
bool isSuspect(const QByteArray &file)
{
    tjhandle handle = tjInitDecompress();
    const auto *bytes = reinterpret_cast<const unsigned char *>(file.constData());
    const auto size = static_cast<unsigned long>(file.size());
    int width = 0;
    int height = 0;
    int sampling = 0;
    int space = 0;
    bool failed = tjDecompressHeader3(handle, bytes, size, &width, &height, &sampling, &space) != 0;
    if (!failed) {
        const bool inks = space == TJCS_CMYK || space == TJCS_YCCK;
        std::vector<unsigned char> pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
        failed = tjDecompress2(handle, bytes, size, pixels.data(), width, 0, height,
                               inks ? TJPF_CMYK : TJPF_RGBX, TJFLAG_STOPONWARNING) != 0 &&
                 !QByteArray(tjGetErrorStr2(handle)).endsWith("before marker 0xd9");
    }
    tjDestroy(handle);
    return failed;
}

/// Where the chunks of a PNG file begin.
QList<qsizetype> chunkStarts(const QByteArray &png)
{
    QList<qsizetype> starts;
    for (qsizetype at = 8; at + 12 <= png.size();
         at += 12 + qsizetype(qFromBigEndian<quint32>(png.constData() + at))) {
        starts << at;
    }
    return starts;
}

class HostileFile : public testing::Test {
protected:
    HostileFile() : m_started(std::chrono::steady_clock::now()) {}
    ~HostileFile() override
    {
        EXPECT_LT(std::chrono::steady_clock::now() - m_started, std::chrono::seconds(60)) << "hangs";
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        EXPECT_LT(usage.ru_maxrss, 1'000'000) << "kilobytes at the peak";
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString file(const QByteArray &bytes) const { return written(path(u"file.jpg"_s), bytes); }

private:
    QTemporaryDir m_folder;
    std::chrono::steady_clock::time_point m_started;
};

TEST_F(HostileFile, OnlyRegularFilesAreOpened)
{
    EXPECT_EQ(causeOf(path(u"absent"_s)), Cause::Missing);
    ASSERT_EQ(mkfifo(QFile::encodeName(path(u"pipe.jpg"_s)).constData(), 0600), 0);
    EXPECT_EQ(causeOf(path(u"pipe.jpg"_s)), Cause::Missing);
    EXPECT_EQ(causeOf(path(u"."_s)), Cause::Missing);
    EXPECT_EQ(causeOf(u"/dev/zero"_s), Cause::Missing);
    ASSERT_TRUE(QFile::link(path(u"nowhere"_s), path(u"dangling.jpg"_s)));
    EXPECT_EQ(causeOf(path(u"dangling.jpg"_s)), Cause::Missing);
    written(path(u"real.bin"_s), jpeg(texture(QSize(20, 20))));
    ASSERT_TRUE(QFile::link(path(u"real.bin"_s), path(u"link.txt"_s)));
    EXPECT_EQ(causeOf(path(u"link.txt"_s)), std::nullopt) << "the bytes count, not the name";
}

TEST_F(HostileFile, AFileCutShortWhileItIsReadCostsOnlyItself)
{
    // A stick that is pulled out, or a file that is still being copied.
    const QImage image = texture(QSize(300, 240));
    for (const QString &name : {u"a.webp"_s, u"a.heic"_s, u"a.avif"_s, u"a.tif"_s, u"a.png"_s}) {
        save(image, path(name));
        PhotoFile opened{RegularFile(path(name))};
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(file.size() / 3));
        EXPECT_THROW(opened.decode({{QRectF({}, QSizeF(image.size())), QSize(90, 72)}}), ImageError)
            << name.toStdString();
        opened.metadata();
    }
}

TEST_F(HostileFile, AGiantChunkIsNotTakenIntoMemory)
{
    save(texture(QSize(40, 40)), path(u"a.png"_s));
    const QByteArray whole = contents(path(u"a.png"_s));
    const auto peak = [] {
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    [[maybe_unused]] const long before = peak();
    for (const char *type : {"IDAT", "iCCP", "eXIf", "tEXt", "prIV", "PLTE"}) {
        const QByteArray head = QByteArray::fromHex("11e1a300") + type; // three hundred million bytes
        QFile file(written(path(u"giant.png"_s), whole.left(33) + head));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.resize(300'000'100));
        file.seek(file.size() - 12);
        file.write(whole.right(12));
        file.close();
        EXPECT_TRUE(causeOf(path(u"giant.png"_s))) << type;
        readCaptureMetadata(path(u"giant.png"_s));
#ifndef __SANITIZE_ADDRESS__ // whose own notes on what is read are memory, too
        EXPECT_LT(peak() - before, 100'000) << type << ", kB";
#endif
    }
}

TEST_F(HostileFile, OtherKindsOfFilesAreUnsupported)
{
    const QByteArray movie("\0\0\0\x18"
                           "ftypqt  \0\0\0\0qt  heic",
                           24);
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("\xff"), QByteArray("<!doctype html>"), QByteArray("<svg xmlns='x'/>"),
          QByteArray("%PDF-1.4\n"), QByteArray("\x1f\x8b\x08\0\0\0\0\0", 8), QByteArray("GIF89a"), movie,
          QByteArray("\0\0\0\x18"
                     "ftypisom\0\0\0\0isommp42",
                     24),
          QByteArray("RIFF\0\0\0\0WAVE", 12)}) {
        EXPECT_EQ(causeOf(file(bytes)), Cause::Unsupported) << bytes.toStdString();
    }
}

TEST_F(HostileFile, DamagedPicturesAreNeverHalfGrey)
{
    const QImage image = texture(QSize(320, 240));
    JpegOptions progressive;
    progressive.progressive = true;
    QByteArrayList whole = {jpeg(image), jpeg(image, progressive)};
    for (const auto &[name, options] :
         {std::pair(u"a.png"_s, u""_s), std::pair(u"a.webp"_s, u""_s),
          std::pair(u"a.tif"_s, u"[compression=lzw]"_s), std::pair(u"a.heic"_s, u"[compression=hevc]"_s),
          std::pair(u"a.avif"_s, u"[compression=av1]"_s)}) {
        save(image, path(name), options);
        whole << contents(path(name));
    }
    for (const QByteArray &bytes : whole) {
        ASSERT_EQ(causeOf(file(bytes)), std::nullopt);
        for (const double part : {0.1, 0.5, 0.8}) {
            const QByteArray cut = bytes.left(static_cast<qsizetype>(double(bytes.size()) * part));
            EXPECT_EQ(causeOf(file(cut)), Cause::Damaged) << bytes.left(12).toStdString() << ' ' << part;
        }
        for (qsizetype length = 1; length < 40; length += 3) {
            EXPECT_NE(causeOf(file(bytes.left(length))), std::nullopt);
            readCaptureMetadata(path(u"file.jpg"_s));
        }
    }
}

TEST_F(HostileFile, FlippedBytesNeitherCrashNorHang)
{
    const QImage image = texture(QSize(64, 48));
    save(image, path(u"a.png"_s));
    save(image, path(u"a.webp"_s));
    save(image, path(u"a.tif"_s));
    save(image, path(u"a.heic"_s), u"[compression=hevc]"_s);
    const qsizetype pngData = contents(path(u"a.png"_s)).indexOf("IDAT") - 4;
    quint32 seed = 7;
    for (const QByteArray &bytes :
         {withExif(jpeg(image), orientationBlock(6)), contents(path(u"a.png"_s)), contents(path(u"a.webp"_s)),
          contents(path(u"a.tif"_s)), contents(path(u"a.heic"_s))}) {
        for (int round = 0; round < 60; ++round) {
            QByteArray changed = bytes;
            for (int flip = 0; flip < 3; ++flip) {
                seed = seed * 1664525 + 1013904223;
                const qsizetype span =
                    round % 2 == 0 ? std::min<qsizetype>(changed.size(), 400) : changed.size();
                changed[static_cast<qsizetype>(seed >> 8) % span] = static_cast<char>(seed >> 3);
            }
            const std::optional<Cause> cause = causeOf(file(changed));
            if (bytes.startsWith("\x89PNG") && changed.mid(pngData) != bytes.mid(pngData)) {
                EXPECT_NE(cause, std::nullopt) << "from changed data, in round " << round;
            }
            readCaptureMetadata(path(u"file.jpg"_s));
        }
    }
}

TEST_F(HostileFile, APngWithChangedOrMissingDataIsDamaged)
{
    for (const QString &options : {u""_s, u"[interlace]"_s, u"[palette]"_s}) {
        save(texture(QSize(200, 150)), path(u"a.png"_s), options);
        const QByteArray png = withChunk(contents(path(u"a.png"_s)), "tEXt", QByteArray("Comment\0hi", 10));
        const QList<qsizetype> starts = chunkStarts(png);
        const qsizetype data = png.indexOf("IDAT") - 4;
        ASSERT_EQ(causeOf(file(png)), std::nullopt);
        QList<qsizetype> flips;
        for (const qsizetype start : starts) {
            for (qsizetype at = start; start >= data && at < start + 8; ++at) {
                flips << at;
            }
        }
        for (qsizetype at = data; at < png.size(); at += 1 + png.size() / 150) {
            flips << at;
        }
        for (const qsizetype at : flips) {
            for (const int bit : {1, 0x20}) {
                QByteArray changed = png;
                changed[at] = static_cast<char>(changed[at] ^ bit);
                EXPECT_EQ(causeOf(file(changed)), Cause::Damaged) << at << " of " << png.size();
            }
        }
        const qsizetype end = starts.last();
        EXPECT_EQ(causeOf(file(png.left(end))), Cause::Damaged) << "no end";
        EXPECT_EQ(causeOf(file(png.left(end + 11))), Cause::Damaged) << "half an end";
        EXPECT_EQ(causeOf(file(png.left(data) + png.mid(end))), Cause::Damaged) << "no data";
        EXPECT_EQ(causeOf(file(png + "more")), std::nullopt) << "what follows is not the picture";
        QByteArray comment = png;
        comment[comment.indexOf("Comment")] = 'c';
        EXPECT_EQ(causeOf(file(comment)), std::nullopt) << "the picture needs no comment";
    }
}

TEST_F(HostileFile, AJpegOfAnyLayoutIsDamagedWhereItsDecoderWarns)
{
    const QImage image = texture(QSize(200, 150));
    QByteArrayList files;
    SaveOptions inks;
    inks.cmyk = true;
    for (const QString &options : {u"[Q=90]"_s, u"[Q=90,interlace]"_s}) {
        save(image, path(u"inks.jpg"_s), options, inks);
        files << contents(path(u"inks.jpg"_s));
    }
    JpegOptions rgb;
    rgb.storedAsRgb = true;
    files << jpeg(image, rgb);
    for (const QByteArray &bytes : files) {
        ASSERT_EQ(causeOf(file(bytes)), std::nullopt);
        const qsizetype scan = bytes.indexOf(QByteArray("\xff\xda\0", 3)) + 20; // a profile has no such bytes
        int damaged = 0;
        for (qsizetype at = scan; at < bytes.size() - 2; at += 1 + (bytes.size() - scan) / 40) {
            // A changed byte often shows in the picture alone; one that begins a marker ends the data.
            for (const char byte : {static_cast<char>(bytes[at] ^ 0x55), '\xff'}) {
                QByteArray changed = bytes;
                changed[at] = byte;
                const bool suspect = isSuspect(changed);
                EXPECT_EQ(causeOf(file(changed)), suspect ? std::optional(Cause::Damaged) : std::nullopt)
                    << at;
                damaged += suspect ? 1 : 0;
            }
        }
        EXPECT_GT(damaged, 10) << "hardly a flip that matters";
    }
    // A colour resolution that the other decoder does not know either.
    JpegOptions thirds;
    thirds.horizontal = 3;
    const QByteArray odd = jpeg(image, thirds);
    ASSERT_EQ(causeOf(file(odd)), std::nullopt);
    EXPECT_EQ(causeOf(file(odd.left(odd.size() / 2) + "\xff\xd9")), Cause::Damaged);
}

TEST_F(HostileFile, SizesAreJudgedBeforePixels)
{
    const QByteArray small = jpeg(texture(QSize(16, 16)));
    EXPECT_EQ(causeOf(file(withJpegSize(small, 35'000, 18'000))), Cause::TooLarge);
    EXPECT_EQ(causeOf(file(withJpegSize(small, 65'535, 10))), Cause::TooLarge);
    EXPECT_EQ(causeOf(file(withJpegSize(small, 20'000, 19'999))), Cause::Damaged);
    EXPECT_EQ(causeOf(file(withJpegSize(small, 0, 100))), Cause::Damaged);
    JpegOptions progressive;
    progressive.progressive = true;
    const QByteArray scans = jpeg(texture(QSize(16, 16)), progressive);
    EXPECT_EQ(causeOf(file(withJpegSize(scans, 20'000, 19'999))), Cause::TooLarge);
    save(texture(QSize(16, 16)), path(u"a.png"_s));
    QByteArray png = contents(path(u"a.png"_s)).mid(33);
    const QByteArray header("\0\0\x75\x30\0\0\x75\x30\x08\x02\0\0\0", 13);
    QByteArray start("\x89PNG\r\n\x1a\n\0\0\0\0IHDR", 16);
    start += QByteArray(17, '\0');
    const QByteArray grown = withChunk(start, "IHDR", header);
    EXPECT_EQ(causeOf(file(grown.left(8) + grown.mid(33) + png)), Cause::TooLarge);
}

TEST_F(HostileFile, ThousandsOfScansAreRefused)
{
    JpegOptions progressive;
    progressive.progressive = true;
    const QByteArray bytes = jpeg(texture(QSize(256, 256)), progressive);
    // The last scan refines coefficients: the same one over and over makes a file that never gets done.
    const qsizetype last = bytes.lastIndexOf("\xff\xda");
    const QByteArray scan = bytes.mid(last, bytes.size() - 2 - last);
    QByteArray bomb = bytes.left(bytes.size() - 2);
    for (int i = 0; i < 4000; ++i) {
        bomb += scan;
    }
    EXPECT_NE(causeOf(file(bomb + "\xff\xd9")), std::nullopt);
}

} // namespace
} // namespace tarnovel
