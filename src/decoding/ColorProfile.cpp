#include "decoding/ColorProfile.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include <QLoggingCategory>

#include "decoding/FormatLibrary.h"

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

/// For profiles of look-up tables, which Qt does not read.
QImage convertedByTables(const QImage &image, const QByteArray &profile)
{
    const bool alpha = image.hasAlphaChannel();
    PlainPixels pixels;
    pixels.deep = image.depth() == 64;
    pixels.bands = alpha || pixels.deep ? 4 : 3;
    pixels.size = image.size();
    const QImage straight = image.convertToFormat(pixels.deep ? QImage::Format_RGBA64
                                                  : alpha     ? QImage::Format_RGBA8888
                                                              : QImage::Format_RGB888);
    // The rows of a QImage are padded, which the library does not know.
    const qsizetype rowBytes = qsizetype(image.width()) * straight.depth() / 8;
    pixels.bytes.reserve(rowBytes * straight.height());
    for (int y = 0; y < straight.height(); ++y) {
        pixels.bytes.append(reinterpret_cast<const char *>(straight.constScanLine(y)), rowBytes);
    }
    const QByteArray converted = formatLibrary().inSrgb(pixels, profile);
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
    grey.kind = PlainPixels::Kind::Grey;
    for (int level = 0; level < levels; ++level) {
        grey.bytes.append(static_cast<char>(level));
    }
    const QByteArray table = formatLibrary().inSrgb(grey, profile);
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
