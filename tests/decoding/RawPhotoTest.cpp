// Raw files in the layouts that cameras write, as far as headers and previews go: what the sensor saw is
// zeros.

#include <functional>

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <QtEndian>

#include "decoding/Fixtures.h"
#include "imaging/ImageError.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

using namespace test;

constexpr quint16 ascii = 2;
constexpr quint16 number16 = 3;
constexpr quint16 number32 = 4;
constexpr quint16 undefined = 7;
constexpr quint16 directoryPlace = 13;
constexpr quint16 orientationTag = 0x112;

QByteArray little(quint32 value, int size)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i) {
        bytes.append(static_cast<char>(quint64(value) >> (8 * i) & 0xffU));
    }
    return bytes;
}

QByteArray big(quint32 value, int size)
{
    QByteArray bytes = little(value, size);
    std::ranges::reverse(bytes);
    return bytes;
}

ExifEntry text(quint16 tag, const QByteArray &value)
{
    return {tag, ascii, static_cast<quint32>(value.size() + 1), value + '\0'};
}

ExifEntry number(quint16 tag, quint32 value)
{
    return {tag, number32, 1, little(value, 4)};
}

ExifEntry numbers(quint16 tag, std::initializer_list<quint32> values)
{
    QByteArray bytes;
    for (const quint32 value : values) {
        bytes += little(value, 4);
    }
    return {tag, number32, static_cast<quint32>(values.size()), bytes};
}

ExifEntry turned()
{
    return {orientationTag, number16, 1, little(6, 2)};
}

/// A file of TIFF directories; what a directory points at comes before it.
class Layout {
public:
    /// Places count from `zero`.
    explicit Layout(QByteArray head, quint32 zero = 0) : m_bytes(std::move(head)), m_zero(zero) {}

    quint32 add(const QByteArray &bytes)
    {
        m_bytes.append(m_bytes.size() % 2, '\0');
        const auto at = static_cast<quint32>(m_bytes.size());
        m_bytes += bytes;
        return at - m_zero;
    }

    quint32 directory(const QList<ExifEntry> &entries)
    {
        QByteArray bytes = little(static_cast<quint32>(entries.size()), 2);
        for (const ExifEntry &entry : entries) {
            const QByteArray value = entry.value.size() <= 4 ? entry.value : little(add(entry.value), 4);
            bytes += little(entry.tag, 2) + little(entry.type, 2) + little(entry.count, 4) +
                     value.leftJustified(4, '\0');
        }
        return add(bytes + little(0, 4));
    }

    QByteArray finished(quint32 first) { return m_bytes.replace(4, 4, little(first, 4)); }

private:
    QByteArray m_bytes;
    quint32 m_zero;
};

const QByteArray tiffHead("II*\0\0\0\0\0", 8);

/// The directory of what the sensor saw, and the one of the exposure.
quint32 sensor(Layout &file)
{
    return file.directory({number(0xfe, 0), number(0x100, 6000), number(0x101, 4000), number(0x103, 34713),
                           number(0x111, file.add(QByteArray(64, '\0'))), number(0x117, 64)});
}

quint32 exposure(Layout &file)
{
    return file.directory(
        {{0x829d, 5, 1, little(28, 4) + little(10, 4)}, {0x8827, number16, 1, little(400, 2)}});
}

QList<ExifEntry> camera(const QByteArray &make, const QByteArray &model)
{
    return {text(0x10f, make), text(0x110, model), turned()};
}

QByteArray nef(const QByteArray &picture, const QByteArray &small)
{
    Layout file(tiffHead);
    const quint32 large = file.directory({number(0xfe, 1), number(0x103, 6), number(0x201, file.add(picture)),
                                          number(0x202, static_cast<quint32>(picture.size()))});
    const quint32 thumbnail =
        file.directory({number(0xfe, 1), number(0x103, 6), number(0x201, file.add(small)),
                        number(0x202, static_cast<quint32>(small.size()))});
    QList<ExifEntry> first{number(0xfe, 1), number(0x100, 160), number(0x101, 120)};
    first += camera("NIKON CORPORATION", "NIKON D750");
    first += {numbers(0x14a, {thumbnail, sensor(file), large}), number(0x8769, exposure(file))};
    return file.finished(file.directory(first));
}

QByteArray arw(const QByteArray &picture, const QByteArray &)
{
    Layout file(tiffHead);
    QList<ExifEntry> first{number(0xfe, 1)};
    first += camera("SONY", "ILCE-7M3");
    first += {numbers(0x14a, {sensor(file)}), number(0x201, file.add(picture)),
              number(0x202, static_cast<quint32>(picture.size())), number(0x8769, exposure(file))};
    return file.finished(file.directory(first));
}

