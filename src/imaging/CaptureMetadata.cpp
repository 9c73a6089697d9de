#include "imaging/CaptureMetadata.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <mutex>
#include <utility>

#include <QFile>
#include <QStringDecoder>

#include <exiv2/webpimage.hpp>

#include "imaging/ExifLibrary.h"
#include "imaging/ImageFile.h"
#include "imaging/JpegSegments.h"
#include "imaging/PngChunks.h"
#include "imaging/TiffDirectory.h"
#include "imaging/VipsDecoder.h"

namespace tarnovel {
namespace {

constexpr qsizetype longestText = 1000;
// The highest value that 16 bits hold: the real one stands elsewhere.
constexpr qint64 isoElsewhere = 65535;

void prepareParser()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        readHeifToo();
        Exiv2::XmpParser::initialize();
    });
}

Exiv2::ExifData decoded(const QByteArray &exif)
{
    Exiv2::ExifData data;
    Exiv2::ExifParser::decode(data, reinterpret_cast<const Exiv2::byte *>(exif.constData()),
                              static_cast<uint32_t>(exif.size()));
    return data;
}

Exiv2::ExifData readByParser(const QString &path, const ImageFile &file)
{
    ExifIo io(new Exiv2::FileIo(QFile::encodeName(path).toStdString()));
    ExifImage image;
    switch (file.format()) {
    case PictureFormat::Png:
        image = Exiv2::newPngInstance(std::move(io), false);
        break;
    case PictureFormat::WebP:
        image = Exiv2::newWebPInstance(std::move(io), false);
        break;
    case PictureFormat::Heif:
    case PictureFormat::Avif:
        image = Exiv2::newBmffInstance(std::move(io), false);
        break;
    case PictureFormat::Jpeg:
    case PictureFormat::Tiff:
        break;
    }
    if (image.get() == nullptr || !image->good()) {
        return {};
    }
    image->readMetadata();
    return image->exifData();
}

Exiv2::ExifData readExif(const QString &path)
{
    const ImageFile file(path);
    prepareParser();
    if (file.format() == PictureFormat::Jpeg) {
        return decoded(readJpegSegments(file).exif);
    }
    if (file.format() == PictureFormat::Tiff) {
        // The parser would map the whole file, and a mapped file that somebody cuts short ends the program.
        return decoded(captureBlock(
            TiffDirectories([&file](qint64 offset, qint64 count) { return file.read(offset, count); })));
    }
    if (file.format() == PictureFormat::Png) {
        const PngChunks chunks = readPngChunks(file);
        if (!chunks.exif.isEmpty() || !chunks.textIsSmall) {
            return decoded(chunks.exif);
        }
    }
    if (file.format() != PictureFormat::Heif && file.format() != PictureFormat::Avif) {
        return readByParser(path, file);
    }
    // The parser misses the block where a file keeps it in some of the ways that the decoder knows.
    Exiv2::ExifData data;
    try {
        data = readByParser(path, file);
    } catch (const std::exception &) {
        data.clear();
    }
    return data.empty() ? decoded(readVipsExif(file)) : data;
}

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

CaptureMetadata readCaptureMetadata(const QString &path)
{
    CaptureMetadata metadata;
    try {
        const Exiv2::ExifData data = readExif(path);
        metadata.make = text(data, "Exif.Image.Make");
        metadata.model = text(data, "Exif.Image.Model");
        metadata.focalLengthMm = fraction(data, "Exif.Photo.FocalLength");
        metadata.fNumber = fraction(data, "Exif.Photo.FNumber");
        metadata.exposureSeconds = fraction(data, "Exif.Photo.ExposureTime");
        metadata.iso = sensitivity(data);
        metadata.originalDate = text(data, "Exif.Photo.DateTimeOriginal");
    } catch (const std::exception &) {
        return metadata; // what was read before the fault stays
    }
    return metadata;
}

} // namespace tarnovel
