#include "language/PhotographyQuotes.h"

#include <algorithm>

#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

namespace tarnovel {
namespace {

using namespace Qt::StringLiterals;

const PhotographyQuote *quote(QLatin1StringView id)
{
    const auto rows = PhotographyQuotes::all();
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const auto &each) { return id == QLatin1StringView(each.id); });
    return row == rows.end() ? nullptr : &*row;
}

TEST(PhotographyQuotes, AreThirtyInThreeLanguagesWithOneNameAnAuthor)
{
    ASSERT_EQ(PhotographyQuotes::all().size(), 30U);
    const QRegularExpression han(u"[\\x{4E00}-\\x{9FFF}]"_s);
    const QRegularExpression latinLetters(u"[A-Za-z]"_s);
    QSet<QString> ids;
    QSet<QString> texts;
    QHash<QString, QString> chineseNames;
    for (const PhotographyQuote &row : PhotographyQuotes::all()) {
        SCOPED_TRACE(row.id);
        ids.insert(QString::fromUtf8(row.id));
        for (const auto language : {AppLanguage::chinese, AppLanguage::english, AppLanguage::french}) {
            texts.insert(row.text(language));
        }
        const QString chinese = row.text(AppLanguage::chinese) + row.author(AppLanguage::chinese);
        EXPECT_TRUE(row.text(AppLanguage::chinese).contains(han));
        EXPECT_TRUE(row.author(AppLanguage::chinese).contains(han));
        EXPECT_FALSE(chinese.contains(latinLetters));
        EXPECT_FALSE(row.author(AppLanguage::english).contains(han));
        EXPECT_EQ(row.author(AppLanguage::french), row.author(AppLanguage::english));
        QString &name = chineseNames[row.author(AppLanguage::english)];
        EXPECT_TRUE(name.isEmpty() || name == row.author(AppLanguage::chinese));
        name = row.author(AppLanguage::chinese);
    }
    EXPECT_EQ(ids.size(), 30);
    EXPECT_EQ(texts.size(), 90);
}

TEST(PhotographyQuotes, FollowTheTypographyOfTheirLanguage)
{
    const QRegularExpression wrongBefore(u"[^\\x{202F}][;:!?»]"_s);
    const QRegularExpression wrongAfter(u"«[^\\x{202F}]"_s);
    const QRegularExpression westernMark(u"[,.;:!?'\"]"_s);
    for (const PhotographyQuote &row : PhotographyQuotes::all()) {
        SCOPED_TRACE(row.id);
        const QString french = row.text(AppLanguage::french);
        EXPECT_FALSE(french.contains(u'\''));
        EXPECT_FALSE(french.contains(wrongBefore));
        EXPECT_FALSE(french.contains(wrongAfter));
        const QString chinese = row.text(AppLanguage::chinese);
        EXPECT_FALSE(chinese.contains(westernMark));
        EXPECT_TRUE(chinese.endsWith(u'。'));
    }
}

TEST(PhotographyQuotes, KeepTheKnownTextsToTheLetter)
{
    const PhotographyQuote *closer = quote("capa-closer"_L1);
    ASSERT_NE(closer, nullptr);
    EXPECT_EQ(closer->text(AppLanguage::english),
              u"If your pictures aren't good enough, you're not close enough."_s);
    EXPECT_EQ(closer->text(AppLanguage::french),
              u"Si vos photos ne sont pas assez bonnes, c’est que vous n’êtes pas assez près."_s);
    EXPECT_EQ(closer->author(AppLanguage::chinese), u"罗伯特·卡帕"_s);
    const PhotographyQuote *makeIt = quote("adams-make-it"_L1);
    ASSERT_NE(makeIt, nullptr);
    EXPECT_EQ(makeIt->text(AppLanguage::english), u"You don't take a photograph, you make it."_s);
    EXPECT_EQ(makeIt->text(AppLanguage::french), u"On ne prend pas une photographie, on la fait."_s);
    EXPECT_EQ(makeIt->author(AppLanguage::french), u"Ansel Adams"_s);
}

TEST(PhotographyQuotes, EveryRowCanBeDrawn)
{
    // 3,000 draws miss a given row of 30 with probability (29/30)^3000 < 10^-44.
    QSet<QString> drawn;
    for (int i = 0; i < 3'000; ++i) {
        const auto row = PhotographyQuotes::random();
        ASSERT_TRUE(row);
        drawn.insert(QString::fromUtf8(row->id));
    }
    EXPECT_EQ(drawn.size(), 30);
}

} // namespace
} // namespace tarnovel
