#include "model/LibraryPaths.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace tarnovel::LibraryPaths {

QString location()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/TarnovelMac"_s;
}

QString root()
{
    static const QString folder = [] {
        QDir().mkpath(location());
        return location();
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
