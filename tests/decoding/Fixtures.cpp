#include "decoding/Fixtures.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include <jpeglib.h>

#include <QFile>
#include <QtEndian>

#include "codecs/Codecs.h"
#include "codecs/VipsRuntime.h"
#include "imaging/ImageError.h"

// The HEVC encoder, which only these tests run, keeps a few kilobytes for ever.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libx265";
}

namespace tarnovel::test {
namespace {

[[maybe_unused]] const bool hasCodecs = [] {
    useCodecs();
    return true;
}();

void append16(QByteArray &bytes, quint16 value)
{
    const quint16 little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char *>(&little), 2);
}

void append32(QByteArray &bytes, quint32 value)
{
    const quint32 little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char *>(&little), 4);
}

void appendDirectory(QByteArray &block, const QList<ExifEntry> &entries)
{
    qsizetype data = block.size() + 2 + entries.size() * 12 + 4;
    QByteArray values;
    append16(block, static_cast<quint16>(entries.size()));
    for (const ExifEntry &entry : entries) {
        append16(block, entry.tag);
        append16(block, entry.type);
        append32(block, entry.count);
        if (entry.value.size() <= 4) {
            block.append(entry.value.leftJustified(4, '\0'));
        } else {
            append32(block, static_cast<quint32>(data + values.size()));
            values.append(entry.value.size() % 2 == 0 ? entry.value : entry.value + '\0');
        }
    }
    append32(block, 0);
    block.append(values);
}

VipsImagePtr own(int failed, VipsImage *const &made)
{
    if (failed != 0) {
        throw std::runtime_error(vips_error_buffer());
    }
    return VipsImagePtr(made);
}

} // namespace

QByteArray jpeg(const QImage &image, const JpegOptions &options)
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char *bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = static_cast<JDIMENSION>(image.width());
    info.image_height = static_cast<JDIMENSION>(image.height());
    info.input_components = 4;
    info.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&info);
    if (options.grey) {
        jpeg_set_colorspace(&info, JCS_GRAYSCALE);
    } else if (options.storedAsRgb) {
        jpeg_set_colorspace(&info, JCS_RGB);
    }
    jpeg_set_quality(&info, options.quality, TRUE);
    info.comp_info[0].h_samp_factor = options.horizontal;
    info.comp_info[0].v_samp_factor = options.vertical;
    if (options.progressive) {
        jpeg_simple_progression(&info);
    }
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = const_cast<uchar *>(image.constScanLine(static_cast<int>(info.next_scanline)));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    QByteArray file(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    std::free(bytes);
    return file;
}

QByteArray withSegment(const QByteArray &file, int marker, const QByteArray &content)
{
    QByteArray segment("\xff");
    segment.append(static_cast<char>(marker));
    const quint16 length = qToBigEndian(static_cast<quint16>(content.size() + 2));
    segment.append(reinterpret_cast<const char *>(&length), 2);
    return file.left(2) + segment + content + file.mid(2);
}

QByteArray exifBlock(QList<ExifEntry> first, const QList<ExifEntry> &photo)
{
    constexpr quint16 photoDirectory = 0x8769;
    first.append({photoDirectory, 4, 1, QByteArray(4, '\0')});
    const auto assemble = [&] {
        QByteArray block("II*\0\x08\0\0\0", 8);
        appendDirectory(block, first);
        return block;
    };
    QByteArray place;
    append32(place, static_cast<quint32>(assemble().size()));
    first.last().value = place;
    QByteArray block = assemble();
    appendDirectory(block, photo);
    return block;
}

QByteArray orientationBlock(int orientation)
{
    QByteArray value;
    append16(value, static_cast<quint16>(orientation));
    return exifBlock({{0x0112, 3, 1, value}});
}

QByteArray withExif(const QByteArray &jpegFile, const QByteArray &block)
{
    return withSegment(jpegFile, 0xe1, QByteArray("Exif\0\0", 6) + block);
}

QByteArray rawFile(const QByteArray &jpegFile)
{
    QByteArray block("IIU\0\x08\0\0\0", 8);
    appendDirectory(block, {{0x2e, 7, static_cast<quint32>(jpegFile.size()), jpegFile}});
    return block;
}

QByteArray withChunk(const QByteArray &pngFile, const QByteArray &type, const QByteArray &content)
{
    const auto number = [](quint32 value) {
        const quint32 big = qToBigEndian(value);
        return QByteArray(reinterpret_cast<const char *>(&big), 4);
    };
    const QByteArray checked = type + content;
    quint32 crc = 0xffffffff;
    for (const char byte : checked) {
        crc ^= static_cast<uchar>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ (crc & 1 ? 0xedb88320 : 0);
        }
    }
    constexpr int headerEnd = 33;
    return pngFile.left(headerEnd) + number(static_cast<quint32>(content.size())) + checked + number(~crc) +
           pngFile.mid(headerEnd);
}

void save(const QImage &image, const QString &path, const QString &brackets, const SaveOptions &options)
{
    ensureVips();
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888);
    VipsImage *made = nullptr;
    const auto end = static_cast<void *>(nullptr);
    VipsImagePtr picture(vips_image_new_from_memory_copy(rgba.constBits(),
                                                         static_cast<size_t>(rgba.sizeInBytes()),
                                                         rgba.width(), rgba.height(), 4, VIPS_FORMAT_UCHAR));
    picture->Type = VIPS_INTERPRETATION_sRGB;
    if (options.bands % 2 == 1) {
        picture = own(vips_extract_band(picture.get(), &made, 0, "n", 3, end), made);
    }
    if (options.cmyk) {
        picture = own(vips_colourspace(picture.get(), &made, VIPS_INTERPRETATION_CMYK, end), made);
    } else if (options.bands < 3) {
        picture = own(vips_colourspace(picture.get(), &made, VIPS_INTERPRETATION_B_W, end), made);
    }
    if (options.depth == 16) {
        const VipsInterpretation wide =
            options.bands < 3 ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_RGB16;
        picture = own(vips_colourspace(picture.get(), &made, wide, end), made);
    }
    if (options.orientation != 1) {
        vips_image_set_int(picture.get(), VIPS_META_ORIENTATION, options.orientation);
    }
    if (!options.exif.isEmpty()) {
        const QByteArray block = QByteArray("Exif\0\0", 6) + options.exif;
        vips_image_set_blob_copy(picture.get(), VIPS_META_EXIF_NAME, block.constData(),
                                 static_cast<size_t>(block.size()));
    }
    const QByteArray name = QFile::encodeName(path) + brackets.toLatin1();
    if (vips_image_write_to_file(picture.get(), name.constData(), end) != 0) {
        throw std::runtime_error(vips_error_buffer());
    }
}

QImage decodeImage(const QString &path, int maxPixel, const std::stop_token &stop)
{
    PhotoFile photo{RegularFile(path)};
    return photo.decode({PicturePart::whole(photo.header().uprightSize(), maxPixel)}, stop).first();
}

QImage decodeImageRegion(const QString &path, const QRectF &region, QSize size, const std::stop_token &stop)
{
    return PhotoFile(RegularFile(path)).decode({{region, size}}, stop).first();
}

ImageHeader readImageHeader(const QString &path)
{
    return PhotoFile(RegularFile(path)).header();
}

CaptureMetadata readCaptureMetadata(const QString &path)
{
    try {
        return PhotoFile(RegularFile(path)).metadata();
    } catch (const ImageError &) {
        return {};
    }
}

QString written(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        throw std::runtime_error("the test's own file cannot be written");
    }
    return path;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace tarnovel::test
