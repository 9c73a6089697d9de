#include "model/LibraryPaths.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace tarnovel::LibraryPaths {

QString root()
{
    static const QString folder = [] {
        const QString path =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/TarnovelMac"_s;
        QDir().mkpath(path);
        return path;
    }();
    return folder;
}

QString sessionFileName()
{
    return u"session.json"_s;
}

bool isBareName(const QString &name)
{
    return !name.isEmpty() && name != u"."_s && name != u".."_s && !name.contains(u'/') &&
           !name.contains(QChar(0));
}

} // namespace tarnovel::LibraryPaths
