#include "model/LibraryPaths.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include "base/Log.h"

using namespace Qt::StringLiterals;

namespace tarnovel::LibraryPaths {

QString location()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/TarnovelMac"_s;
}

QString root()
{
    static const QString folder = [] {
        make(location());
        return location();
    }();
    return folder;
}

void make(const QString &folder)
{
    if (!QDir().mkpath(folder)) {
        qCWarning(logModel) << "the library folder cannot be made:" << folder;
    }
    chmod(QFile::encodeName(folder).constData(), S_IRWXU);
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
