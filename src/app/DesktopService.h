#pragma once

#include <functional>
#include <optional>

#include <QDBusConnection>
#include <QDBusContext>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace tarnovel::app {

/// What a start of the program, or the desktop in place of one, asks for.
struct OpenRequest {
    /// Absolute paths of files and folders; none brings the window to the front and nothing more.
    QStringList paths;
    /// The desktop's leave for a window to come to the front; empty without one.
    QString activationToken;
};

/// The program as the desktop starts it over the session bus: org.freedesktop.Application under the program's
/// id. What is asked before anyone takes it waits.
class DesktopService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// The argument of a start by the bus, which says over the bus what it is for.
    static constexpr const char *argument = "--dbus-activated";
    static bool startedByBus(int argc, char **argv);
    /// Whether starts by the desktop and this one mean the same library: one whose folder is given by the
    /// environment of one terminal does not answer for the session.
    static bool speaksForSession();
    /// What the desktop gave this process to come to the front with. To be read before the platform's plugin
    /// takes it for a window.
    static QString activationToken();

    explicit DesktopService(QDBusConnection bus = QDBusConnection::sessionBus());
    ~DesktopService() override;

    /// Takes the program's name on the bus. False without a bus, or when another program has the name.
    bool offer();
    /// Gives the name back; what was asked until then can be taken after it.
    void withdraw();
    /// The first that waits, or comes within this time.
    std::optional<OpenRequest> take(int waitMs = 0);
    /// From now on everything goes there, what waits first.
    void deliverTo(std::function<void(const OpenRequest &)> receiver);

public Q_SLOTS:
    // The names are those of the interface.
    void Activate(const QVariantMap &platformData);
    void Open(const QStringList &addresses, const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameters, const QVariantMap &platformData);

Q_SIGNALS:
    /// Something waits to be taken.
    void asked();

private:
    void ask(const OpenRequest &request);

    QDBusConnection m_bus;
    QList<OpenRequest> m_waiting;
    std::function<void(const OpenRequest &)> m_receiver;
    bool m_offered = false;
};

} // namespace tarnovel::app
