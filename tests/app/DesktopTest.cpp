// The window among what a desktop has: its screens and its appearance.

#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest/qtestsystem.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include "app/Appearance.h"
#include "app/kit/Theme.h"
#include "app/window/Activation.h"
#include "app/window/WindowPlacement.h"
#include "support/WindowTest.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;
using namespace app;

TEST(Placement, HoldsTheWindowOnTheScreenWithItsFrame)
{
    const QMargins frame(4, 30, 4, 4);
    const QRect laptop(0, 0, 1366, 768);
    EXPECT_EQ(WindowPlacement::smallestSize({1600, 900}), QSize(1100, 720));
    EXPECT_EQ(WindowPlacement::smallestSize({1066, 640}), QSize(1066, 640));
    EXPECT_EQ(WindowPlacement::smallestSize({800, 480}), QSize(900, 600)) << "no smaller than that";
    // The first window asks for 1440 × 920 wherever it can.
    EXPECT_EQ(WindowPlacement::held({100, 60, 1440, 920}, {0, 0, 1920, 1080}, frame),
              QRect(100, 60, 1440, 920));
    EXPECT_EQ(WindowPlacement::held({0, 0, 1440, 920}, laptop, frame), QRect(4, 30, 1358, 734));
    // A panel at the top, and a window that was left on a larger screen.
    EXPECT_EQ(WindowPlacement::held({1500, 900, 1100, 700}, {0, 28, 1366, 740}, frame),
              QRect(262, 64, 1100, 700));
    EXPECT_EQ(WindowPlacement::held({50, 50, 1000, 640}, {0, 0, 800, 480}, frame).topLeft(), QPoint(4, 30));
}

/// The settings part of a desktop's portal.
class Portal : public QDBusVirtualObject {
public:
    Portal(QDBusConnection desktop, unsigned scheme) : m_desktop(std::move(desktop)), m_scheme(scheme) {}

    void change(unsigned scheme)
    {
        m_scheme = scheme;
        QDBusMessage signal = QDBusMessage::createSignal(
            u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << u"org.freedesktop.appearance"_s << u"color-scheme"_s
               << QVariant::fromValue(QDBusVariant(scheme));
        m_desktop.send(signal);
    }
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &call, const QDBusConnection &connection) override
    {
        const bool scheme = call.arguments().value(0) == u"org.freedesktop.appearance"_s;
        const QVariant value = scheme ? QVariant(m_scheme) : QVariant(true);
        return connection.send(call.createReply(QVariant::fromValue(QDBusVariant(value))));
    }

private:
    QDBusConnection m_desktop;
    unsigned m_scheme;
};

TEST(Appearance, FollowsTheDesktopWhileTheWindowIsOpen)
{
    QProcess daemon;
    daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
    ASSERT_TRUE(daemon.waitForStarted());
    ASSERT_TRUE(daemon.waitForReadyRead());
    const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
    const QTemporaryDir folder;
    {
        QDBusConnection desktop = QDBusConnection::connectToBus(address, u"desktop"_s);
        Portal portal(desktop, 1);
        ASSERT_TRUE(desktop.registerService(u"org.freedesktop.portal.Desktop"_s));
        ASSERT_TRUE(desktop.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, &portal));
        Preferences preferences(folder.filePath(u"preferences.ini"_s));
        const app::Appearance appearance(preferences, QDBusConnection::connectToBus(address, u"program"_s));
        const auto becomes = [](bool dark) {
            return QTest::qWaitFor([dark] { return theme().dark == dark; }, 10'000);
        };
        EXPECT_TRUE(becomes(true)) << "as the desktop is at the start";
        portal.change(0);
        EXPECT_TRUE(becomes(false)) << "the desktop's usual look is light";
        portal.change(1);
        EXPECT_TRUE(becomes(true));
        portal.change(2);
        EXPECT_TRUE(becomes(false));
    }
    QDBusConnection::disconnectFromBus(u"desktop"_s);
    QDBusConnection::disconnectFromBus(u"program"_s);
    daemon.terminate();
    daemon.waitForFinished();
    applyTheme(false);
}

