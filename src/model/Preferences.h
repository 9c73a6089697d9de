#pragma once

#include <memory>

#include <QString>
#include <QVariant>

class QSettings;

namespace tarnovel {

/// The user's preferences, in an INI file. Each key and its default belong to the part that reads it.
class Preferences {
public:
    /// The preferences of the user.
    Preferences();
    explicit Preferences(const QString &file);
    ~Preferences();
    Preferences(const Preferences &) = delete;
    Preferences &operator=(const Preferences &) = delete;

    QVariant value(const QString &key, const QVariant &absent = {}) const;
    /// The default for anything that is not a finite number.
    double number(const QString &key, double absent) const;
    /// Only a clear "true" or "false" counts; the file knows no other types than texts.
    bool boolean(const QString &key, bool absent) const;
    void setValue(const QString &key, const QVariant &value);

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace tarnovel
