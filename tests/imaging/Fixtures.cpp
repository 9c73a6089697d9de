#include "imaging/Fixtures.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include <jpeglib.h>

#include <QFile>
#include <QtEndian>

#include "imaging/VipsRuntime.h"

// The HEVC encoder, which only these tests run, keeps a few kilobytes for ever.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libx265";
}

namespace tarnovel::test {
namespace {

double lanczos(double x)
{
    const double at = std::abs(x);
    if (at < 1e-9) {
        return 1;
    }
    return at >= 3 ? 0 : 3 * std::sin(M_PI * at) * std::sin(M_PI * at / 3) / (M_PI * M_PI * at * at);
}

/// Resamples rows of `length` samples of four channels, `stride` doubles apart, along one axis.
std::vector<double> resampleAxis(const std::vector<double> &from, int lines, int length, double start,
                                 double span, int target)
{
    std::vector<double> to(static_cast<size_t>(lines) * static_cast<size_t>(target) * 4);
    const double step = span / target;
    const double wide = std::max(step, 1.0);
    for (int i = 0; i < target; ++i) {
        const double centre = start + (i + 0.5) * step;
        const int first = static_cast<int>(std::floor(centre - 3 * wide));
        const int last = static_cast<int>(std::ceil(centre + 3 * wide));
        std::vector<double> weights;
        double sum = 0;
        for (int k = first; k <= last; ++k) {
            weights.push_back(lanczos((k + 0.5 - centre) / wide));
            sum += weights.back();
        }
        for (int line = 0; line < lines; ++line) {
            for (int channel = 0; channel < 4; ++channel) {
                double value = 0;
                for (int k = first; k <= last; ++k) {
                    const int at = std::clamp(k, 0, length - 1);
                    value += weights[static_cast<size_t>(k - first)] *
                             from[static_cast<size_t>((line * length + at) * 4 + channel)];
                }
                to[static_cast<size_t>((i * lines + line) * 4 + channel)] = value / sum;
            }
        }
    }
    return to; // transposed: the next pass runs along the other axis
}

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

QImage texture(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const auto wave = [&](double dx, double dy, double phase) {
                return std::sin(dx * x + dy * y + phase);
            };
            const double light = 128 + 50 * wave(0.02, 0.031, 0) + 25 * wave(0.21, -0.13, 1) +
                                 18 * wave(0.7 + x * 0.0007, 0.4, 2) + 12 * wave(0.3, 1.3, 0.5);
            const auto level = [&](double offset) {
                return static_cast<int>(std::clamp(std::lround(light + offset), 0L, 255L));
            };
            image.setPixel(x, y, qRgb(level(20 * wave(0.05, 0, 0)), level(0), level(25 * wave(0, 0.06, 1))));
        }
    }
    return image;
}

QImage quarters(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const bool right = x * 2 >= size.width();
            const bool low = y * 2 >= size.height();
            image.setPixel(x, y, low ? (right ? 0xffffff00 : 0xff0000ff) : (right ? 0xff00ff00 : 0xffff0000));
        }
    }
    return image;
}

QImage lanczosReference(const QImage &image, const QRectF &region, QSize size)
{
    std::vector<double> samples;
    samples.reserve(static_cast<size_t>(image.width()) * static_cast<size_t>(image.height()) * 4);
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            samples.insert(samples.end(), {double(qRed(row[x])), double(qGreen(row[x])),
                                           double(qBlue(row[x])), double(qAlpha(row[x]))});
        }
    }
    samples = resampleAxis(samples, image.height(), image.width(), region.x(), region.width(), size.width());
    samples = resampleAxis(samples, size.width(), image.height(), region.y(), region.height(), size.height());
    QImage result(size, image.format());
    size_t at = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x, at += 4) {
            const auto level = [&](size_t channel) {
                return static_cast<int>(std::clamp(std::lround(samples[at + channel]), 0L, 255L));
            };
            reinterpret_cast<QRgb *>(result.scanLine(y))[x] = qRgba(level(0), level(1), level(2), level(3));
        }
    }
    return result;
}

double psnr(const QImage &one, const QImage &other)
{
    return psnr(one, other, one.rect());
}

double psnr(const QImage &one, const QImage &other, const QRect &area)
{
    if (one.size() != other.size() || one.isNull() || one.depth() != 32 || other.depth() != 32) {
        return 0;
    }
    const int channels = one.hasAlphaChannel() && other.hasAlphaChannel() ? 4 : 3;
    double sum = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            for (int channel = 0; channel < channels; ++channel) {
                const double difference = double(one.constScanLine(y)[x * 4 + channel]) -
                                          double(other.constScanLine(y)[x * 4 + channel]);
                sum += difference * difference;
            }
        }
    }
    const double mean = sum / (double(area.width()) * area.height() * channels);
    return mean == 0 ? 99 : 10 * std::log10(255 * 255 / mean);
}

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
