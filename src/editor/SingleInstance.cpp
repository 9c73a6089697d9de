#include "editor/SingleInstance.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

#include <QCryptographicHash>
#include <QDataStream>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QStringList>

#include "base/Log.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr int patienceMs = 1000;
constexpr quint32 largestMessage = 4'000'000;

/// Under what name the owner of a library listens: one of the kernel's own, which no folder of the session
/// has to agree on, which a killed owner leaves nothing of, and which a full disk cannot refuse. Two users,
/// or two libraries, never meet.
QByteArray socketName(const QString &libraryFolder)
{
    const QFileInfo library(libraryFolder);
    const QString key =
        library.canonicalFilePath().isEmpty() ? library.absoluteFilePath() : library.canonicalFilePath();
    const QByteArray hash =
        QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    return "tarnovel-" + QByteArray::number(getuid()) + '-' + hash;
}

/// What another start hands over.
struct Request {
    QStringList photos;
    QString activationToken;
};

/// A message as it goes over the socket: its length in four bytes, the highest first, and then itself.
QByteArray packed(const QStringList &photos, const QString &activationToken)
{
    QByteArray message;
    QDataStream packing(&message, QIODevice::WriteOnly);
    packing << photos << activationToken;
    QByteArray sent;
    QDataStream sending(&sent, QIODevice::WriteOnly);
    sending << message;
    return sent;
}

/// Another start that has called, as long as it stays on the line. It deletes itself.
class Caller : public QObject {
public:
    Caller(OwnedDescriptor socket, SingleInstance *owner)
        : QObject(owner),
          m_owner(owner),
          m_socket(std::move(socket)),
          m_news(m_socket.get(), QSocketNotifier::Read)
    {
        connect(&m_news, &QSocketNotifier::activated, this, &Caller::read);
    }

private:
    void read()
    {
        const std::optional<QByteArray> bytes = receivedNow(m_socket);
        if (!bytes) {
            leave();
        } else if (m_request) {
            if (bytes->startsWith('y')) {
                leave();
                Q_EMIT m_owner->photosReceived(m_request->photos, m_request->activationToken);
            }
        } else {
            m_bytes += *bytes;
            takeRequest();
        }
    }

    /// Nothing until all of it is there; then it is answered.
    void takeRequest()
    {
        QDataStream stream(m_bytes);
        quint32 length = 0;
        stream >> length;
        if (stream.status() != QDataStream::Ok) {
            return;
        }
        if (length > largestMessage) {
            leave();
            return;
        }
        if (m_bytes.size() < qsizetype(sizeof(length)) + qsizetype(length)) {
            return;
        }
        m_request.emplace();
        QDataStream unpacking(m_bytes.sliced(sizeof(length)));
        unpacking >> m_request->photos >> m_request->activationToken;
        sendAll(m_socket, "k", patienceMs);
    }

    void leave()
    {
        m_news.setEnabled(false);
        m_socket = {};
        deleteLater();
    }

    SingleInstance *m_owner;
    OwnedDescriptor m_socket;
    QSocketNotifier m_news;
    QByteArray m_bytes;
    std::optional<Request> m_request;
};

QStringList absolutePaths(const QStringList &photos)
{
    QStringList result;
    for (const QString &photo : photos) {
        result.append(QFileInfo(photo).absoluteFilePath());
    }
    return result;
}

} // namespace

SingleInstance::SingleInstance(const QString &libraryFolder)
    : m_library(libraryFolder), m_socketName(socketName(libraryFolder))
{
}

SingleInstance::~SingleInstance()
{
    if (m_lock >= 0) {
        close(m_lock);
    }
}

/// Whether nobody else owns the library. The lock is the folder's own, so that it needs no room on the disk;
/// the kernel lets go of it when its process ends, however it ends.
bool SingleInstance::lock()
{
    if (m_lock < 0) {
        m_lock = open(QFile::encodeName(m_library).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    }
    if (m_lock < 0 || flock(m_lock, LOCK_EX | LOCK_NB) == 0) {
        return true; // without a folder there is nothing to own yet; the socket's name tells owners apart
    }
    if (errno == EWOULDBLOCK) {
        return false;
    }
    // A file system that locks no folders; there is one file for it to lock.
    qCInfo(logEditor) << "the library folder cannot be locked:" << std::strerror(errno);
    close(m_lock);
    m_lock = open(QFile::encodeName(m_library + u"/.editor.lock"_s).constData(), O_RDWR | O_CREAT | O_CLOEXEC,
                  0600);
    return m_lock < 0 || flock(m_lock, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool SingleInstance::acquire(const QStringList &photos, const QString &activationToken)
{
    m_handedOver = false;
    QElapsedTimer timer;
    timer.start();
    // The owner may be about to listen, or about to end.
    do {
        // A name that another user's program has taken makes nobody an owner; only hand-overs come to nothing
        // then.
        if (lock() && (listen() || !ownUserListens())) {
            return true;
        }
        if (handOver(photos, activationToken,
                     static_cast<int>(std::max<qint64>(patienceMs - timer.elapsed(), 1)))) {
            m_handedOver = true;
            return false;
        }
        usleep(50'000);
    } while (timer.elapsed() < patienceMs);
    qCWarning(logEditor) << "the owner of the library does not answer";
    return false;
}

bool SingleInstance::listen()
{
    m_callers.reset();
    m_server = {};
    m_server = listenLocally(m_socketName);
    if (!m_server.isOpen()) {
        return errno != EADDRINUSE; // an owner whose folder went away, and was made again meanwhile
    }
    m_callers = std::make_unique<QSocketNotifier>(m_server.get(), QSocketNotifier::Read);
    connect(m_callers.get(), &QSocketNotifier::activated, this, &SingleInstance::receive);
    return true;
}

bool SingleInstance::ownUserListens() const
{
    return isOwnUser(calledLocally(m_socketName, patienceMs));
}

bool SingleInstance::handOver(const QStringList &photos, const QString &activationToken, int waitMs) const
{
    QElapsedTimer timer;
    timer.start();
    const auto left = [&] { return static_cast<int>(std::max<qint64>(waitMs - timer.elapsed(), 1)); };
    const OwnedDescriptor socket = calledLocally(m_socketName, left());
    // The owner answers once it has read everything, and takes it only when it hears that its answer came in
    // time: who has given up may ask again.
    return isOwnUser(socket) && sendAll(socket, packed(absolutePaths(photos), activationToken), left()) &&
           receivedWithin(socket, left()).startsWith('k') && sendAll(socket, "y", left());
}

void SingleInstance::receive()
{
    OwnedDescriptor socket = acceptedCaller(m_server);
    if (!socket.isOpen()) {
        return;
    }
    if (!isOwnUser(socket)) {
        qCWarning(logEditor) << "another user's program asked for this window";
        return;
    }
    new Caller(std::move(socket), this);
}

} // namespace tarnovel
