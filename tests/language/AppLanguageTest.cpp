#include "language/AppLanguage.h"

#include <array>
#include <atomic>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace tarnovel {
namespace {

using namespace Qt::StringLiterals;

constexpr std::array variables{"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};

/// Puts the default sources and the environment back when a test ends.
class AppLanguageTest : public testing::Test {
protected:
    void SetUp() override
    {
        for (std::size_t i = 0; i < variables.size(); ++i) {
            m_before[i] = qgetenv(variables[i]);
            qunsetenv(variables[i]);
        }
    }
    void TearDown() override
    {
        setLanguageSources({{}, systemLanguagesFromEnvironment});
        for (std::size_t i = 0; i < variables.size(); ++i) {
            m_before[i].isNull() ? qunsetenv(variables[i]) : qputenv(variables[i], m_before[i]);
        }
    }

private:
    std::array<QByteArray, variables.size()> m_before;
};

TEST_F(AppLanguageTest, PreferenceWinsAndTheSystemsFirstLanguageDecidesOtherwise)
{
    struct Row {
        QString preference;
        QStringList system;
        AppLanguage expected;
    };
    const std::vector<Row> rows{
        {u""_s, {u"zh-Hans-CN"_s, u"fr-FR"_s}, AppLanguage::chinese},
        {u""_s, {u"fr-CA"_s}, AppLanguage::french},
        {u""_s, {u"de-DE"_s, u"fr-FR"_s}, AppLanguage::english},
        {u""_s, {}, AppLanguage::english},
        {u"system"_s, {u"zh-TW"_s}, AppLanguage::chinese},
        {u"english"_s, {u"zh-CN"_s}, AppLanguage::english},
        {u"chinese"_s, {u"fr-FR"_s}, AppLanguage::chinese},
        {u"klingon"_s, {u"fr-FR"_s}, AppLanguage::french},
    };
    for (const Row &row : rows) {
        setLanguageSources({[&] { return row.preference; }, [&] { return row.system; }});
        EXPECT_EQ(currentLanguage(), row.expected)
            << row.preference.toStdString() << " / " << row.system.join(u' ').toStdString();
    }
    setLanguageSources({});
    EXPECT_EQ(currentLanguage(), AppLanguage::english);
}

TEST_F(AppLanguageTest, ANewPreferenceAppliesToTheNextText)
{
    constexpr Text text{"取消", "Cancel", "Annuler"};
    QString preference = u"french"_s;
    setLanguageSources({[&] { return preference; }, {}});
    EXPECT_EQ(localized(text), u"Annuler"_s);
    preference = u"chinese"_s;
    EXPECT_EQ(localized(text), u"取消"_s);
    EXPECT_EQ(localized(text, AppLanguage::english), u"Cancel"_s);
}

TEST_F(AppLanguageTest, EnvironmentIsReadInTheOrderOfMessageCatalogues)
{
    EXPECT_EQ(systemLanguagesFromEnvironment(), QStringList());
    qputenv("LANG", "zh_CN.UTF-8");
    EXPECT_EQ(systemLanguagesFromEnvironment(), QStringList{u"zh-CN"_s});
    EXPECT_EQ(currentLanguage(), AppLanguage::chinese);
    qputenv("LC_MESSAGES", "fr_FR@euro");
    EXPECT_EQ(systemLanguagesFromEnvironment(), QStringList{u"fr-FR"_s});
    for (const char *none : {"C", "POSIX", "C.UTF-8"}) {
        qputenv("LC_ALL", none);
        EXPECT_EQ(systemLanguagesFromEnvironment(), QStringList()) << none;
        EXPECT_EQ(currentLanguage(), AppLanguage::english) << none;
    }
    qputenv("LC_ALL", "fr_CA.UTF-8");
    qputenv("LANGUAGE", "zh_TW::zh_TW:en");
    EXPECT_EQ(systemLanguagesFromEnvironment(), (QStringList{u"zh-TW"_s, u"en"_s, u"fr-CA"_s}));
    EXPECT_EQ(currentLanguage(), AppLanguage::chinese);
}

TEST_F(AppLanguageTest, NamesAndCodesComeBackAndOthersAreRefused)
{
    const std::array<std::pair<AppLanguage, QString>, 3> codes{
        {{AppLanguage::chinese, u"zh"_s}, {AppLanguage::english, u"en"_s}, {AppLanguage::french, u"fr"_s}}};
    for (const auto &[language, code] : codes) {
        EXPECT_EQ(languageFromCode(code), language);
        EXPECT_EQ(languageFromName(languageName(language)), language);
    }
    EXPECT_EQ(languageName(AppLanguage::french), u"french"_s);
    EXPECT_EQ(languageName({}), u"system"_s);
    EXPECT_EQ(languageFromName(u"system"_s), std::nullopt);
    EXPECT_EQ(languageFromName(u"French"_s), std::nullopt);
    EXPECT_EQ(languageFromCode(u"fr-FR"_s), std::nullopt);
    EXPECT_EQ(languageFromCode({}), std::nullopt);
}

TEST_F(AppLanguageTest, SourcesMayChangeWhileOtherThreadsReadTexts)
{
    std::atomic<int> strange = 0;
    {
        std::vector<std::jthread> readers;
        for (int thread = 0; thread < 2; ++thread) {
            readers.emplace_back([&strange] {
                for (int i = 0; i < 5'000; ++i) {
                    const QString shown = localized({"是", "Yes", "Oui"});
                    strange += shown != u"Yes"_s && shown != u"Oui"_s;
                }
            });
        }
        for (int i = 0; i < 5'000; ++i) {
            setLanguageSources({[i] { return i % 2 == 0 ? u"french"_s : u"english"_s; }, {}});
        }
    }
    EXPECT_EQ(strange, 0);
}

} // namespace
} // namespace tarnovel
