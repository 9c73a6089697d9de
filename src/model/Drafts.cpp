#include "model/Drafts.h"

#include <QFile>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/Json.h"
#include "base/Log.h"

using namespace Qt::StringLiterals;

namespace tarnovel::Drafts {

namespace {

QString pathOf(const QString &libraryFolder, Kind kind)
{
    return libraryFolder + (kind == Kind::Collage ? u"/draft-collage.json"_s : u"/draft-handwriting.json"_s);
}

} // namespace

bool keep(const QString &libraryFolder, Kind kind, const QByteArray &document)
{
    try {
        replaceFile(pathOf(libraryFolder, kind), document, Durability::Synced, Audience::Owner);
        return true;
    } catch (const FileError &error) {
        qCWarning(logModel) << "a draft was not kept:" << error.what();
        return false;
    }
}

std::optional<QByteArray> read(const QString &libraryFolder, Kind kind)
{
    const QString path = pathOf(libraryFolder, kind);
    if (!QFile::exists(path)) {
        return std::nullopt;
    }
    try {
        return readJsonFile(path);
    } catch (const FileError &error) {
        qCWarning(logModel) << "a draft cannot be read:" << error.what();
    } catch (const JsonError &error) {
        qCWarning(logModel) << "a draft cannot be read:" << path << error.what();
    }
    return std::nullopt;
}

void remove(const QString &libraryFolder, Kind kind)
{
    QFile::remove(pathOf(libraryFolder, kind));
}

} // namespace tarnovel::Drafts
