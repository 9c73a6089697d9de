#include <utility>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include "decoding/Fixtures.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

using namespace test;

constexpr quint16 ascii = 2;
constexpr quint16 shortNumber = 3;
constexpr quint16 longNumber = 4;
constexpr quint16 rational = 5;
constexpr quint16 signedRational = 10;

QByteArray number16(int value)
{
    const quint16 little = qToLittleEndian(static_cast<quint16>(value));
    return QByteArray(reinterpret_cast<const char *>(&little), 2);
}

QByteArray number32(quint32 value)
{
    const quint32 little = qToLittleEndian(value);
    return QByteArray(reinterpret_cast<const char *>(&little), 4);
}

ExifEntry text(quint16 tag, const QByteArray &value)
{
    return {tag, ascii, static_cast<quint32>(value.size() + 1), value + '\0'};
}

ExifEntry fraction(quint16 tag, quint32 numerator, quint32 denominator, quint16 type = rational)
{
    return {tag, type, 1, number32(numerator) + number32(denominator)};
}

/// Where a block names places in itself, and which.
QList<std::pair<qsizetype, quint32>> movedPlaces(const QByteArray &block)
{
    QList<std::pair<qsizetype, quint32>> found;
    const auto number = [&block](qsizetype at, int size) {
        return size == 2 ? qFromLittleEndian<quint16>(block.constData() + at)
                         : qFromLittleEndian<quint32>(block.constData() + at);
    };
    for (quint32 directory = 8, next = 0; directory != 0; directory = std::exchange(next, 0)) {
        const quint32 count = number(directory, 2);
        for (quint32 i = 0; i < count; ++i) {
            const qsizetype entry = directory + 2 + i * 12;
            const quint32 value = number(entry + 8, 4);
            const quint32 type = number(entry + 2, 2);
            const bool isBelow = number(entry, 2) == 0x8769;
            if (isBelow || type == rational || number(entry + 4, 4) > 4) {
                found.append({entry + 8, value});
            }
            next = isBelow ? value : next;
        }
    }
    return found;
}

