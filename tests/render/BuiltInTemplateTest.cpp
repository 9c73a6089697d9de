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

TEST(BuiltInTemplates, PutTheirTextsAndPhotosInPlace)
{
    struct Row {
        BuiltInTemplate look;
        QString layer;
        double x, y, size, rotation, scale, photoX, photoY;
    };
    const FrameSettings plain;
    const TextLayer &title = *plain.layer(u"title"_s);
    const std::vector<Row> rows{
        {BuiltInTemplate::signature, u"title"_s, 0.72, 0.93, 0.023, 0, 0.82, 0, -0.025},
        {BuiltInTemplate::sky, u"title"_s, title.x, 0.18, title.size, 0, 0.6, 0, 0.15},
        {BuiltInTemplate::ground, u"title"_s, title.x, 0.8, title.size, 0, 0.6, 0, -0.15},
        {BuiltInTemplate::side, u"title"_s, 0.91, 0.5, title.size, 90, 0.7, -0.06, 0},
        {BuiltInTemplate::gallery, u"title"_s, 0.27, 0.89, 0.027, 0, 0.76, 0, -0.065},
        {BuiltInTemplate::gallery, u"caption"_s, 0.72, 0.89, 0.021, 0, 0.76, 0, -0.065},
        {BuiltInTemplate::instant, u"title"_s, title.x, 0.88, 0.028, 0, 0.82, 0, -0.05},
        {BuiltInTemplate::cinema, u"title"_s, 0.5, 0.785, 0.026, 0, 1, 0, 0},
        {BuiltInTemplate::cinema, u"caption"_s, 0.5, 0.835, 0.019, 0, 1, 0, 0},
        {BuiltInTemplate::cinemaEN, u"caption"_s, 0.5, 0.81, 0.024, 0, 1, 0, 0},
    };
    for (const Row &row : rows) {
        const FrameSettings made = BuiltInTemplates::make(row.look, {}, {});
        SCOPED_TRACE(BuiltInTemplates::id(row.look).toStdString() + ' ' + row.layer.toStdString());
        const TextLayer &layer = *made.layer(row.layer);
        EXPECT_EQ(layer.x, row.x);
        EXPECT_EQ(layer.y, row.y);
        EXPECT_EQ(layer.size, row.size);
        EXPECT_EQ(layer.rotation.value_or(0), row.rotation);
        EXPECT_EQ(made.scale, row.scale);
        EXPECT_EQ(made.x, row.photoX);
        EXPECT_EQ(made.y, row.photoY);
    }
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