QByteArray dng(const QByteArray &picture, const QByteArray &)
{
    Layout file(tiffHead);
    const quint32 large = file.directory({number(0xfe, 1),
                                          number(0x100, 1700),
                                          number(0x101, 1134),
                                          {0x102, number16, 3, little(8, 2) + little(8, 2) + little(8, 2)},
                                          number(0x103, 7),
                                          number(0x106, 6),
                                          number(0x111, file.add(picture)),
                                          number(0x115, 3),
                                          number(0x116, 1134),
                                          number(0x117, static_cast<quint32>(picture.size()))});
    QList<ExifEntry> first{number(0xfe, 1), number(0x100, 160), number(0x101, 120)};
    first += camera("LEICA CAMERA AG", "LEICA Q2");
    first += {numbers(0x14a, {sensor(file), large}),
              number(0x8769, exposure(file)),
              {0xc612, 1, 4, QByteArray("\1\4\0\0", 4)}};
    return file.finished(file.directory(first));
}

QByteArray cr2(const QByteArray &picture, const QByteArray &)
{
    Layout file(tiffHead + QByteArray("CR\2\0\0\0\0\0", 8));
    QList<ExifEntry> first{number(0x100, 1700), number(0x101, 1134), number(0x103, 6)};
    first += text(0x10f, "Canon");
    first += text(0x110, "Canon EOS 6D");
    first += {number(0x111, file.add(picture)), turned(), number(0x117, static_cast<quint32>(picture.size())),
              number(0x8769, exposure(file))};
    return file.finished(file.directory(first));
}

QByteArray orf(const QByteArray &picture, const QByteArray &)
{
    const QByteArray noteHead("OLYMPUS\0II\3\0", 12);
    Layout note(noteHead + QByteArray(60, '\0'));
    const quint32 large = note.add(picture);
    const quint32 settings = note.directory(
        {number(0x100, 1), number(0x101, large), number(0x102, static_cast<quint32>(picture.size()))});
    QByteArray bytes = note.finished(0);
    bytes.replace(0, 12, noteHead);
    // Its directory follows the heading.
    bytes.replace(12, 18,
                  little(1, 2) + little(0x2020, 2) + little(directoryPlace, 2) + little(1, 4) +
                      little(settings, 4) + little(0, 4));
    Layout file(QByteArray("IIRO\0\0\0\0", 8));
    const quint32 photo = file.directory({{0x829d, 5, 1, little(28, 4) + little(10, 4)},
                                          {0x8827, number16, 1, little(400, 2)},
                                          {0x927c, undefined, static_cast<quint32>(bytes.size()), bytes}});
    QList<ExifEntry> first = camera("OLYMPUS CORPORATION", "E-M1MarkII");
    first += number(0x8769, photo);
    return file.finished(file.directory(first));
}

QByteArray cameraBlock(const QByteArray &make, const QByteArray &model)
{
    Layout block(tiffHead);
    QList<ExifEntry> first = camera(make, model);
    first += number(0x8769, exposure(block));
    return block.finished(block.directory(first));
}

QByteArray rw2(const QByteArray &picture, const QByteArray &)
{
    const QByteArray jpeg = withExif(picture, cameraBlock("Panasonic", "DC-G9"));
    Layout file(QByteArray("IIU\0\0\0\0\0", 8));
    return file.finished(
        file.directory({{0x2e, undefined, static_cast<quint32>(jpeg.size()), jpeg}, turned()}));
}

QByteArray raf(const QByteArray &picture, const QByteArray &)
{
    const QByteArray jpeg = withExif(picture, cameraBlock("FUJIFILM", "X-T4"));
    QByteArray file = QByteArray("FUJIFILMCCD-RAW 0201FF159501X-T4").leftJustified(84, '\0');
    constexpr quint32 start = 148;
    const quint32 after = start + static_cast<quint32>(jpeg.size());
    for (const quint32 place : {start, static_cast<quint32>(jpeg.size()), after, 32U, after + 32, 32U}) {
        file += big(place, 4);
    }
    return file.leftJustified(start, '\0') + jpeg + QByteArray(64, '\0');
}

QByteArray box(const QByteArray &type, const QByteArray &content)
{
    return big(static_cast<quint32>(content.size() + 8), 4) + type + content;
}

QByteArray cr3(const QByteArray &picture, const QByteArray &)
{
    const auto uuid = [](const char *id, const QByteArray &content) {
        return box("uuid", QByteArray::fromHex(id) + content);
    };
    const QByteArray moov = box(
        "moov", uuid("85c0b687820f11e08111f4ce462b6a48", box("CMT1", cameraBlock("Canon", "Canon EOS R6"))));
    const QByteArray preview = big(0, 4) + big(1, 2) + big(1700, 2) + big(1134, 2) + big(1, 2) +
                               big(static_cast<quint32>(picture.size()), 4) + picture;
    return box("ftyp", "crx " + big(1, 4) + "crx isom") + moov +
           uuid("eaf42b5e1c984b88b9fbb7dc406e4d16", big(0, 4) + big(1, 4) + box("PRVW", preview)) +
           box("mdat", QByteArray(64, '\0'));
}

