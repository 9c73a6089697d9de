#include <gtest/gtest.h>

#include "render/Emoji.h"
#include "render/Fonts.h"
#include "render/TestPictures.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

TextLayer layer(const QString &id, const QString &fontStyle, const QString &text = u"08"_s)
{
    TextLayer made;
    made.id = id;
    made.text = text;
    made.visible = true;
    made.size = 0.03;
    made.fontStyle = fontStyle;
    return made;
}

TEST(Fonts, TypewriterAndHandwritingHaveOneWeight)
{
    for (const auto &[style, brand] : {std::pair(u""_s, QFont::DemiBold),
                                       {u"serif"_s, QFont::DemiBold},
                                       {u"rounded"_s, QFont::DemiBold},
                                       {u"mono"_s, QFont::Normal},
                                       {u"handwritten"_s, QFont::Normal}}) {
        EXPECT_EQ(CompositionRenderer::font(layer(u"brand"_s, style), 1000).weight(), brand)
            << style.toStdString();
        EXPECT_EQ(CompositionRenderer::font(layer(u"title"_s, style), 1000).weight(), QFont::Normal)
            << style.toStdString();
    }
}

TEST(Fonts, RoundedAndLargeTypeHaveCutsOfTheirOwn)
{
    EXPECT_EQ(Fonts::face(u"rounded"_s, QFont::Normal, 20).families().first(), u"Quicksand Medium"_s);
    EXPECT_EQ(Fonts::face(u"rounded"_s, QFont::DemiBold, 20).families().first(), u"Quicksand"_s);
    TextLayer title = layer(u"title"_s, {});
    EXPECT_EQ(CompositionRenderer::font(title, 1000).families().first(), u"Inter"_s);
    title.size = 0.05;
    EXPECT_EQ(CompositionRenderer::font(title, 1000).families().first(), u"Inter Display"_s);
    EXPECT_EQ(CompositionRenderer::font(title, 10).families().first(),
              u"Inter Display"_s); // at any size of canvas
}

TEST(Fonts, AMissingFamilyGivesWayToOneOfItsKindAndNamesItsPackage)
{
    const auto without = [](const QString &missing) {
        return [missing](const QString &family) { return family != missing; };
    };
    const Fonts::Choice whole = Fonts::choose(u"serif"_s, Fonts::Cut::Text, QFont::Normal, without(u"x"_s));
    EXPECT_EQ(whole.families, (QStringList{u"Noto Serif"_s, u"Noto Serif CJK SC"_s, u"Noto Color Emoji"_s}));
    EXPECT_TRUE(whole.missingPackages.isEmpty());
    for (const auto &[style, family, package, generic] :
         {std::tuple(u"serif"_s, u"Noto Serif"_s, u"fonts-noto-core"_s, u"serif"_s),
          {u"rounded"_s, u"Quicksand Medium"_s, u"fonts-quicksand"_s, u"sans-serif"_s},
          {u"mono"_s, u"JetBrains Mono"_s, u"fonts-jetbrains-mono"_s, u"monospace"_s},
          {u"handwritten"_s, u"LXGW WenKai"_s, u"fonts-lxgw-wenkai"_s, u"cursive"_s},
          {u""_s, u"Noto Sans CJK SC"_s, u"fonts-noto-cjk"_s, u"sans-serif"_s}}) {
        const Fonts::Choice choice = Fonts::choose(style, Fonts::Cut::Text, QFont::Normal, without(family));
        EXPECT_EQ(choice.missingPackages, QStringList(package));
        ASSERT_EQ(choice.families.size(), 3);
        EXPECT_FALSE(choice.families.contains(family));
        EXPECT_EQ(choice.families.at(1), generic);
        EXPECT_EQ(choice.families.last(), u"Noto Color Emoji"_s);
    }
    const Fonts::Choice nothing =
        Fonts::choose(u"mono"_s, Fonts::Cut::Text, QFont::Normal, [](const QString &) { return false; });
    EXPECT_EQ(nothing.families, QStringList(u"monospace"_s));
    EXPECT_EQ(nothing.missingPackages.size(), 2);
    // Few texts have emoji: the others do not miss their font.
    const Fonts::Choice noPictures =
        Fonts::choose(u"serif"_s, Fonts::Cut::Text, QFont::Normal, without(u"Noto Color Emoji"_s));
    EXPECT_EQ(noPictures.families, (QStringList{u"Noto Serif"_s, u"Noto Serif CJK SC"_s}));
    EXPECT_TRUE(noPictures.missingPackages.isEmpty());
}

