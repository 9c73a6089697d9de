#include "editor/SingleInstance.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDataStream>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStringList>

#include "base/Log.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr int patienceMs = 1000;
constexpr qint64 largestMessage = 4'000'000;

/// Under what name the owner of a library listens: one of the kernel's own, which no folder of the session
/// has to agree on, which a killed owner leaves nothing of, and which a full disk cannot refuse. Two users,
/// or two libraries, never meet.
QString socketName(const QString &libraryFolder)
{
    const QFileInfo library(libraryFolder);
    const QString key =
        library.canonicalFilePath().isEmpty() ? library.absoluteFilePath() : library.canonicalFilePath();
    const QByteArray hash =
        QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    return u"tarnovel-%1-%2"_s.arg(getuid()).arg(QString::fromLatin1(hash));
}

/// Whether the other end of a connection belongs to this user.
bool isOwnUser(const QLocalSocket &socket)
{
    ucred peer = {};
    socklen_t size = sizeof(peer);
    return getsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &size) ==
               0 &&
           peer.uid == getuid();
}

/// What another start hands over.
struct Request {
    QStringList photos;
    QString activationToken;
};

/// None until all of it is there; then it is answered.
std::optional<Request> requestFrom(QLocalSocket &socket)
{
    QDataStream stream(&socket);
    stream.startTransaction();
    QByteArray message;
    stream >> message;
    if (!stream.commitTransaction()) {
        if (socket.bytesAvailable() > largestMessage) {
            socket.abort();
        }
        return std::nullopt;
    }
    Request request;
    QDataStream unpacking(message);
    unpacking >> request.photos >> request.activationToken;
    socket.write("k");
    socket.flush();
    return request;
}

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
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::AbstractNamespaceOption);
    if (!m_server->listen(m_socketName) && m_server->serverError() == QAbstractSocket::AddressInUseError) {
        return false; // an owner whose folder went away, and was made again meanwhile
    }
    connect(m_server.get(), &QLocalServer::newConnection, this, &SingleInstance::receive);
    return true;
}

bool SingleInstance::ownUserListens() const
{
    QLocalSocket socket;
    socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    socket.connectToServer(m_socketName);
    return socket.waitForConnected(patienceMs) && isOwnUser(socket);
}

bool SingleInstance::handOver(const QStringList &photos, const QString &activationToken, int waitMs) const
{
    QElapsedTimer timer;
    timer.start();
    const auto left = [&] { return static_cast<int>(std::max<qint64>(waitMs - timer.elapsed(), 1)); };
    QLocalSocket socket;
    socket.setSocketOptions(QLocalSocket::AbstractNamespaceOption);
    socket.connectToServer(m_socketName);
    if (!socket.waitForConnected(left()) || !isOwnUser(socket)) {
        return false;
    }
    QByteArray message;
    QDataStream packing(&message, QIODevice::WriteOnly);
    packing << absolutePaths(photos) << activationToken;
    QDataStream sending(&socket);
    sending << message;
    // The owner answers once it has read everything, and takes it only when it hears that its answer came in
    // time: who has given up may ask again.
    if (!socket.waitForBytesWritten(left()) || !socket.waitForReadyRead(left()) || socket.read(1) != "k") {
        return false;
    }
    socket.write("y");
    return socket.waitForBytesWritten(left());
}

void SingleInstance::receive()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        if (!isOwnUser(*socket)) {
            qCWarning(logEditor) << "another user's program asked for this window";
            socket->abort();
            socket->deleteLater();
            continue;
        }
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        const auto asked = std::make_shared<std::optional<Request>>();
        connect(socket, &QLocalSocket::readyRead, this, [this, socket, asked] {
            if (!*asked) {
                *asked = requestFrom(*socket);
            } else if (socket->read(1) == "y") {
                const Request request = **asked;
                socket->disconnectFromServer();
                Q_EMIT photosReceived(request.photos, request.activationToken);
            }
        });
    }
}

} // namespace tarnovel
