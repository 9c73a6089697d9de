#include "decoding/CaptureReader.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <mutex>
#include <utility>

#include <QStringDecoder>

#include <exiv2/webpimage.hpp>

#include "decoding/ExifLibrary.h"

namespace tarnovel {
namespace {

constexpr qsizetype longestText = 1000;
// The highest value that 16 bits hold: the real one stands elsewhere.
constexpr qint64 isoElsewhere = 65535;

const Exiv2::Value *find(const Exiv2::ExifData &data, const char *key)
{
    const auto found = data.findKey(Exiv2::ExifKey(key));
    return found == data.end() || found->count() == 0 ? nullptr : &found->value();
}

QString text(const Exiv2::ExifData &data, const char *key)
{
    const Exiv2::Value *value = find(data, key);
    if (value == nullptr || value->typeId() != Exiv2::asciiString) {
        return {};
    }
    const std::string whole = value->toString();
    // A character takes four bytes at most.
    QByteArray bytes(whole.data(), static_cast<qsizetype>(std::min(whole.size(), size_t(longestText) * 4)));
    bytes.truncate(qstrnlen(bytes.constData(), bytes.size()));
    const bool cut = static_cast<size_t>(bytes.size()) < whole.size() && bytes.size() == longestText * 4;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString asUtf8 = decoder(bytes);
    const QString all = decoder.hasError() && !cut ? QString::fromLatin1(bytes) : asUtf8;
    return all.left(longestText);
}

/// A fraction that is a finite number of at least zero.
std::optional<double> fraction(const Exiv2::ExifData &data, const char *key)
{
    const Exiv2::Value *value = find(data, key);
    double number = std::nan("");
    if (const auto *positive = dynamic_cast<const Exiv2::URationalValue *>(value)) {
        const Exiv2::URational &first = positive->value_.front();
        number = first.second == 0 ? number : double(first.first) / first.second;
    } else if (const auto *either = dynamic_cast<const Exiv2::RationalValue *>(value)) {
        const Exiv2::Rational &first = either->value_.front();
        number = first.second == 0 ? number : double(first.first) / first.second;
    } else if (value != nullptr && value->typeId() != Exiv2::asciiString) {
        number = value->toFloat(0);
    }
    return std::isfinite(number) && number >= 0 ? std::optional(number) : std::nullopt;
}

std::optional<qint64> whole(const Exiv2::ExifData &data, const char *key)
{
    const Exiv2::Value *value = find(data, key);
    if (value == nullptr || value->typeId() == Exiv2::asciiString) {
        return std::nullopt;
    }
    const auto *wide = dynamic_cast<const Exiv2::ULongValue *>(value);
    const qint64 number = wide != nullptr ? qint64(wide->value_.front()) : firstWhole(*value);
    return number >= 0 ? std::optional(number) : std::nullopt;
}

std::optional<qint64> sensitivity(const Exiv2::ExifData &data)
{
    const std::optional<qint64> rating = whole(data, "Exif.Photo.ISOSpeedRatings");
    if (rating && *rating != isoElsewhere) {
        return rating;
    }
    const std::optional<qint64> index = whole(data, "Exif.Photo.RecommendedExposureIndex");
    return index ? index : rating;
}

} // namespace

void prepareParser()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        readHeifToo();
        Exiv2::XmpParser::initialize();
    });
}

// What can be read before a fault stays.
CaptureMetadata captureMetadata(const Exiv2::ExifData &data)
{
    CaptureMetadata metadata;
    try {
        metadata.make = text(data, "Exif.Image.Make");
        metadata.model = text(data, "Exif.Image.Model");
        metadata.lens = text(data, "Exif.Photo.LensModel");
        metadata.focalLengthMm = fraction(data, "Exif.Photo.FocalLength");
        metadata.fNumber = fraction(data, "Exif.Photo.FNumber");
        metadata.exposureSeconds = fraction(data, "Exif.Photo.ExposureTime");
        metadata.iso = sensitivity(data);
        metadata.originalDate = text(data, "Exif.Photo.DateTimeOriginal");
    } catch (const std::exception &) {
        return metadata;
    }
    return metadata;
}

CaptureMetadata captureMetadata(const QByteArray &exif)
{
    prepareParser();
    Exiv2::ExifData data;
    try {
        Exiv2::ExifParser::decode(data, reinterpret_cast<const Exiv2::byte *>(exif.constData()),
                                  static_cast<uint32_t>(exif.size()));
    } catch (const std::exception &) {
        return {};
    }
    return captureMetadata(data);
}

std::optional<CaptureMetadata> captureMetadataByParser(PictureFormat format, const QByteArray &file)
{
    prepareParser();
    try {
        ExifIo io(new Exiv2::MemIo(reinterpret_cast<const Exiv2::byte *>(file.constData()),
                                   static_cast<ByteCount>(file.size())));
        ExifImage image = format == PictureFormat::Png    ? Exiv2::newPngInstance(std::move(io), false)
                          : format == PictureFormat::WebP ? Exiv2::newWebPInstance(std::move(io), false)
                                                          : Exiv2::newBmffInstance(std::move(io), false);
        if (image.get() == nullptr || !image->good()) {
            return std::nullopt;
        }
        image->readMetadata();
        return image->exifData().empty() ? std::nullopt : std::optional(captureMetadata(image->exifData()));
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

} // namespace tarnovel