class CaptureMetadataTest : public testing::Test {
protected:
    CaptureMetadata read(const QList<ExifEntry> &first, const QList<ExifEntry> &photo)
    {
        const QByteArray file = withExif(jpeg(texture(QSize(16, 16))), exifBlock(first, photo));
        return readCaptureMetadata(written(path(u"a.jpg"_s), file));
    }
    QString path(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

TEST_F(CaptureMetadataTest, ReadsWhatACameraWrites)
{
    const QList<ExifEntry> first = {text(0x010f, " Maker "), text(0x0110, "Model 5")};
    const QList<ExifEntry> photo = {fraction(0x829a, 1, 250),
                                    fraction(0x829d, 28, 10),
                                    {0x8827, shortNumber, 2, number16(400) + number16(9)},
                                    text(0x9003, "2024:05:06 07:08:09"),
                                    fraction(0x920a, 35, 1)};
    const CaptureMetadata fromJpeg = read(first, photo);
    save(texture(QSize(16, 16)), path(u"a.png"_s));
    const CaptureMetadata fromPng = readCaptureMetadata(
        written(path(u"b.png"_s), withChunk(contents(path(u"a.png"_s)), "eXIf", exifBlock(first, photo))));
    const CaptureMetadata fromTiff = readCaptureMetadata(written(path(u"a.tif"_s), exifBlock(first, photo)));
    // The directories behind three hundred megabytes of pixels, of which none is read.
    const QByteArray block = exifBlock(first, photo);
    constexpr quint32 far = 300'000'000;
    QByteArray moved = block.mid(8);
    for (const auto &[at, value] : movedPlaces(block)) {
        moved.replace(at - 8, 4, number32(value + far - 8));
    }
    QFile large(path(u"large.tif"_s));
    ASSERT_TRUE(large.open(QIODevice::WriteOnly));
    large.write(QByteArray("II*\0", 4) + number32(far));
    large.seek(far);
    large.write(moved);
    large.close();
    const CaptureMetadata fromLarge = readCaptureMetadata(large.fileName());
    for (const CaptureMetadata &found : {fromJpeg, fromPng, fromTiff, fromLarge}) {
        EXPECT_EQ(found.make, u" Maker "_s);
        EXPECT_EQ(found.model, u"Model 5"_s);
        EXPECT_EQ(found.exposureSeconds, 1.0 / 250);
        EXPECT_EQ(found.fNumber, 2.8);
        EXPECT_EQ(found.iso, 400);
        EXPECT_EQ(found.focalLengthMm, 35.0);
        EXPECT_EQ(found.originalDate, u"2024:05:06 07:08:09"_s);
    }
}

TEST_F(CaptureMetadataTest, TheDecoderFindsTheBlockThatTheParserMisses)
{
    const QList<ExifEntry> first = {text(0x010f, "Maker"), text(0x0110, "Model 5")};
    const QByteArray block = exifBlock(first, {fraction(0x829d, 18, 10)});
    const auto check = [this](const QString &name) {
        const CaptureMetadata found = readCaptureMetadata(path(name));
        EXPECT_EQ(found.make, u"Maker"_s) << name.toStdString();
        EXPECT_EQ(found.model, u"Model 5"_s) << name.toStdString();
        EXPECT_EQ(found.fNumber, 1.8) << name.toStdString();
    };
    for (const QString &ending : {u".avif"_s, u".heic"_s}) {
        const QString brackets = ending == u".heic" ? u"[compression=hevc]"_s : u"[compression=av1]"_s;
        save(texture(QSize(64, 64)), path(u"base"_s + ending), brackets, {.exif = block});
        // The place of the second item: its number, no reference, the base that says where it lies, and one
        // extent that lies at the base. There the parser finds it.
        QByteArray file = contents(path(u"base"_s + ending));
        const qsizetype item = file.indexOf("iloc") + 12 + 18;
        ASSERT_EQ(file.mid(item, 4), QByteArray("\0\2\0\0", 4));
        const QByteArray place = file.mid(item + 4, 4);
        ASSERT_EQ(file.mid(item + 8, 6), QByteArray("\0\1\0\0\0\0", 6));
        check(u"base"_s + ending);
        // The base says nothing and the extent all: only the decoder adds the two.
        file.replace(item + 4, 4, QByteArray(4, '\0'));
        file.replace(item + 10, 4, place);
        written(path(u"extent"_s + ending), file);
        check(u"extent"_s + ending);
    }
}

TEST_F(CaptureMetadataTest, NumbersThatAreNoneAreAbsent)
{
    const CaptureMetadata found =
        read({}, {fraction(0x829a, 1, 0), fraction(0x829d, static_cast<quint32>(-28), 10, signedRational),
                  fraction(0x920a, 0xffffffff, 1)});
    EXPECT_FALSE(found.exposureSeconds.has_value());
    EXPECT_FALSE(found.fNumber.has_value());
    EXPECT_EQ(found.focalLengthMm, 4294967295.0);
    EXPECT_FALSE(found.iso.has_value());
}

TEST_F(CaptureMetadataTest, TheHighestShortIsoPointsElsewhere)
{
    const ExifEntry highest = {0x8827, shortNumber, 1, number16(65535)};
    EXPECT_EQ(read({}, {highest, {0x8832, longNumber, 1, number32(102'400)}}).iso, 102'400);
    EXPECT_EQ(read({}, {highest}).iso, 65535);
}

TEST_F(CaptureMetadataTest, TextIsCutAndReadAsLatinWhereItIsNotUtf8)
{
    const CaptureMetadata found = read({text(0x010f, "Caf\xe9"), text(0x0110, "Caf\xc3\xa9")}, {});
    EXPECT_EQ(found.make, u"Café"_s);
    EXPECT_EQ(found.model, u"Café"_s);
    EXPECT_EQ(read({text(0x010f, QByteArray("ab\0cd", 5))}, {}).make, u"ab"_s);
    const QByteArray long1 = exifBlock({text(0x010f, QByteArray(1'000'000, 'x'))});
    EXPECT_EQ(readCaptureMetadata(written(path(u"a.tif"_s), long1)).make, QString(1000, u'x'));
}

TEST_F(CaptureMetadataTest, FilesWithoutAnyGiveAnEmptyRecord)
{
    for (const QByteArray &bytes :
         {QByteArray(), QByteArray("nothing"), jpeg(texture(QSize(8, 8))),
          withExif(jpeg(texture(QSize(8, 8))), QByteArray("II*\0\xff\xff\xff\xff", 8)),
          QByteArray("\0\0\0\x14"
                     "ftypqt  \0\0\0\0qt  ",
                     20)}) {
        const CaptureMetadata found = readCaptureMetadata(written(path(u"a"_s), bytes));
        EXPECT_TRUE(found.make.isEmpty() && found.model.isEmpty() && found.originalDate.isEmpty());
        EXPECT_FALSE(found.focalLengthMm || found.fNumber || found.exposureSeconds || found.iso);
    }
    EXPECT_TRUE(readCaptureMetadata(path(u"absent"_s)).make.isEmpty());
}

} // namespace
} // namespace tarnovel
