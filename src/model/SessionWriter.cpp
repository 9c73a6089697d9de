#include "model/SessionWriter.h"

#include <utility>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/Json.h"
#include "model/LibraryPaths.h"

namespace tarnovel {

SessionWriter::SessionWriter(QString libraryFolder) : m_folder(std::move(libraryFolder)) {}

SessionWriter &SessionWriter::shared()
{
    static SessionWriter writer(LibraryPaths::root());
    return writer;
}

qint64 SessionWriter::latestRevision()
{
    const std::scoped_lock lock(m_mutex);
    return m_latestRevision;
}

bool SessionWriter::save(const Session &session, qint64 revision)
{
    const std::scoped_lock lock(m_mutex);
    if (revision < m_latestRevision) {
        return false;
    }
    m_latestRevision = revision;
    try {
        replaceFile(m_folder + u'/' + LibraryPaths::sessionFileName(), writeSession(session));
    } catch (const FileError &) {
        return false;
    } catch (const JsonError &) {
        return false; // a number that is not one: better the old document than one that cannot be read
    }
    return true;
}

} // namespace tarnovel
