#include "model/ImportedFile.h"

#include <QFileInfo>
#include <QUuid>

#include "base/AtomicFile.h"
#include "base/Uuid.h"
#include "model/LibraryPaths.h"

namespace tarnovel {

ImportedFile ImportedFile::receive(const QString &source, const QString &libraryFolder)
{
    // Nobody's extension is that long: the rest of a name that merely holds a dot is not kept.
    constexpr int longestExtension = 16;
    const QString suffix = QFileInfo(source).suffix();
    const QString extension =
        suffix.isEmpty() || suffix.size() > longestExtension ? QString() : u'.' + suffix;
    if (!QFileInfo::exists(libraryFolder)) {
        LibraryPaths::make(libraryFolder);
    }
    const QString path = publishFile(
        source, libraryFolder, [&extension](int) { return uuidText(QUuid::createUuid()) + extension; },
        Audience::Owner);
    return {QFileInfo(path).fileName()};
}

} // namespace tarnovel
