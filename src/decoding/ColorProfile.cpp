#include "decoding/ColorProfile.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include <QLoggingCategory>

#include "decoding/VipsRuntime.h"

namespace tarnovel {
namespace {

constexpr qsizetype largestProfile = 4 << 20;
constexpr qsizetype headerBytes = 128;

/// A faulty profile in somebody's photo is no matter for standard error.
void muteProfileWarnings()
{
    static std::once_flag once;
    std::call_once(once, [] {
        static QLoggingCategory::CategoryFilter before = nullptr;
        before = QLoggingCategory::installFilter([](QLoggingCategory *category) {
            // Installing runs the filter over every category that exists, before the former one is known.
            if (before != nullptr) {
                before(category);
            }
            if (qstrcmp(category->categoryName(), "qt.gui.icc") == 0) {
                category->setEnabled(QtWarningMsg, false);
            }
        });
    });
}

bool isFor(const char *model, const QByteArray &profile)
{
    return profile.size() >= headerBytes && profile.size() <= largestProfile && profile.mid(16, 4) == model &&
           profile.mid(36, 4) == "acsp";
}

/// Pixels in rows without padding, in a form that the colour library takes; null for a failure.
struct PlainPixels {
    QByteArray bytes;
    QSize size;
    int bands = 3;
    bool deep = false;
    VipsInterpretation kind = VIPS_INTERPRETATION_sRGB;
};

/// The pixels in sRGB, three or four samples each of the same depth; empty for a failure.
QByteArray transformed(const PlainPixels &pixels, const QByteArray &profile)
{
    ensureVips();
    const VipsImagePtr source(vips_image_new_from_memory(
        pixels.bytes.constData(), static_cast<size_t>(pixels.bytes.size()), pixels.size.width(),
        pixels.size.height(), pixels.bands, pixels.deep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR));
    if (!source) {
        vips_error_clear();
        return {};
    }
    source->Type = pixels.kind;
    vips_image_set_blob_copy(source.get(), VIPS_META_ICC_NAME, profile.constData(),
                             static_cast<size_t>(profile.size()));
    VipsImage *made = nullptr;
    if (vips_icc_transform(source.get(), &made, "srgb", "embedded", TRUE, "depth", pixels.deep ? 16 : 8,
                           static_cast<void *>(nullptr)) != 0) {
        vips_error_clear();
        return {};
    }
    const VipsImagePtr converted(made);
    size_t bytes = 0;
    const std::unique_ptr<void, GFree> memory(vips_image_write_to_memory(converted.get(), &bytes));
    if (!memory || converted->Bands != std::max(pixels.bands, 3)) {
        vips_error_clear();
        return {};
    }
    return QByteArray(static_cast<const char *>(memory.get()), static_cast<qsizetype>(bytes));
}

/// For profiles of look-up tables, which Qt does not read.
QImage convertedByTables(const QImage &image, const QByteArray &profile)
{
    const bool alpha = image.hasAlphaChannel();
    PlainPixels pixels;
    pixels.deep = image.depth() == 64;
    pixels.bands = alpha || pixels.deep ? 4 : 3;
    pixels.size = image.size();
    pixels.kind = pixels.deep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
    const QImage straight = image.convertToFormat(pixels.deep ? QImage::Format_RGBA64
                                                  : alpha     ? QImage::Format_RGBA8888
                                                              : QImage::Format_RGB888);
    // The rows of a QImage are padded, which the library does not know.
    const qsizetype rowBytes = qsizetype(image.width()) * straight.depth() / 8;
    pixels.bytes.reserve(rowBytes * straight.height());
    for (int y = 0; y < straight.height(); ++y) {
        pixels.bytes.append(reinterpret_cast<const char *>(straight.constScanLine(y)), rowBytes);
    }
    const QByteArray converted = transformed(pixels, profile);
    if (converted.size() != pixels.bytes.size()) {
        return image;
    }
    const QImage wrapped(reinterpret_cast<const uchar *>(converted.constData()), image.width(),
                         image.height(), rowBytes, straight.format());
    return wrapped.convertToFormat(image.format());
}

/// Grey levels have 256 colours at most: those are converted.
QImage convertedGrey(QImage image, const QByteArray &profile)
{
    constexpr int levels = 256;
    PlainPixels grey;
    grey.bands = 1;
    grey.size = QSize(levels, 1);
    grey.kind = VIPS_INTERPRETATION_B_W;
    for (int level = 0; level < levels; ++level) {
        grey.bytes.append(static_cast<char>(level));
    }
    const QByteArray table = transformed(grey, profile);
    if (table.size() != qsizetype(levels) * 3 || image.depth() != 32 || !image.allGray()) {
        return image;
    }
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const auto *color = reinterpret_cast<const uchar *>(table.constData()) + qBlue(row[x]) * 3;
            row[x] = qRgb(color[0], color[1], color[2]);
        }
    }
    return image;
}

QImage convertedFrom(QImage image, const QColorSpace &space)
{
    image.setColorSpace(space);
    image.convertToColorSpace(QColorSpace(QColorSpace::SRgb));
    image.setColorSpace({});
    return image;
}

QImage inBytes(const QImage &image)
{
    return image.depth() == 32
               ? image
               : image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                               : QImage::Format_RGB32);
}

} // namespace

QImage convertedToSrgb(QImage image, const QByteArray &profile)
{
    if (isFor("GRAY", profile) && !image.hasAlphaChannel()) {
        return convertedGrey(inBytes(image), profile);
    }
    if (!isFor("RGB ", profile)) {
        return inBytes(image);
    }
    muteProfileWarnings();
    const QColorSpace space = QColorSpace::fromIccProfile(profile);
    if (!space.isValid()) {
        return inBytes(convertedByTables(image, profile));
    }
    if (space.primaries() == QColorSpace::Primaries::SRgb &&
        space.transferFunction() == QColorSpace::TransferFunction::SRgb) {
        return inBytes(image);
    }
    return inBytes(convertedFrom(std::move(image), space));
}

QImage convertedToSrgb(QImage image, QColorSpace::NamedColorSpace space)
{
    return inBytes(convertedFrom(std::move(image), QColorSpace(space)));
}

} // namespace tarnovel
