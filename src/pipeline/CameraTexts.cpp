#include "pipeline/CameraTexts.h"

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

QString exposureText(double seconds)
{
    if (seconds < 1) {
        return u"1/"_s + QString::number(std::round(1 / seconds), 'f', 0) + u" s"_s;
    }
    return QString::number(seconds, 'f', 1) + u" s"_s;
}

QString exifText(const CaptureMetadata &metadata)
{
    QStringList parts;
    if (metadata.focalLengthMm) {
        parts.append(QString::number(*metadata.focalLengthMm, 'f', 0) + u" mm"_s);
    }
    if (metadata.fNumber) {
        parts.append(u"f/"_s + QString::number(*metadata.fNumber, 'f', 1));
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
    const QDateTime taken = QDateTime::fromString(metadata.originalDate, u"yyyy:MM:dd HH:mm:ss"_s);
    if (taken.isValid()) {
        texts.date = taken.date().toString(u"yyyy.MM.dd"_s);
    }
    return texts;
}

} // namespace tarnovel