class RawPhotoTest : public testing::Test {
protected:
    QString path(const QByteArray &bytes) const { return written(m_folder.filePath(u"raw"_s), bytes); }

    static std::optional<ImageError::Cause> causeOf(const QString &file)
    {
        try {
            decodeImage(file, 400);
            return std::nullopt;
        } catch (const ImageError &error) {
            return error.cause();
        }
    }

    QTemporaryDir m_folder;
    const QImage m_scene = quarters({1700, 1134});
    const QByteArray m_picture = jpeg(m_scene);
    const QByteArray m_small = jpeg(texture({160, 120}));
};

TEST_F(RawPhotoTest, IsThePictureOfTheCameraTurnedAsTheRawFileSays)
{
    struct Row {
        const char *kind;
        std::function<QByteArray(const QByteArray &, const QByteArray &)> write;
        QString model;
    };
    const Row rows[] = {{"NEF", nef, u"NIKON D750"_s}, {"ARW", arw, u"ILCE-7M3"_s},
                        {"DNG", dng, u"LEICA Q2"_s},   {"CR2", cr2, u"Canon EOS 6D"_s},
                        {"ORF", orf, u"E-M1MarkII"_s}, {"RW2", rw2, u"DC-G9"_s},
                        {"RAF", raf, u"X-T4"_s},       {"CR3", cr3, u"Canon EOS R6"_s}};
    const QImage expected =
        decodeImage(written(m_folder.filePath(u"alone"_s), withExif(m_picture, orientationBlock(6))), 400);
    for (const Row &row : rows) {
        SCOPED_TRACE(row.kind);
        const QString file = path(row.write(m_picture, m_small));
        ASSERT_EQ(causeOf(file), std::nullopt);
        EXPECT_EQ(readImageHeader(file).uprightSize(), QSize(1134, 1700));
        EXPECT_EQ(decodeImage(file, 400), expected);
        const CaptureMetadata metadata = readCaptureMetadata(file);
        EXPECT_EQ(metadata.model, row.model);
        EXPECT_EQ(metadata.fNumber, 2.8);
        EXPECT_EQ(metadata.iso, 400);
    }
}

TEST_F(RawPhotoTest, WithSmallPicturesOnlyIsToldApart)
{
    const QByteArray medium = jpeg(texture({1599, 1066}));
    for (const auto &write : {nef, arw, cr2, orf, rw2, raf, cr3}) {
        EXPECT_EQ(causeOf(path(write(medium, m_small))), ImageError::Cause::SmallPreview);
    }
}

TEST_F(RawPhotoTest, LiesAboutPicturesAreSeenThrough)
{
    // Of two pictures the larger by its own header, though it stands where a thumbnail does.
    EXPECT_EQ(readImageHeader(path(nef(m_small, m_picture))).storedSize, QSize(1700, 1134));
    // No JPEG at all; one that ends in the middle.
    EXPECT_EQ(causeOf(path(nef(QByteArray(5000, 'x'), m_small))), ImageError::Cause::SmallPreview);
    EXPECT_EQ(causeOf(path(arw(m_picture.left(m_picture.size() / 2), m_small))), ImageError::Cause::Damaged);
    // A preview that is said to reach beyond the file's end.
    QByteArray beyond = arw(m_picture, m_small);
    const qsizetype length = beyond.indexOf(little(0x202, 2) + little(number32, 2) + little(1, 4));
    ASSERT_GT(length, 0);
    beyond.replace(length + 8, 4, little(0x7fffffff, 4));
    EXPECT_NE(causeOf(path(beyond)), std::nullopt);
}

TEST_F(RawPhotoTest, LoopsAndCutsEndInOneError)
{
    // A directory below that is the first one again.
    QByteArray loop = nef(m_picture, m_small);
    const quint32 first = qFromLittleEndian<quint32>(loop.constData() + 4);
    const qsizetype below = loop.indexOf(little(0x14a, 2) + little(number32, 2), first);
    const quint32 list = qFromLittleEndian<quint32>(loop.constData() + below + 8);
    loop.replace(list, 12, little(first, 4) + little(first, 4) + little(first, 4));
    EXPECT_NE(causeOf(path(loop)), std::nullopt);
    for (const auto &write : {nef, arw, dng, cr2, orf, rw2, raf, cr3}) {
        const QByteArray whole = write(m_picture, m_small);
        for (const qsizetype kept : {qsizetype(20), qsizetype(120), whole.size() / 2, whole.size() - 200}) {
            const QString file = path(whole.left(kept));
            // Whatever is still there, it is a picture or an error of the file; headers alone are no picture.
            const std::optional<ImageError::Cause> cause = causeOf(file);
            EXPECT_TRUE(cause || kept > 120);
        }
    }
}

} // namespace
} // namespace tarnovel
