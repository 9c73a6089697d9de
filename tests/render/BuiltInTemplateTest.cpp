#include <gtest/gtest.h>

#include "render/BuiltInTemplate.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

/// A style with everything set that a template has to keep or to drop.
FrameSettings used()
{
    FrameSettings settings;
    settings.preset = CanvasPreset::custom;
    settings.customWidth = 5;
    settings.film = FilmOptions();
    settings.film->number = 7;
    settings.background = Backdrop::image;
    settings.backgroundFile = u"b.png"_s;
    settings.handwritingFile = u"h.png"_s;
    settings.handwritingX = 0.1;
    settings.lockX = true;
    settings.layers[0].text = u"Leica"_s;
    settings.layers[3].imageFile = u"logo.png"_s;
    settings.layers[3].imageAspect = 2;
    settings.layers[3].visible = true;
    settings.layers[4].text = u"typed"_s;
    settings.layers[4].size = 0.5;
    TextLayer own = settings.layers[4];
    own.id = u"own"_s;
    settings.layers.append(own);
    return settings;
}

QStringList visible(const FrameSettings &settings)
{
    QStringList ids;
    for (const TextLayer &layer : settings.layers) {
        if (layer.visible) {
            ids.append(layer.id);
        }
    }
    return ids;
}

TEST(BuiltInTemplates, KeepWhatTheUserMadeAndDropTheRest)
{
    ASSERT_EQ(BuiltInTemplates::all().size(), 14);
    for (const BuiltInTemplate look : BuiltInTemplates::all()) {
        const FrameSettings made = BuiltInTemplates::make(look, used(), {});
        SCOPED_TRACE(BuiltInTemplates::id(look).toStdString());
        EXPECT_EQ(BuiltInTemplates::withId(*made.templateID), look);
        EXPECT_EQ(made.referencedFiles(), std::set<QString>{u"logo.png"_s});
        EXPECT_EQ(made.layer(u"watermark"_s)->imageAspect, 2);
        EXPECT_FALSE(made.layer(u"watermark"_s)->visible);
        EXPECT_EQ(made.layer(u"title"_s)->text, u"typed"_s);
        EXPECT_EQ(made.layer(u"brand"_s)->text, u"Leica"_s);
        EXPECT_EQ(made.layers.size(), 7);
        EXPECT_EQ(made.film, used().film);
        EXPECT_FALSE(made.lockX);
        EXPECT_FALSE(made.handwritingX);
        // A template's result is a fixed point: choosing it again changes nothing.
        EXPECT_EQ(BuiltInTemplates::make(look, made, {}), made);
    }
}

TEST(BuiltInTemplates, ShowTheirOwnLayers)
{
    const auto shown = [](BuiltInTemplate look) { return visible(BuiltInTemplates::make(look, used(), {})); };
    EXPECT_EQ(shown(BuiltInTemplate::plain), QStringList());
    EXPECT_EQ(shown(BuiltInTemplate::gear), (QStringList{u"brand"_s, u"model"_s, u"exif"_s}));
    EXPECT_EQ(shown(BuiltInTemplate::gallery), (QStringList{u"title"_s, u"caption"_s}));
    EXPECT_EQ(shown(BuiltInTemplate::side), QStringList{u"title"_s});
    EXPECT_EQ(shown(BuiltInTemplate::cinema), (QStringList{u"title"_s, u"caption"_s}));
    EXPECT_EQ(shown(BuiltInTemplate::cinemaEN), QStringList{u"caption"_s});
}

TEST(BuiltInTemplates, ChooseTheCanvasOnlyWhereTheLookNeedsIt)
{
    const auto ratio = [](BuiltInTemplate look) {
        return BuiltInTemplates::make(look, used(), {}).ratio({3000, 2000});
    };
    EXPECT_DOUBLE_EQ(ratio(BuiltInTemplate::plain), 1.25);
    EXPECT_DOUBLE_EQ(ratio(BuiltInTemplate::full), 1.5);
    EXPECT_DOUBLE_EQ(ratio(BuiltInTemplate::film), 38.4 / 35);
    EXPECT_DOUBLE_EQ(ratio(BuiltInTemplate::cinemaEN), 16.0 / 9);
}

TEST(BuiltInTemplates, TakeTheColorOfTheirPhoto)
{
    const Ink moss = {0.2, 0.3, 0.1};
    EXPECT_EQ(BuiltInTemplates::make(BuiltInTemplate::tone, {}, {moss, {}}).color, moss);
    EXPECT_EQ(BuiltInTemplates::make(BuiltInTemplate::tone, {}, {}).color, (Ink{0.78, 0.8, 0.78}));
    const FrameSettings cinema = BuiltInTemplates::make(BuiltInTemplate::cinema, {}, {});
    EXPECT_EQ(cinema.layer(u"title"_s)->text, u"我们终会抵达那片光。"_s);
    EXPECT_EQ(cinema.layer(u"caption"_s)->text, u"We'll reach that light, eventually."_s);
}

} // namespace
} // namespace tarnovel
