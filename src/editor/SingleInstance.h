#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QStringList>

class QLocalServer;

namespace tarnovel {

/// One editor for a library: the first to come owns it, a later one hands its photos over and ends. The lock
/// goes with its process, however that ends.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    explicit SingleInstance(const QString &libraryFolder);
    ~SingleInstance() override;

    /// True when this program owns the library from now on. Otherwise the photos have been handed to the
    /// owner, or could not be within a few seconds.
    bool acquire(const QStringList &photos);
    /// Whether the owner has taken the photos of an acquire that came too late.
    bool handedOver() const { return m_handedOver; }

Q_SIGNALS:
    /// Another start's photos, as absolute paths; none when it was started without.
    void photosReceived(const QStringList &photos);

private:
    bool listen();
    bool handOver(const QStringList &photos) const;
    void receive();

    QString m_socketPath;
    QString m_lockPath;
    int m_lock = -1;
    std::unique_ptr<QLocalServer> m_server;
    bool m_handedOver = false;
};

} // namespace tarnovel
