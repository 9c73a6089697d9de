#include "language/Plural.h"

namespace tarnovel {

QString counted(qint64 count, const Text &one, const Text &other)
{
    const bool singular = count == 1 || (count == 0 && currentLanguage() == AppLanguage::french);
    // Not `arg`: a sentence may do without the number.
    return localized(singular ? one : other).replace(QStringLiteral("%1"), QString::number(count));
}

QString countedPhotos(qint64 count)
{
    return counted(count, {"%1 张照片", "%1 photo", "%1 photo"}, {"%1 张照片", "%1 photos", "%1 photos"});
}

} // namespace tarnovel
