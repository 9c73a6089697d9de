#pragma once

#include <functional>
#include <optional>

#include <QString>
#include <QStringList>

namespace tarnovel {

enum class AppLanguage { chinese, english, french };

/// One text in its three variants, in UTF-8. Call sites write all three in place:
/// `localized({"取消", "Cancel", "Annuler"})`.
struct Text {
    const char *zh;
    const char *en;
    const char *fr;
};

/// The variant of the current language.
QString localized(const Text &text);
QString localized(const Text &text, AppLanguage language);

/// Where the interface language is learned from. Both are called on whatever thread asks for a text, so they
/// must be safe to call from several at once; an absent one counts as giving nothing.
struct LanguageSources {
    /// The stored preference "language": a name as languageName() writes it, or empty.
    std::function<QString()> preference;
    /// The languages the system's user prefers, best first, as tags such as "zh-Hans-CN".
    std::function<QStringList()> systemLanguages;
};

/// Replaces the sources from the next text on. Without a call there is no preference, and the system's
/// languages are systemLanguagesFromEnvironment().
void setLanguageSources(LanguageSources sources);

/// The preference when it names a language, else the system's first language: Chinese for "zh…", French for
/// "fr…", English for any other and for none. Read fresh at each call, from any thread.
AppLanguage currentLanguage();

/// What the environment asks for in the order of the message catalogues: the list of LANGUAGE, then the first
/// that is set of LC_ALL, LC_MESSAGES and LANG. "zh_CN.UTF-8" comes out as "zh-CN"; the C and POSIX locales
/// name no language.
QStringList systemLanguagesFromEnvironment();

/// "zh", "en" or "fr".
QString languageCode(AppLanguage language);

/// None for anything but "zh", "en" and "fr".
std::optional<AppLanguage> languageFromCode(const QString &code);

/// The language of a stored preference; none for "system" and for anything unknown.
std::optional<AppLanguage> languageFromName(const QString &name);

/// The name under which the choice is stored: "chinese", "english", "french", or "system" for none.
QString languageName(std::optional<AppLanguage> language);

} // namespace tarnovel
