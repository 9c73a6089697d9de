#include <cmath>
#include <cstdlib>

#include <gtest/gtest.h>

#include <QColorSpace>
#include <QTemporaryDir>
#include <QtEndian>

#include "codecs/VipsRuntime.h"
#include "decoding/Fixtures.h"
#include "decoding/HeifColor.h"
#include "decoding/TiffDirectory.h"
#include "imaging/ImageEncoder.h"
#include "imaging/ImageError.h"
#include "imaging/SrgbProfile.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

using namespace test;

std::string text(QRgb pixel)
{
    return std::to_string(qRed(pixel)) + ' ' + std::to_string(qGreen(pixel)) + ' ' +
           std::to_string(qBlue(pixel));
}

bool near(QRgb one, QRgb other, int tolerance)
{
    return std::abs(qRed(one) - qRed(other)) <= tolerance &&
           std::abs(qGreen(one) - qGreen(other)) <= tolerance &&
           std::abs(qBlue(one) - qBlue(other)) <= tolerance;
}

QImage flat(QRgb color, QSize size = {64, 64})
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

QByteArray little(quint32 value, int size)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i) {
        bytes.append(static_cast<char>(quint64(value) >> (8 * i) & 0xffU));
    }
    return bytes;
}

/// A field whose value stands in the directory.
QByteArray field(quint32 tag, quint32 type, quint32 count, const QByteArray &value)
{
    return little(tag, 2) + little(type, 2) + little(count, 4) + value.leftJustified(4, '\0', true);
}

QByteArray directory(const QList<QByteArray> &fields, quint32 next = 0)
{
    return little(static_cast<quint32>(fields.size()), 2) + fields.join() + little(next, 4);
}

/// A grey profile whose tones are a pure power.
QByteArray greyProfile(double gamma)
{
    QByteArray profile(128, '\0');
    const auto big = [](quint32 value, int size) {
        QByteArray bytes;
        for (int i = size - 1; i >= 0; --i) {
            bytes.append(static_cast<char>(value >> (8 * i) & 0xffU));
        }
        return bytes;
    };
    profile.replace(8, 4, QByteArray("\x02\x10\0\0", 4));
    profile.replace(12, 12, "mntrGRAYXYZ ");
    profile.replace(36, 4, "acsp");
    profile.replace(68, 12, big(0xf6d6, 4) + big(0x10000, 4) + big(0xd32d, 4));
    const QByteArray description = QByteArray("desc\0\0\0\0", 8) + big(2, 4) + QByteArray("g\0", 2) +
                                   QByteArray(79, '\0') + QByteArray(3, '\0');
    const QByteArray white = QByteArray("XYZ \0\0\0\0", 8) + profile.mid(68, 12);
    const QByteArray curve = QByteArray("curv\0\0\0\0", 8) + big(1, 4) +
                             big(static_cast<quint32>(std::lround(gamma * 256)), 2) + QByteArray(2, '\0');
    quint32 at = 128 + 4 + 3 * 12;
    QByteArray table = big(3, 4);
    for (const auto &[name, content] : {std::pair("desc", description), {"wtpt", white}, {"kTRC", curve}}) {
        table += QByteArray(name, 4) + big(at, 4) + big(static_cast<quint32>(content.size()), 4);
        at += static_cast<quint32>(content.size());
    }
    profile += table + description + white + curve;
    profile.replace(0, 4, big(static_cast<quint32>(profile.size()), 4));
    return profile;
}

class SourceColors : public testing::Test {
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QRgb decoded(const QString &name) const { return decodeImage(path(name), 40).pixel(5, 5); }

private:
    QTemporaryDir m_folder;
};

TEST_F(SourceColors, GreyPhotosGetTheTonesOfTheirProfile)
{
    // (100 ÷ 255) to the power 1.4 is 0.2697 of the light; sRGB writes it as 1.055 · 0.2697^(1 ÷ 2.4) −
    // 0.055.
    const int expected = 142;
    const QByteArray segment = QByteArray("ICC_PROFILE\0\x01\x01", 14) + greyProfile(1.4);
    JpegOptions grey{100};
    grey.grey = true;
    written(path(u"grey.jpg"_s), withSegment(jpeg(flat(qRgb(100, 100, 100)), grey), 0xe2, segment));
    EXPECT_TRUE(near(decoded(u"grey.jpg"_s), qRgb(expected, expected, expected), 1))
        << text(decoded(u"grey.jpg"_s));
    // A grey profile in a coloured file means nothing.
    written(path(u"odd.jpg"_s), withSegment(jpeg(flat(qRgb(180, 100, 60)), {100}), 0xe2, segment));
    EXPECT_TRUE(near(decoded(u"odd.jpg"_s), qRgb(180, 100, 60), 2)) << text(decoded(u"odd.jpg"_s));
}

