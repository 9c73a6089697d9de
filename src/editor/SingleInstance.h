#pragma once

#include <memory>

#include <QObject>
#include <QStringList>

#include "base/LocalSocket.h"

class QSocketNotifier;

namespace tarnovel {

/// One editor for a library: the first to come owns it, a later one hands its photos over and ends. The lock
/// goes with its process, however that ends.
class SingleInstance : public QObject {
    Q_OBJECT

public:
    explicit SingleInstance(const QString &libraryFolder);
    ~SingleInstance() override;

    /// True when this program owns the library from now on. Otherwise the photos have been handed to the
    /// owner, or could not be within a second; asked again, it tries again. `activationToken` is what the
    /// desktop gave this start to bring a window to the front with; it goes along.
    bool acquire(const QStringList &photos, const QString &activationToken = {});
    /// Whether the owner has taken the photos of an acquire that came too late.
    bool handedOver() const { return m_handedOver; }

Q_SIGNALS:
    /// Another start's photos, as absolute paths; none when it was started without.
    void photosReceived(const QStringList &photos, const QString &activationToken);

private:
    bool lock();
    bool listen();
    bool ownUserListens() const;
    bool handOver(const QStringList &photos, const QString &activationToken, int patienceMs) const;
    void receive();

    const QString m_library;
    const QByteArray m_socketName;
    int m_lock = -1;
    OwnedDescriptor m_server;
    std::unique_ptr<QSocketNotifier> m_callers;
    bool m_handedOver = false;
};

} // namespace tarnovel
