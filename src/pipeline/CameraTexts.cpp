#include "pipeline/CameraTexts.h"

#include <array>
#include <charconv>
#include <cmath>

#include <QDate>
#include <QStringList>
#include <QTime>

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

/// Control characters are noise of a careless writer: a frame cannot show them.
QString printable(QString text)
{
    text.removeIf([](QChar character) { return character.category() == QChar::Other_Control; });
    return text.trimmed();
}

/// As C's printf writes it, ties to even, whatever the locale.
QString fixed(double value, int decimals)
{
    std::array<char, 400> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                   std::chars_format::fixed, decimals);
    return QString::fromLatin1(digits.data(), end.ptr - digits.data());
}

QString exposureText(double seconds)
{
    if (seconds < 1) {
        return u"1/"_s + fixed(std::round(1 / seconds), 0) + u" s"_s;
    }
    return fixed(seconds, 1) + u" s"_s;
}

QString exifText(const CaptureMetadata &metadata)
{
    QStringList parts;
    if (metadata.focalLengthMm) {
        parts.append(fixed(*metadata.focalLengthMm, 0) + u" mm"_s);
    }
    if (metadata.fNumber) {
        parts.append(u"f/"_s + fixed(*metadata.fNumber, 1));
    }
    if (metadata.exposureSeconds && *metadata.exposureSeconds > 0) {
        parts.append(exposureText(*metadata.exposureSeconds));
    }
    if (metadata.iso) {
        parts.append(u"ISO "_s + QString::number(*metadata.iso));
    }
    return parts.join(u" · "_s);
}

} // namespace

CameraTexts CameraTexts::from(const CaptureMetadata &metadata)
{
    CameraTexts texts;
    texts.brand = printable(metadata.make);
    texts.model = printable(metadata.model);
    texts.exif = exifText(metadata);
    // Date and time apart: as one value, an hour that the reader's time zone skips would not be valid.
    const QString &original = metadata.originalDate;
    const QDate day = QDate::fromString(original.left(10), u"yyyy:MM:dd"_s);
    const QTime time = QTime::fromString(original.mid(11), u"HH:mm:ss"_s);
    if (day.isValid() && time.isValid() && original.at(10) == u' ') {
        texts.date = day.toString(u"yyyy.MM.dd"_s);
    }
    return texts;
}

} // namespace tarnovel
