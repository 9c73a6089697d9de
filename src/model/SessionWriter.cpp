#include "model/SessionWriter.h"

#include <utility>

#include <QFileInfo>

#include "base/AtomicFile.h"
#include "base/FileError.h"
#include "base/Json.h"
#include "base/Log.h"
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
        if (!QFileInfo::exists(m_folder)) {
            // It went away while the program ran: what is edited is worth more than the reason.
            LibraryPaths::make(m_folder);
        }
        replaceFile(m_folder + u'/' + LibraryPaths::sessionFileName(), writeSession(session),
                    Durability::Synced, Audience::Owner);
        return true;
    } catch (const FileError &error) {
        qCWarning(logModel) << "the session was not saved:" << error.what();
    } catch (const JsonError &error) {
        // A number that is not one: better the old document than one that cannot be read.
        qCWarning(logModel) << "the session was not saved:" << error.what();
    }
    return false;
}

} // namespace tarnovel