/// What cameras write for Adobe RGB: the colour space left open, and the rule in a directory of its own.
QByteArray cameraExif(quint32 colorSpace, const QByteArray &rule)
{
    const QByteArray head = QByteArray("II*\0", 4) + little(8, 4);
    const quint32 photoAt = 8 + 2 + 12 + 4;
    const quint32 rulesAt = photoAt + 2 + 2 * 12 + 4;
    return head + directory({field(0x8769, 4, 1, little(photoAt, 4))}) +
           directory({field(0xA001, 3, 1, little(colorSpace, 2)), field(0xA005, 4, 1, little(rulesAt, 4))}) +
           directory({field(1, 2, 4, rule)});
}

TEST_F(SourceColors, AdobeRgbIsKnownByTheCamerasRule)
{
    // Worked out from the primaries and curves of both spaces.
    const QRgb stored = qRgb(120, 160, 90);
    const QRgb asSrgb = qRgb(100, 161, 84);
    const QByteArray file = jpeg(flat(stored), {100});
    written(path(u"adobe.jpg"_s), withExif(file, cameraExif(65535, QByteArray("R03\0", 4))));
    EXPECT_TRUE(near(decoded(u"adobe.jpg"_s), asSrgb, 3)) << text(decoded(u"adobe.jpg"_s));
    written(path(u"srgb.jpg"_s), withExif(file, cameraExif(1, QByteArray("R98\0", 4))));
    EXPECT_TRUE(near(decoded(u"srgb.jpg"_s), stored, 2)) << text(decoded(u"srgb.jpg"_s));
    written(path(u"open.jpg"_s), withExif(file, cameraExif(65535, QByteArray("R98\0", 4))));
    EXPECT_TRUE(near(decoded(u"open.jpg"_s), stored, 2)) << text(decoded(u"open.jpg"_s));
    // A profile says more than the rule.
    const QByteArray profile = QByteArray("ICC_PROFILE\0\x01\x01", 14) + srgbProfile();
    written(path(u"both.jpg"_s),
            withSegment(withExif(file, cameraExif(65535, QByteArray("R03\0", 4))), 0xe2, profile));
    EXPECT_TRUE(near(decoded(u"both.jpg"_s), stored, 2)) << text(decoded(u"both.jpg"_s));
    for (qsizetype cut = 0; cut < cameraExif(65535, "R03").size(); ++cut) {
        saysAdobeRgb(cameraExif(65535, QByteArray("R03\0", 4)).left(cut)); // reads nothing past the end
    }
}

TEST_F(SourceColors, TheBlackestInkIsBlack)
{
    const auto saved = [this](int level, const QString &name) {
        ensureVips();
        QByteArray inks(64 * 64 * 4, static_cast<char>(level));
        const VipsImagePtr image(vips_image_new_from_memory(
            inks.constData(), static_cast<size_t>(inks.size()), 64, 64, 4, VIPS_FORMAT_UCHAR));
        image->Type = VIPS_INTERPRETATION_CMYK;
        ASSERT_EQ(vips_image_write_to_file(image.get(), path(name).toUtf8().constData(),
                                           static_cast<void *>(nullptr)),
                  0);
    };
    for (const QString &name : {u"ink.tif"_s, u"ink.jpg"_s}) {
        saved(255, name);
        EXPECT_LE(qGray(decoded(name)), 6) << name.toStdString() << ' ' << text(decoded(name));
        saved(0, name);
        EXPECT_GE(qGray(decoded(name)), 250) << name.toStdString() << ' ' << text(decoded(name));
    }
}

TEST_F(SourceColors, SixteenBitsKeepTheirStepsThroughTheProfile)
{
    // Linear light: a step of one in 65536 near black is many in eight bits, and all were one step there.
    const QByteArray profile = QColorSpace(QColorSpace::SRgbLinear).iccProfile();
    ensureVips();
    QList<quint16> samples;
    for (int i = 0; i < 64 * 64; ++i) {
        const auto level = static_cast<quint16>(i % 64 * 8); // 0…504: all below two of 255
        samples << level << level << level;
    }
    const VipsImagePtr image(vips_image_new_from_memory(
        samples.constData(), static_cast<size_t>(samples.size()) * 2, 64, 64, 3, VIPS_FORMAT_USHORT));
    image->Type = VIPS_INTERPRETATION_RGB16;
    vips_image_set_blob_copy(image.get(), VIPS_META_ICC_NAME, profile.constData(),
                             static_cast<size_t>(profile.size()));
    for (const QString &name : {u"deep.png"_s, u"deep.tif"_s}) {
        ASSERT_EQ(vips_image_write_to_file(image.get(), path(name).toUtf8().constData(),
                                           static_cast<void *>(nullptr)),
                  0);
        const QImage made = decodeImage(path(name), 64);
        ASSERT_EQ(made.format(), QImage::Format_RGB32);
        for (const int x : {8, 20, 40, 63}) {
            const double light = x * 8 / 65535.0;
            const double level =
                255 * (light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055);
            EXPECT_NEAR(qGreen(made.pixel(x, 30)), level, 1) << x << ' ' << name.toStdString();
        }
    }
}

