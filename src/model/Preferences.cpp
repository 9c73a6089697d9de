#include "model/Preferences.h"

#include <cmath>

#include <QSettings>

using namespace Qt::StringLiterals;

namespace tarnovel {

Preferences::Preferences()
    : m_settings(std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, u"Tarnovel"_s,
                                             u"Tarnovel"_s))
{
}

Preferences::Preferences(const QString &file)
    : m_settings(std::make_unique<QSettings>(file, QSettings::IniFormat))
{
}

Preferences::~Preferences() = default;

QVariant Preferences::get(const Preference<QVariant> &preference) const
{
    return m_settings->value(preference.key);
}

double Preferences::get(const Preference<double> &preference) const
{
    bool valid = false;
    const double stored = m_settings->value(preference.key).toString().toDouble(&valid);
    return valid && std::isfinite(stored) ? stored : preference.fallback;
}

bool Preferences::get(const Preference<bool> &preference) const
{
    const QString stored = m_settings->value(preference.key).toString();
    return stored == u"true"_s ? true : stored == u"false"_s ? false : preference.fallback;
}

void Preferences::setValue(QLatin1StringView key, const QVariant &value)
{
    m_settings->setValue(key, value);
}

} // namespace tarnovel
