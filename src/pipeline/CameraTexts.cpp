#include "pipeline/CameraTexts.h"

#include <array>
#include <charconv>
#include <cmath>

#include <QDateTime>
#include <QStringList>

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

/// Date and time apart: as one value, an hour that the reader's time zone skips would not be valid.
std::optional<QDateTime> takenAt(const QString &original)
{
    const QDate day = QDate::fromString(original.left(10), u"yyyy:MM:dd"_s);
    const QTime time = QTime::fromString(original.mid(11), u"HH:mm:ss"_s);
    const bool valid = day.isValid() && time.isValid() && original.at(10) == u' ';
    return valid ? std::optional(QDateTime(day, time, Qt::UTC)) : std::nullopt;
}

} // namespace

CameraTexts CameraTexts::from(const CaptureMetadata &metadata)
{
    FieldValues values;
    setCameraFields(values, metadata);
    CameraTexts texts;
    texts.brand = values.make;
    texts.model = values.model;
    QStringList exposure = {values.focal, values.aperture, values.shutter, values.iso};
    exposure.removeAll(QString());
    texts.exif = exposure.join(u" · "_s);
    texts.date = values.taken ? values.taken->toString(u"yyyy.MM.dd"_s) : QString();
    return texts;
}

void setCameraFields(FieldValues &values, const CaptureMetadata &metadata)
{
    values.make = printable(metadata.make);
    values.model = printable(metadata.model);
    values.lens = printable(metadata.lens);
    values.focal = metadata.focalLengthMm ? fixed(*metadata.focalLengthMm, 0) + u" mm"_s : QString();
    values.aperture = metadata.fNumber ? u"f/"_s + fixed(*metadata.fNumber, 1) : QString();
    const double exposure = metadata.exposureSeconds.value_or(0);
    values.shutter = exposure > 0 ? exposureText(exposure) : QString();
    values.iso = metadata.iso ? u"ISO "_s + QString::number(*metadata.iso) : QString();
    values.taken = takenAt(metadata.originalDate);
}

} // namespace tarnovel
