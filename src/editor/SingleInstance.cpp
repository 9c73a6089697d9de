#include "editor/SingleInstance.h"

#include <unistd.h>

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

constexpr int patienceMs = 3000;
constexpr qint64 largestMessage = 4'000'000;

/// A name of the user's own for the library: two users, or two libraries, never meet.
QString socketName(const QString &libraryFolder)
{
    const QString key = QFileInfo(libraryFolder).absoluteFilePath();
    const QByteArray hash =
        QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    return u"tarnovel-%1-%2"_s.arg(getuid()).arg(QString::fromLatin1(hash));
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
    : m_socketName(socketName(libraryFolder)),
      m_lock(std::make_unique<QLockFile>(libraryFolder + u"/.editor.lock"_s))
{
    // A lock is stale when its process is gone, never by age.
    m_lock->setStaleLockTime(0);
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::acquire(const QStringList &photos)
{
    QElapsedTimer timer;
    timer.start();
    // The owner may be about to listen, or about to end.
    while (timer.elapsed() < patienceMs) {
        if (m_lock->tryLock(0)) {
            return listen();
        }
        if (m_lock->error() != QLockFile::LockFailedError) {
            return true; // a library that cannot be written has no owner to disturb
        }
        if (handOver(photos)) {
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
    QLocalServer::removeServer(m_socketName);
    m_server->listen(m_socketName);
    connect(m_server.get(), &QLocalServer::newConnection, this, &SingleInstance::receive);
    return true;
}

bool SingleInstance::handOver(const QStringList &photos) const
{
    QLocalSocket socket;
    socket.connectToServer(m_socketName);
    if (!socket.waitForConnected(200)) {
        return false;
    }
    QByteArray message;
    QDataStream packing(&message, QIODevice::WriteOnly);
    packing << absolutePaths(photos);
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
            QDataStream unpacking(message);
            unpacking >> photos;
            socket->write("k");
            socket->flush();
            Q_EMIT photosReceived(photos);
        });
    }
}

} // namespace tarnovel
