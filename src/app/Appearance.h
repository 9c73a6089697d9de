#pragma once

#include <optional>

#include <QDBusConnection>
#include <QObject>

#include "model/Preferences.h"

class QDBusVariant;

namespace tarnovel::app {

enum class AppearanceChoice { system, light, dark };

/// Light or dark: the user's choice, or what the desktop says through its portal, or else what the palette of
/// the platform looks like. The theme follows at once. Whether the desktop wants little motion is learned
/// here, too.
class Appearance : public QObject {
    Q_OBJECT

public:
    /// `bus` is where the desktop's portal is asked.
    explicit Appearance(Preferences &preferences, const QDBusConnection &bus = QDBusConnection::sessionBus());

    AppearanceChoice choice() const;
    void choose(AppearanceChoice choice);

private Q_SLOTS:
    void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void askDesktop(QDBusConnection bus);
    void take(const QString &group, const QString &key, const QVariant &value);
    void apply();

    Preferences &m_preferences;
    bool m_paletteDark;
    std::optional<bool> m_desktopDark;
};

} // namespace tarnovel::app