/// A HEIC file whose statement of bits a channel gives way to one of sRGB in code points. It is three bytes
/// longer; a reference behind it makes room, so that nothing else moves.
QByteArray withCodePoints(QByteArray heic)
{
    const auto grow = [&heic](const char *box, int by) {
        const qsizetype at = heic.indexOf(box) - 4;
        heic[at + 3] = static_cast<char>(heic[at + 3] + by);
    };
    const qsizetype bits = heic.indexOf("pixi") - 4;
    const qsizetype reference = heic.indexOf("iref") - 4;
    if (bits < 0 || reference < bits || heic[bits + 3] != 16) {
        return {};
    }
    grow("ipco", 3);
    grow("iprp", 3);
    grow("iref", -3);
    heic.replace(heic.indexOf("iref"), 4, "free");
    heic.remove(heic.indexOf("free") + 4, 3);
    heic.replace(bits, 16,
                 QByteArray::fromHex("00000013") + "colrnclx" + QByteArray::fromHex("0001000d000680"));
    return heic;
}

TEST_F(SourceColors, PicturesOfPhonesAreKnownByTheirCodePoints)
{
    // 200 : 100 : 50 of Display P3, by its primaries; the curve is that of sRGB.
    const QRgb asSrgb = qRgb(215, 93, 31);
    const QRgb asStored = qRgb(200, 100, 50);
    for (const QString &name : {u"a.avif"_s, u"a.heic"_s}) {
        const std::string called = name.toStdString();
        save(flat(asStored), path(name), name == u"a.avif"_s ? u"[Q=100,lossless]"_s : u"[Q=100]"_s);
        QByteArray file = contents(path(name));
        if (!file.contains("nclx")) {
            file = withCodePoints(file);
            written(path(name), file);
        }
        EXPECT_TRUE(near(decoded(name), asStored, 3)) << called << text(decoded(name));
        const qsizetype at = file.indexOf("nclx");
        ASSERT_GT(at, 0) << called;
        file[at + 5] = 12; // the primaries of Display P3
        file[at + 7] = 13; // the curve of sRGB
        written(path(name), file);
        EXPECT_TRUE(near(decoded(name), asSrgb, 4)) << called << text(decoded(name));
        QByteArray bright = file;
        bright[at + 7] = 16; // a curve for brighter screens, which is left alone
        written(path(name), bright);
        EXPECT_TRUE(near(decoded(name), asStored, 3)) << called << text(decoded(name));
        for (qsizetype cut = 30; cut < file.size() / 2; cut += 7) {
            written(path(name), file.left(cut));
            EXPECT_THROW(decodeImage(path(name), 20), ImageError);
        }
        // A description that says that it goes on to the end of the file, or far beyond it.
        const qsizetype meta = file.indexOf("meta") - 4;
        for (const char *length : {"00000000", "00000008", "0000000b", "00000001", "ffffffff"}) {
            QByteArray changed = file;
            changed.replace(meta, 4, QByteArray::fromHex(length));
            readCodedColor(ImageFile(RegularFile(written(path(name), changed))));
        }
    }
}

TEST_F(SourceColors, ExportsSayThatTheyAreSrgb)
{
    EXPECT_LE(srgbProfile().size(), 600);
    const QColorSpace space = QColorSpace::fromIccProfile(srgbProfile());
    ASSERT_TRUE(space.isValid());
    EXPECT_EQ(space.primaries(), QColorSpace::Primaries::SRgb);
    EXPECT_EQ(space.transferFunction(), QColorSpace::TransferFunction::SRgb);

    const QByteArray file = JpegEncoder(texture({90, 70})).encode(0.8);
    const qsizetype at = file.indexOf("ICC_PROFILE");
    ASSERT_EQ(at, 24); // behind the start marker, 18 bytes of JFIF and the segment's own four
    EXPECT_EQ(file.mid(at + 14, srgbProfile().size()), srgbProfile());
    EXPECT_EQ(qFromBigEndian<quint16>(file.constData() + 22), srgbProfile().size() + 16);
    EXPECT_GT(psnr(decodeImage(written(path(u"a.jpg"_s), file), 100), texture({90, 70})), 30);
    // The profile counts into a size limit.
    const JpegSearchResult found = searchJpegQuality(texture({90, 70}), file.size());
    ASSERT_TRUE(found.bytes);
    EXPECT_LE(found.bytes->size(), file.size());

    const QByteArray png = encodePng(texture({90, 70}));
    const qsizetype chunk = png.indexOf("sRGB");
    ASSERT_GT(chunk, 0);
    EXPECT_EQ(png.at(chunk + 4), 0);
    EXPECT_LT(chunk, png.indexOf("IDAT"));
}

