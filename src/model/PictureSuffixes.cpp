#include "model/PictureSuffixes.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace tarnovel {

const QStringList &pictureSuffixes()
{
    static const QStringList suffixes = {u"jpg"_s,  u"jpeg"_s, u"jpe"_s,  u"png"_s,  u"heic"_s,
                                         u"heif"_s, u"hif"_s,  u"avif"_s, u"webp"_s, u"tif"_s,
                                         u"tiff"_s, u"dng"_s,  u"nef"_s,  u"nrw"_s,  u"cr2"_s,
                                         u"cr3"_s,  u"arw"_s,  u"raf"_s,  u"orf"_s,  u"rw2"_s};
    return suffixes;
}

bool hasPictureSuffix(const QString &path)
{
    return pictureSuffixes().contains(QFileInfo(path).suffix().toLower());
}

} // namespace tarnovel
