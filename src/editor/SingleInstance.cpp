#include "editor/SingleInstance.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr int patienceMs = 3000;
constexpr qint64 largestMessage = 4'000'000;

/// Where the owner of a library listens: in the user's own runtime folder where there is one, else under a
/// name of the user's in the temporary folder. Two users, or two libraries, never meet.
QString socketPath(const QString &libraryFolder)
{
    const QFileInfo library(libraryFolder);
    const QString key =
        library.canonicalFilePath().isEmpty() ? library.absoluteFilePath() : library.canonicalFilePath();
    const QByteArray hash =
        QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    const QString name = u"tarnovel-%1-%2"_s.arg(getuid()).arg(QString::fromLatin1(hash));
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return QFileInfo(runtime).isDir() ? runtime + u'/' + name : QDir::tempPath() + u'/' + name;
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
    : m_socketPath(socketPath(libraryFolder)), m_lockPath(libraryFolder + u"/.editor.lock"_s)
{
}

SingleInstance::~SingleInstance()
{
    if (m_lock >= 0) {
        close(m_lock);
    }
}

bool SingleInstance::acquire(const QStringList &photos, const QString &activationToken)
{
    // The kernel lets go of the lock when its process ends, however it ends; what the file holds means
    // nothing.
    m_lock = open(QFile::encodeName(m_lockPath).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_lock < 0) {
        return true; // a library that cannot be written has no owner to disturb
    }
    QElapsedTimer timer;
    timer.start();
    // The owner may be about to listen, or about to end.
    while (timer.elapsed() < patienceMs) {
        if (m_lock >= 0 && flock(m_lock, LOCK_EX | LOCK_NB) == 0) {
            return listen();
        }
        if (handOver(photos, activationToken)) {
            m_handedOver = true;
            return false;
        }
        usleep(50'000);
    }
    return false;
}

bool SingleInstance::listen()
{
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    // What a killed owner left is in the way; the lock says that nobody uses it.
    QLocalServer::removeServer(m_socketPath);
    m_server->listen(m_socketPath);
    connect(m_server.get(), &QLocalServer::newConnection, this, &SingleInstance::receive);
    return true;
}

bool SingleInstance::handOver(const QStringList &photos, const QString &activationToken) const
{
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(200) || !isOwnUser(socket)) {
        return false;
    }
    QByteArray message;
    QDataStream packing(&message, QIODevice::WriteOnly);
    packing << absolutePaths(photos) << activationToken;
    QDataStream sending(&socket);
    sending << message;
    // The owner answers once it has read everything.
    return socket.waitForBytesWritten(patienceMs) && socket.waitForReadyRead(patienceMs) &&
           socket.read(1) == "k";
}

void SingleInstance::receive()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            QDataStream stream(socket);
            stream.startTransaction();
            QByteArray message;
            stream >> message;
            if (!stream.commitTransaction()) {
                if (socket->bytesAvailable() > largestMessage) {
                    socket->abort();
                }
                return;
            }
            QStringList photos;
            QString activationToken;
            QDataStream unpacking(message);
            unpacking >> photos >> activationToken;
            socket->write("k");
            socket->flush();
            Q_EMIT photosReceived(photos, activationToken);
        });
    }
}

} // namespace tarnovel
