#pragma once

#include <memory>

#include <QString>
#include <QVariant>

class QSettings;

namespace tarnovel {

/// A preference of one type, and what holds while it is not set, or not understood.
template<typename Value>
struct Preference {
    QLatin1StringView key;
    Value fallback = {};
};

/// One whose reader knows what to make of it.
template<>
struct Preference<QVariant> {
    QLatin1StringView key;
};

/// Every preference there is.
namespace PreferenceKeys {
/// "system" or the name of a language.
inline constexpr Preference<QVariant> language{QLatin1StringView("language")};
/// "system", "light" or "dark".
inline constexpr Preference<QVariant> appearance{QLatin1StringView("appearance")};
inline constexpr Preference<bool> autoApplyLastStyle{QLatin1StringView("autoApplyLastStyle"), true};
/// Whether a saved style leaves a photo its own camera texts.
inline constexpr Preference<bool> keepCameraTexts{QLatin1StringView("keepCameraTexts"), true};
/// Seconds since 2001 of the last change that was saved.
inline constexpr Preference<double> lastEdit{QLatin1StringView("lastEdit")};
inline constexpr Preference<double> exportResolution{QLatin1StringView("macExportResolution"), 4096};
inline constexpr Preference<bool> exportPng{QLatin1StringView("macExportPNG")};
/// In megabytes; 0 is no limit.
inline constexpr Preference<double> exportMaxMB{QLatin1StringView("macExportMaxMB")};
/// How exported files are called; empty for the default.
inline constexpr Preference<QVariant> exportName{QLatin1StringView("exportName")};
inline constexpr Preference<double> successfulExportCount{QLatin1StringView("successfulExportCount")};
inline constexpr Preference<QVariant> lastExportReviewVersion{QLatin1StringView("lastExportReviewVersion")};
/// Where the file dialogs open.
inline constexpr Preference<QVariant> photosFolder{QLatin1StringView("photosFolder")};
inline constexpr Preference<QVariant> exportFolder{QLatin1StringView("exportFolder")};
inline constexpr Preference<bool> windowSized{QLatin1StringView("macWindowSized")};
inline constexpr Preference<QVariant> windowGeometry{QLatin1StringView("windowGeometry")};
inline constexpr Preference<QVariant> windowSize{QLatin1StringView("windowSize")};
} // namespace PreferenceKeys

/// The user's preferences, in an INI file.
class Preferences {
public:
    /// The preferences of the user.
    Preferences();
    explicit Preferences(const QString &file);
    ~Preferences();
    Preferences(const Preferences &) = delete;
    Preferences &operator=(const Preferences &) = delete;

    QVariant get(const Preference<QVariant> &preference) const;
    /// The fallback for anything that is not a finite number.
    double get(const Preference<double> &preference) const;
    /// Only a clear "true" or "false" counts; the file knows no other types than texts.
    bool get(const Preference<bool> &preference) const;
    template<typename Value>
    void set(const Preference<Value> &preference, const Value &value)
    {
        setValue(preference.key, value);
    }

private:
    void setValue(QLatin1StringView key, const QVariant &value);

    std::unique_ptr<QSettings> m_settings;
};

} // namespace tarnovel
