#include <gtest/gtest.h>

#include "model/FrameSettings.h"
#include "model/FrameSettingsJson.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

QStringList ids(const FrameSettings &settings)
{
    QStringList result;
    for (const TextLayer &layer : settings.layers) {
        result.append(layer.id);
    }
    return result;
}

TEST(Normalize, AppendsOnlyTheMissingLayersInOrder)
{
    FrameSettings settings;
    TextLayer own;
    own.id = u"own"_s;
    own.size = 99;
    settings.layers = {defaultLayers().last(), own};
    settings.normalize();
    EXPECT_EQ(ids(settings), (QStringList{u"date"_s, u"own"_s, u"brand"_s, u"model"_s, u"exif"_s,
                                          u"watermark"_s, u"title"_s, u"caption"_s}));
    const FrameSettings once = settings;
    settings.normalize();
    EXPECT_EQ(settings, once);
    EXPECT_EQ(settings.layers.at(1), own);
}

TEST(Ratio, HoldsCustomRatiosAndNothingElse)
{
    FrameSettings settings;
    settings.preset = CanvasPreset::custom;
    const auto custom = [&settings](double width, double height) {
        settings.customWidth = width;
        settings.customHeight = height;
        return settings.ratio({100, 100});
    };
    EXPECT_EQ(custom(3, 0.5), 3);
    EXPECT_EQ(custom(3, 1.5), 2);
    EXPECT_EQ(custom(100, 1), 5);
    EXPECT_EQ(custom(0, 4), 0.2);
    settings.preset = CanvasPreset::original;
    EXPECT_EQ(settings.ratio({4000, 0}), 4000);
    settings.style = FrameStyle::film;
    EXPECT_DOUBLE_EQ(settings.ratio({3000, 2000}), 38.4 / 35);
    EXPECT_DOUBLE_EQ(settings.ratio({2000, 3000}), 35 / 38.4);
    settings.film = FilmOptions{};
    settings.film->format = FilmFormat::medium645;
    EXPECT_DOUBLE_EQ(settings.ratio({2000, 3000}), 43.9 / 61.5);
}

TEST(ReferencedFiles, CountsASharedNameOnce)
{
    FrameSettings settings;
    settings.backgroundFile = u"b"_s;
    settings.handwritingFile = u"h"_s;
    settings.layers[0].imageFile = u"logo"_s;
    settings.layers[1].imageFile = u"logo"_s;
    EXPECT_EQ(settings.referencedFiles(), (std::set<QString>{u"b"_s, u"h"_s, u"logo"_s}));
}

FrameSettings everyFieldSet()
{
    FrameSettings settings;
    settings.preset = CanvasPreset::custom;
    settings.customWidth = 1.0 / 3;
    settings.customHeight = 7.25;
    settings.scale = 0.1 + 0.2;
    settings.x = -0.125;
    settings.y = 1e-12;
    settings.lockX = true;
    settings.lockY = true;
    settings.background = Backdrop::image;
    settings.color = {0.1, 0.2, 0.3};
    settings.secondColor = {0.4, 0.5, 0.6};
    settings.backgroundFile = u"bäck \"ground\".png"_s;
    settings.style = FrameStyle::cinema;
    settings.border = 0.5;
    settings.borderColor = {1, 0, 1};
    settings.film = FilmOptions{u"my film"_s, FilmFormat::medium67, false, true, false, -3, u"top"_s, u""_s};
    settings.templateID = std::nullopt;
    settings.handwritingFile = u"h.png"_s;
    settings.handwritingAspect = 2.5;
    settings.handwritingX = 0.25;
    settings.handwritingY = 0.75;
    settings.handwritingWidth = 0.3;
    TextLayer layer = defaultLayers().first();
    layer.id = u"own"_s;
    layer.text = u"line\nline 😀"_s;
    layer.imageFile = u"logo.png"_s;
    layer.imageAspect = 3;
    layer.rotation = -45.5;
    layer.fontStyle = u"serif"_s;
    settings.layers.append(layer);
    return settings;
}

TEST(FrameSettingsJson, ReadsBackWhatItWrote)
{
    for (const FrameSettings &settings : {FrameSettings{}, everyFieldSet()}) {
        const Json json = parseJson(writeJson(toJson(settings)));
        EXPECT_EQ(frameSettingsFromJson(JsonReader(json)), settings);
    }
    const QByteArray fresh = writeJson(toJson(FrameSettings{}));
    EXPECT_TRUE(
        fresh.startsWith(R"({"preset":"red","customWidth":3.0,"customHeight":4.0,"scale":0.88,"x":0.0,)"));
    EXPECT_FALSE(fresh.contains("null"));
}

TEST(FrameSettingsJson, InsistsOnEveryRequiredKeyAndNoOther)
{
    const Json whole = toJson(everyFieldSet());
    const std::set<std::string> optional = {
        "backgroundFile", "film",         "templateID",       "handwritingFile",
        "handwritingX",   "handwritingY", "handwritingWidth", "handwritingAspect"};
    for (const auto &member : whole.items()) {
        Json without = whole;
        without.erase(member.key());
        try {
            frameSettingsFromJson(JsonReader(without));
            EXPECT_TRUE(optional.contains(member.key())) << member.key();
        } catch (const JsonError &error) {
            EXPECT_FALSE(optional.contains(member.key())) << member.key();
            EXPECT_EQ(error.path(), "/" + member.key());
        }
    }
    Json record = whole;
    record["later"] = "unknown keys are passed over";
    record["templateID"] = nullptr;
    record["film"].erase("format");
    record["film"].erase("topLabel");
    const FrameSettings read = frameSettingsFromJson(JsonReader(record));
    EXPECT_EQ(read.templateID, std::nullopt);
    EXPECT_EQ(read.film->format, FilmFormat::mm35);
}

TEST(FrameSettingsJson, SaysWhereTheFaultIs)
{
    const std::pair<const char *, Json> faults[] = {
        {"/color/r", "red"},        {"/preset", "panorama"},   {"/layers/2/ink/b", nullptr},
        {"/film/number", 1.5},      {"/film/format", "mm8"},   {"/lockX", 1},
        {"/layers/0/size", "big"},  {"/handwritingX", "left"}, {"/film/number", 1e300},
        {"/layers/7/rotation", {}},
    };
    for (const auto &[path, value] : faults) {
        Json record = toJson(everyFieldSet());
        record[Json::json_pointer(path)] = value;
        if (value.is_null() && std::string(path) != "/layers/2/ink/b") {
            EXPECT_NO_THROW(frameSettingsFromJson(JsonReader(record))) << path;
            continue;
        }
        try {
            frameSettingsFromJson(JsonReader(record));
            ADD_FAILURE() << path;
        } catch (const JsonError &error) {
            EXPECT_EQ(error.path(), path);
        }
    }
}

} // namespace
} // namespace tarnovel
