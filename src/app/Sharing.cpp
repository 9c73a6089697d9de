#include "app/Sharing.h"

#include <utility>

#include <QClipboard>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>

#include "base/Log.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app::Sharing {

namespace {

const QString portalService = u"org.freedesktop.portal.Desktop"_s;
const QString portalPath = u"/org/freedesktop/portal/desktop"_s;
const QString mailInterface = u"org.freedesktop.portal.Email"_s;

QList<QUrl> urls(const QStringList &files)
{
    QList<QUrl> list;
    for (const QString &file : files) {
        list.append(QUrl::fromLocalFile(file));
    }
    return list;
}

} // namespace

void copyFiles(const QStringList &files)
{
    auto *data = new QMimeData;
    data->setUrls(urls(files));
    QGuiApplication::clipboard()->setMimeData(data);
}

void showInFolder(const QString &folder, const QStringList &files)
{
    const auto openFolder = [folder] { QDesktopServices::openUrl(QUrl::fromLocalFile(folder)); };
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (files.isEmpty() || !bus.isConnected()) {
        openFolder();
        return;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    QStringList marked;
    for (const QUrl &url : urls(files)) {
        marked.append(url.toString());
    }
    call.setArguments({marked, QString()});
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, openFolder] {
        if (watcher->isError()) {
            qCInfo(logApp) << "no file manager shows files:" << watcher->error().message();
            openFolder();
        }
        watcher->deleteLater();
    });
}

void askForMail(QObject *asker, std::function<void()> answered)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath,
                                                       u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setArguments({mailInterface, u"version"_s});
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), asker);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, asker,
                     [watcher, answered = std::move(answered)] {
                         if (!watcher->isError()) {
                             answered();
                         }
                         watcher->deleteLater();
                     });
}

void sendMail(const QStringList &files)
{
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
    QList<QDBusUnixFileDescriptor> attachments;
    for (const QString &name : files) {
        QFile file(name);
        if (file.open(QIODevice::ReadOnly)) {
            attachments.append(QDBusUnixFileDescriptor(file.handle()));
        }
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(portalService, portalPath, mailInterface, u"ComposeEmail"_s);
    const QVariantMap options = {{u"attachment_fds"_s, QVariant::fromValue(attachments)}};
    call.setArguments({QString(), options});
    QDBusConnection::sessionBus().asyncCall(call);
}

} // namespace tarnovel::app::Sharing
