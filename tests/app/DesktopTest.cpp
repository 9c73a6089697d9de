// The window among what a desktop has: its screens and its appearance.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest/qtestsystem.h>
#include <gtest/gtest.h>

#include "app/Appearance.h"
#include "app/kit/Theme.h"
#include "app/window/WindowPlacement.h"

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

} // namespace
} // namespace tarnovel::test
