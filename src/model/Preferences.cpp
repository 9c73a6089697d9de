#include "model/Preferences.h"

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

void Preferences::setValue(const QString &key, const QVariant &value)
{
    m_settings->setValue(key, value);
}

} // namespace tarnovel
