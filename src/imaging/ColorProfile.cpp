#include "imaging/ColorProfile.h"

#include <mutex>

#include <QColorSpace>
#include <QLoggingCategory>

#include "imaging/VipsRuntime.h"

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

/// For profiles of look-up tables, which Qt does not read.
QImage convertedByTables(const QImage &image, const QByteArray &profile)
{
    ensureVips();
    const bool alpha = image.hasAlphaChannel();
    const QImage straight = image.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    VipsImage *made = nullptr;
    const int bands = alpha ? 4 : 3;
    // The rows of a QImage are padded, which the library does not know.
    QByteArray pixels;
    pixels.reserve(qsizetype(straight.width()) * bands * straight.height());
    for (int y = 0; y < straight.height(); ++y) {
        pixels.append(reinterpret_cast<const char *>(straight.constScanLine(y)),
                      qsizetype(straight.width()) * bands);
    }
    const VipsImagePtr source(vips_image_new_from_memory(pixels.constData(),
                                                         static_cast<size_t>(pixels.size()), straight.width(),
                                                         straight.height(), bands, VIPS_FORMAT_UCHAR));
    if (!source) {
        vips_error_clear();
        return image;
    }
    source->Type = VIPS_INTERPRETATION_sRGB;
    vips_image_set_blob_copy(source.get(), VIPS_META_ICC_NAME, profile.constData(),
                             static_cast<size_t>(profile.size()));
    if (vips_icc_transform(source.get(), &made, "srgb", "embedded", TRUE, "depth", 8,
                           static_cast<void *>(nullptr)) != 0) {
        vips_error_clear();
        return image;
    }
    const VipsImagePtr converted(made);
    size_t bytes = 0;
    const std::unique_ptr<void, GFree> memory(vips_image_write_to_memory(converted.get(), &bytes));
    if (!memory || converted->Bands != bands) {
        vips_error_clear();
        return image;
    }
    const QImage wrapped(static_cast<const uchar *>(memory.get()), straight.width(), straight.height(),
                         qsizetype(straight.width()) * bands, straight.format());
    return wrapped.convertToFormat(image.format());
}

} // namespace

QImage convertedToSrgb(QImage image, const QByteArray &profile)
{
    const bool rgb = profile.size() >= headerBytes && profile.size() <= largestProfile &&
                     profile.mid(16, 4) == "RGB " && profile.mid(36, 4) == "acsp";
    if (!rgb) {
        return image;
    }
    muteProfileWarnings();
    const QColorSpace space = QColorSpace::fromIccProfile(profile);
    if (!space.isValid()) {
        return convertedByTables(image, profile);
    }
    if (space.primaries() == QColorSpace::Primaries::SRgb &&
        space.transferFunction() == QColorSpace::TransferFunction::SRgb) {
        return image;
    }
    image.setColorSpace(space);
    image.convertToColorSpace(QColorSpace(QColorSpace::SRgb));
    image.setColorSpace({});
    return image;
}

} // namespace tarnovel
