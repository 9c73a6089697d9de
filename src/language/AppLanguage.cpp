#include "language/AppLanguage.h"

#include <array>
#include <memory>
#include <mutex>
#include <utility>

namespace tarnovel {

using namespace Qt::StringLiterals;

namespace {

struct LanguageRow {
    AppLanguage language;
    QString name;
    QString code;
};

const std::array<LanguageRow, 3> &languageRows()
{
    static const std::array<LanguageRow, 3> rows{{
        {AppLanguage::chinese, u"chinese"_s, u"zh"_s},
        {AppLanguage::english, u"english"_s, u"en"_s},
        {AppLanguage::french, u"french"_s, u"fr"_s},
    }};
    return rows;
}

class SourceHolder {
public:
    std::shared_ptr<const LanguageSources> get()
    {
        const std::scoped_lock lock(m_mutex);
        return m_sources;
    }
    void set(LanguageSources sources)
    {
        auto replacement = std::make_shared<const LanguageSources>(std::move(sources));
        const std::scoped_lock lock(m_mutex);
        m_sources.swap(replacement);
    }

private:
    std::mutex m_mutex;
    std::shared_ptr<const LanguageSources> m_sources =
        std::make_shared<const LanguageSources>(LanguageSources{{}, systemLanguagesFromEnvironment});
};

SourceHolder &sourceHolder()
{
    static SourceHolder holder;
    return holder;
}

AppLanguage languageFromTag(const QString &tag)
{
    if (tag.startsWith("zh"_L1, Qt::CaseInsensitive)) {
        return AppLanguage::chinese;
    }
    return tag.startsWith("fr"_L1, Qt::CaseInsensitive) ? AppLanguage::french : AppLanguage::english;
}

/// "fr_CA.UTF-8@euro" as "fr-CA"; empty for the locales that name no language.
QString tagFromLocale(const QString &locale)
{
    QString tag = locale.section(u'.', 0, 0).section(u'@', 0, 0).trimmed();
    if (tag == "C"_L1 || tag == "POSIX"_L1) {
        return {};
    }
    return tag.replace(u'_', u'-');
}

} // namespace

QString localized(const Text &text, AppLanguage language)
{
    switch (language) {
    case AppLanguage::chinese:
        return QString::fromUtf8(text.zh);
    case AppLanguage::english:
        return QString::fromUtf8(text.en);
    case AppLanguage::french:
        return QString::fromUtf8(text.fr);
    }
    Q_UNREACHABLE();
}

QString localized(const Text &text)
{
    return localized(text, currentLanguage());
}

void setLanguageSources(LanguageSources sources)
{
    sourceHolder().set(std::move(sources));
}

AppLanguage currentLanguage()
{
    // The sources are called outside the lock: a source may itself show a text or be slow.
    const std::shared_ptr<const LanguageSources> sources = sourceHolder().get();
    if (sources->preference) {
        if (const auto chosen = languageFromName(sources->preference())) {
            return *chosen;
        }
    }
    const QStringList languages = sources->systemLanguages ? sources->systemLanguages() : QStringList();
    return languages.isEmpty() ? AppLanguage::english : languageFromTag(languages.first());
}

QStringList systemLanguagesFromEnvironment()
{
    QStringList locales = qEnvironmentVariable("LANGUAGE").split(u':', Qt::SkipEmptyParts);
    for (const char *variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        // An empty variable counts as unset; the first that is set hides the others.
        if (const QString locale = qEnvironmentVariable(variable); !locale.isEmpty()) {
            locales.append(locale);
            break;
        }
    }
    QStringList tags;
    for (const QString &locale : std::as_const(locales)) {
        const QString tag = tagFromLocale(locale);
        if (!tag.isEmpty() && !tags.contains(tag)) {
            tags.append(tag);
        }
    }
    return tags;
}

QString languageCode(AppLanguage language)
{
    for (const LanguageRow &row : languageRows()) {
        if (row.language == language) {
            return row.code;
        }
    }
    return {};
}

std::optional<AppLanguage> languageFromCode(const QString &code)
{
    for (const LanguageRow &row : languageRows()) {
        if (row.code == code) {
            return row.language;
        }
    }
    return std::nullopt;
}

std::optional<AppLanguage> languageFromName(const QString &name)
{
    for (const LanguageRow &row : languageRows()) {
        if (row.name == name) {
            return row.language;
        }
    }
    return std::nullopt;
}

QString languageName(std::optional<AppLanguage> language)
{
    return language ? languageRows().at(static_cast<std::size_t>(*language)).name : u"system"_s;
}

} // namespace tarnovel
