#include "app/Appearance.h"

#include <array>

#include <QApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QLoggingCategory>
#include <QPalette>

#include "app/kit/Motion.h"
#include "app/kit/Theme.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr std::array names = {"system", "light", "dark"};

const QString settingsGroup = u"org.freedesktop.appearance"_s;
const QString settingsKey = u"color-scheme"_s;

const QString motionGroup = u"org.gnome.desktop.interface"_s;
const QString motionKey = u"enable-animations"_s;

/// Some portals wrap the value twice.
QVariant unwrapped(QVariant value)
{
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

/// 1 prefers dark, 2 prefers light; 0, the desktop's usual look, is light as well.
bool isDark(const QVariant &value)
{
    return unwrapped(value).toUInt() == 1;
}

} // namespace

Appearance::Appearance(Preferences &preferences, const QDBusConnection &bus)
    : m_preferences(preferences),
      m_paletteDark(QApplication::palette().color(QPalette::Window).lightness() < 128)
{
    apply();
    askDesktop(bus);
}

AppearanceChoice Appearance::choice() const
{
    const QString stored = m_preferences.get(PreferenceKeys::appearance).toString();
    for (size_t i = 0; i < names.size(); ++i) {
        if (stored == QLatin1StringView(names.at(i))) {
            return static_cast<AppearanceChoice>(i);
        }
    }
    return AppearanceChoice::system;
}

void Appearance::choose(AppearanceChoice choice)
{
    m_preferences.set(PreferenceKeys::appearance,
                      {QString::fromLatin1(names.at(static_cast<size_t>(choice)))});
    apply();
}

void Appearance::askDesktop(QDBusConnection bus)
{
    if (!bus.isConnected()) {
        return;
    }
    const QString service = u"org.freedesktop.portal.Desktop"_s;
    const QString path = u"/org/freedesktop/portal/desktop"_s;
    const QString interface = u"org.freedesktop.portal.Settings"_s;
    // The slot's signature names a type that only the metatype system can look up.
    qRegisterMetaType<QDBusVariant>("QDBusVariant");
    if (!bus.connect(service, path, interface, u"SettingChanged"_s, this,
                     SLOT(settingChanged(QString, QString, QDBusVariant)))) {
        qWarning("the desktop's changes of appearance will not be heard");
    }
    const auto ask = [&](const QString &group, const QString &key) {
        QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, u"Read"_s);
        call.setArguments({group, key});
        auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
            const QDBusPendingReply<QVariant> reply = *watcher;
            if (reply.isValid()) {
                take(group, key, reply.value());
            }
            watcher->deleteLater();
        });
    };
    ask(settingsGroup, settingsKey);
    ask(motionGroup, motionKey);
}

void Appearance::take(const QString &group, const QString &key, const QVariant &value)
{
    if (group == settingsGroup && key == settingsKey) {
        m_desktopDark = isDark(value);
        apply();
    } else if (group == motionGroup && key == motionKey) {
        Motion::setReduced(!unwrapped(value).toBool());
    }
}

void Appearance::settingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    take(group, key, value.variant());
}

void Appearance::apply()
{
    const AppearanceChoice chosen = choice();
    applyTheme(chosen == AppearanceChoice::system ? m_desktopDark.value_or(m_paletteDark)
                                                  : chosen == AppearanceChoice::dark);
}

} // namespace tarnovel::app