TEST_F(SourceColors, DirectoriesThatNeverEndAreGivenUp)
{
    // Each of 64 pages is as long as can be and names a hundred directories below it: the same long one.
    QList<QByteArray> fields(4095, field(257, 4, 1, little(1, 4)));
    fields.append(field(330, 4, 100, little(8 + 2 + 4096 * 12 + 4, 4)));
    const QByteArray places = little(8, 4).repeated(100);
    const QByteArray endless = QByteArray("II*\0", 4) + little(8, 4) + directory(fields, 8) + places;
    qint64 bytesRead = 0;
    const auto page = [&bytesRead](const QByteArray &bytes) {
        return findTiffPicture(TiffDirectories([&](qint64 at, qint64 count) {
                   EXPECT_GE(at, 0);
                   EXPECT_LE(at, qint64(1) << 61);
                   const QByteArray read = bytes.mid(at, count);
                   bytesRead += read.size();
                   return read;
               }))
            .page;
    };
    page(endless);
    EXPECT_LT(bytesRead, 2'000'000);
    // Places at the end of what numbers can say.
    for (const char *place :
         {"ffffffffffffffff", "ffffffffffffff7f", "0000000000000080", "fffffffffffffe0f"}) {
        const QByteArray far = QByteArray::fromHex(place);
        page(QByteArray("II+\0\x08\0\0\0", 8) + far);
        const QByteArray wide = little(330, 2) + little(16, 2) + far + far;
        page(QByteArray("II+\0\x08\0\0\0", 8) + little(16, 8) + little(1, 8) + wide + far);
    }
}

TEST_F(SourceColors, APreviewIsNeverTakenForThePicture)
{
    const auto file = [](const QList<QByteArray> &directories) {
        return QByteArray("II*\0", 4) + little(8, 4) + directories.join();
    };
    const auto size = [](quint32 width, quint32 height) {
        return QList<QByteArray>{field(256, 4, 1, little(width, 4)), field(257, 4, 1, little(height, 4))};
    };
    const auto page = [](const QByteArray &bytes) {
        return findTiffPicture(
                   TiffDirectories([&bytes](qint64 at, qint64 count) { return bytes.mid(at, count); }))
            .page;
    };
    const QByteArray reduced = field(254, 4, 1, little(1, 4));
    const quint32 three = 8 + 2 + 3 * 12 + 4; // behind a first directory of three fields
    EXPECT_EQ(page(file({directory(size(600, 400))})), 0);
    EXPECT_EQ(page(file({directory(QList<QByteArray>{reduced} + size(160, 120))})), std::nullopt);
    EXPECT_EQ(page(file({directory(QList<QByteArray>{reduced} + size(160, 120), three),
                         directory(size(600, 400))})),
              1);
    // A raw file: its first directory is a thumbnail that does not say so, the picture stands below it.
    EXPECT_EQ(page(file({directory(size(160, 120) << field(330, 4, 1, little(three, 4))),
                         directory(size(6000, 4000))})),
              std::nullopt);
    // Smaller versions below a picture are no matter.
    EXPECT_EQ(page(file({directory(size(600, 400) << field(330, 4, 1, little(three, 4))),
                         directory(size(60, 40))})),
              0);

    save(flat(qRgb(10, 200, 30)), path(u"whole.tif"_s));
    const QByteArray whole = contents(path(u"whole.tif"_s));
    EXPECT_TRUE(near(decoded(u"whole.tif"_s), qRgb(10, 200, 30), 1));
    // The field of the resolution's unit, which says nothing here, as one of the kind of picture.
    const qsizetype at = whole.indexOf(QByteArray("\x28\x01\x03\0\x01\0\0\0", 8));
    ASSERT_GT(at, 0);
    QByteArray marked = whole;
    marked[at] = '\xfe';
    marked[at + 1] = 0;
    marked[at + 8] = 1;
    written(path(u"marked.tif"_s), marked);
    try {
        decodeImage(path(u"marked.tif"_s), 40);
        ADD_FAILURE() << "framed from a thumbnail";
    } catch (const ImageError &error) {
        EXPECT_EQ(error.cause(), ImageError::Cause::SmallPreview);
    }
    EXPECT_THROW(readImageHeader(path(u"marked.tif"_s)), ImageError);
}

} // namespace
} // namespace tarnovel