/// A desktop's session of its own: a bus that knows how to start the program, and a home with its library.
class BusActivation : public testing::Test {
protected:
    const QString m_name = u"io.github.tarnovel.Tarnovel"_s;
    QTemporaryDir m_home;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QProcess m_daemon;
    std::optional<QDBusConnection> m_bus;

    void SetUp() override
    {
        const QString services = m_home.filePath(u"offered/dbus-1/services"_s);
        ASSERT_TRUE(QDir().mkpath(services));
        QFile service(services + u'/' + m_name + u".service"_s);
        ASSERT_TRUE(service.open(QIODevice::WriteOnly));
        service.write("[D-BUS Service]\nName=" + m_name.toUtf8() +
                      "\nExec=\"" TARNOVEL_EXECUTABLE "\" --dbus-activated\n");
        service.close();
        m_environment.insert(u"HOME"_s, m_home.path());
        m_environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        m_environment.insert(u"XDG_DATA_DIRS"_s,
                             m_home.filePath(u"offered"_s) + u":/usr/local/share:/usr/share"_s);
        m_environment.remove(u"XDG_DATA_HOME"_s);
        m_environment.remove(u"FLATPAK_ID"_s);
        m_daemon.setProcessEnvironment(m_environment);
        m_daemon.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
        if (!m_daemon.waitForStarted()) {
            GTEST_SKIP() << "there is no dbus-daemon";
        }
        ASSERT_TRUE(m_daemon.waitForReadyRead());
        const QString address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        m_environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
        m_bus = QDBusConnection::connectToBus(address, u"session"_s);
        ASSERT_TRUE(m_bus->isConnected());
    }

    void TearDown() override
    {
        m_bus.reset();
        QDBusConnection::disconnectFromBus(u"session"_s);
        m_daemon.terminate();
        m_daemon.waitForFinished();
    }

    QString photo(const QString &name) const
    {
        QImage image(60, 40, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        const QString path = m_home.filePath(name);
        EXPECT_TRUE(image.save(path, "JPEG"));
        return path;
    }

    QDBusMessage call(const QString &method, const QVariantList &arguments) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(m_name, u"/io/github/tarnovel/Tarnovel"_s,
                                                              u"org.freedesktop.Application"_s, method);
        message.setArguments(arguments);
        return m_bus->call(message, QDBus::Block, 60'000);
    }
    QDBusMessage open(const QString &path) const
    {
        return call(u"Open"_s, {QStringList{QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)},
                                QVariantMap{{u"activation-token"_s, u"leave_TIME1"_s}}});
    }
    uint owner() const { return m_bus->interface()->servicePid(m_name).value(); }
    bool owned() const { return m_bus->interface()->isServiceRegistered(m_name).value(); }

