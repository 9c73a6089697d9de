#include "app/DesktopService.h"

#include <cstring>
#include <utility>

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QEventLoop>
#include <QTimer>

#include "app/window/FileDrops.h"
#include "base/Log.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

const QString serviceName = u"io.github.tarnovel.Tarnovel"_s;
const QString objectPath = u"/io/github/tarnovel/Tarnovel"_s;

QString tokenOf(const QVariantMap &platformData)
{
    const QString token = platformData.value(u"activation-token"_s).toString();
    return token.isEmpty() ? platformData.value(u"desktop-startup-id"_s).toString() : token;
}

} // namespace

bool DesktopService::startedByBus(int argc, char **argv)
{
    return argc > 1 && std::strcmp(argv[1], argument) == 0;
}

bool DesktopService::speaksForSession()
{
    return qEnvironmentVariableIsEmpty("XDG_DATA_HOME") || qEnvironmentVariableIsSet("FLATPAK_ID");
}

QString DesktopService::activationToken()
{
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qEnvironmentVariable("DESKTOP_STARTUP_ID") : token;
}

DesktopService::DesktopService(QDBusConnection bus) : m_bus(std::move(bus)) {}

DesktopService::~DesktopService()
{
    withdraw();
    m_bus.unregisterObject(objectPath);
}

bool DesktopService::offer()
{
    // The object comes first: with the name, calls come that have waited for it.
    m_offered = m_bus.isConnected() &&
                (m_bus.objectRegisteredAt(objectPath) == this ||
                 m_bus.registerObject(objectPath, this, QDBusConnection::ExportAllSlots)) &&
                m_bus.registerService(serviceName);
    if (!m_offered) {
        qCInfo(logApp) << "the desktop cannot ask over the bus:" << m_bus.lastError().message();
    }
    return m_offered;
}

void DesktopService::withdraw()
{
    if (std::exchange(m_offered, false)) {
        m_bus.unregisterService(serviceName);
    }
}

std::optional<OpenRequest> DesktopService::take(int waitMs)
{
    QCoreApplication::processEvents();
    if (m_waiting.isEmpty() && waitMs > 0) {
        QEventLoop loop;
        connect(this, &DesktopService::asked, &loop, &QEventLoop::quit);
        QTimer::singleShot(waitMs, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return m_waiting.isEmpty() ? std::nullopt : std::optional(m_waiting.takeFirst());
}

void DesktopService::deliverTo(std::function<void(const OpenRequest &)> receiver)
{
    m_receiver = std::move(receiver);
    for (const OpenRequest &request : std::exchange(m_waiting, {})) {
        m_receiver(request);
    }
}

void DesktopService::Activate(const QVariantMap &platformData)
{
    ask({{}, tokenOf(platformData)});
}

void DesktopService::Open(const QStringList &addresses, const QVariantMap &platformData)
{
    OpenRequest request = {{}, tokenOf(platformData)};
    for (const QString &address : addresses) {
        request.paths.append(FileDrops::pathOf(address));
    }
    ask(request);
}

void DesktopService::ActivateAction(const QString &name, const QVariantList &, const QVariantMap &)
{
    if (calledFromDBus()) {
        sendErrorReply(QDBusError::InvalidArgs, u"There is no action "_s + name);
    }
}

void DesktopService::ask(const OpenRequest &request)
{
    if (m_receiver) {
        m_receiver(request);
    } else {
        m_waiting.append(request);
        Q_EMIT asked();
    }
}

} // namespace tarnovel::app
