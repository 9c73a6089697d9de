#include "language/Plural.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

TEST(Plural, FollowsTheLanguage)
{
    const Text one = {"%1 张", "%1 photo", "%1 photo"};
    const Text other = {"%1 张", "%1 photos", "%1 photos"};
    const struct {
        QString language;
        QStringList zeroOneTwo;
    } rows[] = {{u"chinese"_s, {u"0 张"_s, u"1 张"_s, u"2 张"_s}},
                {u"english"_s, {u"0 photos"_s, u"1 photo"_s, u"2 photos"_s}},
                {u"french"_s, {u"0 photo"_s, u"1 photo"_s, u"2 photos"_s}}};
    for (const auto &row : rows) {
        setLanguageSources({[language = row.language] { return QString(language); }, {}});
        for (int count = 0; count < 3; ++count) {
            EXPECT_EQ(counted(count, one, other), row.zeroOneTwo.at(count));
        }
    }
    setLanguageSources({});
    EXPECT_EQ(counted(1, {"", "The photo", ""}, {"", "All %1 photos", ""}), u"The photo"_s);
}

} // namespace
} // namespace tarnovel