    bool libraryHolds(qsizetype photos) const
    {
        return QTest::qWaitFor(
            [&] {
                QFile file(m_home.filePath(u".local/share/TarnovelMac/session.json"_s));
                return file.open(QIODevice::ReadOnly) &&
                       QJsonDocument::fromJson(file.readAll())[u"photos"_s].toArray().size() == photos;
            },
            60'000);
    }

    std::unique_ptr<QProcess> start(const QStringList &arguments) const
    {
        auto program = std::make_unique<QProcess>();
        program->setProcessEnvironment(m_environment);
        program->start(QStringLiteral(TARNOVEL_EXECUTABLE), arguments);
        EXPECT_TRUE(program->waitForStarted());
        return program;
    }
    bool endOwner() const
    {
        return kill(static_cast<pid_t>(owner()), SIGTERM) == 0 &&
               QTest::qWaitFor([this] { return !owned(); }, 60'000);
    }
};

TEST_F(BusActivation, StartsTheProgramOnceAndBringsEveryPhotoToIt)
{
    EXPECT_EQ(open(photo(u"a 1%.jpg"_s)).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(libraryHolds(1)) << "by its address, whatever its name";
    const uint first = owner();
    EXPECT_EQ(open(photo(u"b.jpg"_s)).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call(u"Activate"_s, {QVariantMap{}}).type(), QDBusMessage::ReplyMessage);
    const auto later = start({photo(u"c.jpg"_s)});
    EXPECT_TRUE(later->waitForFinished(60'000));
    EXPECT_EQ(later->exitCode(), 0);
    EXPECT_TRUE(libraryHolds(3));
    EXPECT_EQ(owner(), first);
    EXPECT_EQ(call(u"ActivateAction"_s, {u"none"_s, QVariantList{}, QVariantMap{}}).type(),
              QDBusMessage::ErrorMessage)
        << "it has no actions";
    EXPECT_TRUE(endOwner());
}

TEST_F(BusActivation, FindsAProgramThatWasStartedWithoutTheBus)
{
    const auto program = start({photo(u"a.jpg"_s)});
    ASSERT_TRUE(QTest::qWaitFor([this] { return owned(); }, 60'000));
    EXPECT_EQ(owner(), program->processId());
    EXPECT_EQ(open(photo(u"b.jpg"_s)).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(libraryHolds(2));
    EXPECT_TRUE(endOwner());
    EXPECT_TRUE(program->waitForFinished(60'000));
}

TEST_F(BusActivation, HandsOverToAProgramThatDoesNotSpeakForTheSession)
{
    m_environment.insert(u"XDG_DATA_HOME"_s, m_home.filePath(u".local/share"_s));
    const auto program = start({photo(u"a.jpg"_s)});
    ASSERT_TRUE(libraryHolds(1));
    EXPECT_FALSE(owned()) << "its library might be another one";
    EXPECT_EQ(open(photo(u"b.jpg"_s)).type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(libraryHolds(2));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !owned(); }, 60'000)) << "the messenger ends";
    program->terminate();
    EXPECT_TRUE(program->waitForFinished(60'000));
}

using WindowActivation = WindowTest;

TEST_F(WindowActivation, TellsTheDesktopWhenTheUserActed)
{
    window().openPhotos({}, u"starter_TIME4711"_s);
    EXPECT_FALSE(qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN")) << "what it starts would take it over";
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || QGuiApplication::platformName() != u"xcb"_s) {
        return; // only X11 lets a program read what it was told
    }
    const auto reply = [](auto *given) {
        return std::unique_ptr<std::decay_t<decltype(*given)>, decltype(&std::free)>(given, &std::free);
    };
    xcb_connection_t *display = x11->connection();
    const QByteArrayView name("_NET_USER_TIME");
    const auto atom = reply(xcb_intern_atom_reply(
        display, xcb_intern_atom(display, 0, static_cast<uint16_t>(name.size()), name.data()), nullptr));
    const auto property =
        reply(xcb_get_property_reply(display,
                                     xcb_get_property(display, 0, static_cast<xcb_window_t>(window().winId()),
                                                      atom->atom, XCB_ATOM_CARDINAL, 0, 1),
                                     nullptr));
    ASSERT_EQ(xcb_get_property_value_length(property.get()), 4);
    EXPECT_EQ(*static_cast<const uint32_t *>(xcb_get_property_value(property.get())), 4711U);
}

TEST(StartupId, TellsWhenTheUserActed)
{
    EXPECT_EQ(app::Activation::timeOfStartup(u"files-4711-host-tarnovel-3_TIME81723"_s), 81723U);
    EXPECT_EQ(app::Activation::timeOfStartup(u"a_TIME1_TIME4294967295"_s), 4294967295U);
    for (const char *id : {"", "a1b2-c3", "x_TIME", "x_TIME0", "x_TIME-1", "x_TIME4294967296", "x_TIME12z"}) {
        EXPECT_EQ(app::Activation::timeOfStartup(QString::fromLatin1(id)), std::nullopt) << id;
    }
}

} // namespace
} // namespace tarnovel::test
