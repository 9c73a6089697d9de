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

QVariant Preferences::value(const QString &key, const QVariant &absent) const
{
    return m_settings->value(key, absent);
}

double Preferences::number(const QString &key, double absent) const
{
    bool valid = false;
    const double stored = value(key).toString().toDouble(&valid);
    return valid && std::isfinite(stored) ? stored : absent;
}

bool Preferences::boolean(const QString &key, bool absent) const
{
    const QString stored = value(key).toString();
    return stored == u"true"_s ? true : stored == u"false"_s ? false : absent;
}

void Preferences::setValue(const QString &key, const QVariant &value)
{
    m_settings->setValue(key, value);
}

} // namespace tarnovel
