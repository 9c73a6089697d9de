#include "model/LibraryCleanup.h"

#include <QDir>
#include <QFileInfo>

#include "base/Uuid.h"
#include "model/LibraryPaths.h"

using namespace Qt::StringLiterals;

namespace tarnovel::LibraryCleanup {

namespace {

bool mayBeDeleted(const QString &folder, const QString &name)
{
    if (!LibraryPaths::isBareName(name)) {
        return false;
    }
    const QFileInfo info(folder + u'/' + name);
    QString stem = info.completeBaseName();
    if (stem.startsWith(u"handwriting-"_s)) {
        stem = stem.sliced(12);
    }
    return uuidFromText(stem) && info.isFile() && !info.isSymLink();
}

} // namespace

std::set<QString> candidates(const QString &folder)
{
    std::set<QString> names;
    for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Hidden)) {
        if (mayBeDeleted(folder, name)) {
            names.insert(name);
        }
    }
    return names;
}

std::set<QString> removeUnused(const std::set<QString> &candidates, const std::set<QString> &retaining,
                               const QString &folder)
{
    std::set<QString> removed;
    for (const QString &name : candidates) {
        if (!retaining.contains(name) && mayBeDeleted(folder, name) && QFile::remove(folder + u'/' + name)) {
            removed.insert(name);
        }
    }
    return removed;
}

} // namespace tarnovel::LibraryCleanup