TEST(EmojiStretches, AreWhatUnicodeShowsAsPictures)
{
    struct Row {
        QString text;
        QList<TextStretch> stretches;
    };
    const std::vector<Row> rows{
        {u"2024 · f/2.8 ©™ 中文"_s, {}},
        {u"a☀\uFE0Fb"_s, {{1, 2}}},
        {u"☀ and ❤"_s, {}}, // text by default
        {u"❤\uFE0F❤\uFE0F"_s, {{0, 4}}},
        {u"😀\uFE0E"_s, {}},
        {u"x😀🌅y"_s, {{1, 4}}},
        {u"1\uFE0F\u20E3 2\u20E3"_s, {{0, 3}, {4, 2}}},
        {u"⭐⚡"_s, {{0, 2}}},
        {u"🇫🇷"_s, {{0, 4}}},
        {u"👩\u200D👧"_s, {{0, 5}}},
        {u"→ ♪ ✓"_s, {}},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(emojiStretches(row.text), row.stretches) << row.text.toStdString();
    }
}

TEST(Draw, SetsEmojiInColourInEveryFace)
{
    for (const QString &text : {u"☀\uFE0F"_s, u"❤\uFE0F"_s, u"7\uFE0F\u20E3"_s, u"🌅"_s}) {
        for (const QString &face : {u""_s, u"serif"_s, u"mono"_s, u"handwritten"_s, u"rounded"_s}) {
            PhotoItem item = photoItem(0, 0);
            item.settings.layers = {layer(u"title"_s, face, text)};
            item.settings.layers[0].size = 0.2;
            item.settings.layers[0].ink = {0, 0, 0};
            const QImage canvas = drawn(item, {300, 300}, {});
            int colourful = 0;
            for (int y = 0; y < 300; ++y) {
                for (int x = 0; x < 300; ++x) {
                    colourful += canvas.pixelColor(x, y).hsvSaturation() > 60;
                }
            }
            EXPECT_GT(colourful, 300) << text.toStdString() << ' ' << face.toStdString();
        }
    }
}

TEST(Draw, SetsASequenceAsOnePicture)
{
    // A keycap, a family and a flag are as wide as a sun; set apart, they would be two or three times as
    // wide.
    const auto width = [](const QString &text) {
        TextLayer made = layer(u"title"_s, {}, text);
        return CompositionRenderer::textRect(made, {1000, 1000}).width();
    };
    const double sun = width(u"☀\uFE0F"_s);
    for (const QString &text : {u"1\uFE0F\u20E3"_s, u"#\uFE0F\u20E3"_s, u"👩\u200D👧\u200D👦"_s, u"🇫🇷"_s,
                                u"❤\uFE0F\u200D🔥"_s, u"👍🏽"_s}) {
        EXPECT_NEAR(width(text), sun, 0.1 * sun) << text.toStdString();
    }
}

TEST(Draw, LeavesOutTypeTooSmallToBeSeen)
{
    PhotoItem item = photoItem(0, 0);
    QImage paper(90, 120, QImage::Format_RGB32);
    paper.fill(Qt::white);
    for (const double size : {1e-320, 1e-300, 1e-9, 0.0, -1.0}) {
        item.settings.layers = {layer(u"title"_s, {}, u"Text"_s)};
        item.settings.layers[0].size = size;
        EXPECT_EQ(drawn(item, {90, 120}, {}), paper) << size;
        EXPECT_TRUE(CompositionRenderer::textRect(item.settings.layers[0], {90, 120}).isEmpty());
        item.settings.layers[0].imageFile = u"logo.png"_s;
        EXPECT_EQ(drawn(item, {90, 120}, {}), paper) << size;
    }
}

} // namespace
} // namespace tarnovel
