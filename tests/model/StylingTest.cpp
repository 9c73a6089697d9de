#include "model/Styling.h"

#include <gtest/gtest.h>

#include "model/Signature.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

FrameSettings written(const QString &text)
{
    FrameSettings settings;
    for (TextLayer &layer : settings.layers) {
        layer.text = text + layer.id;
        layer.x = text == u"style "_s ? 0.2 : 0.4;
    }
    return settings;
}

TEST(Styling, APhotoKeepsWhatItsCameraWroteAndNothingElse)
{
    PhotoItem photo;
    photo.file = u"a.jpg"_s;
    photo.settings = written(u"photo "_s);
    FrameSettings style = written(u"style "_s);
    style.scale = 0.5;
    const PhotoItem made = styled(photo, style, 3);
    EXPECT_EQ(made.file, photo.file);
    EXPECT_EQ(made.settings.scale, 0.5);
    for (const TextLayer &layer : made.settings.layers) {
        const bool camera = QStringList{u"brand"_s, u"model"_s, u"exif"_s, u"date"_s}.contains(layer.id);
        EXPECT_EQ(layer.text, (camera ? u"photo "_s : u"style "_s) + layer.id);
        EXPECT_EQ(layer.x, 0.2) << "where it stands is the style's";
    }
    EXPECT_FALSE(made.settings.film) << "only film frames are numbered";
}

TEST(Styling, FilmFramesAreNumberedOnAndNeverBeyondAnInteger)
{
    FrameSettings style;
    style.style = FrameStyle::film;
    numberFilmFrame(style, 2);
    EXPECT_EQ(style.film->number, FilmOptions().number + 2);
    style.film->number = 2'000'000'000;
    numberFilmFrame(style, 49);
    EXPECT_EQ(style.film->number, 1'000'000'049);
}

TEST(Signature, LiesOverTheWholeFrameUntilItIsMovedAndGoesWithoutATrace)
{
    const FrameSettings before = written(u"photo "_s);
    FrameSettings settings = withSignature(before, u"handwriting-1.png"_s, 0.75);
    EXPECT_EQ(settings.referencedFiles(), std::set<QString>{u"handwriting-1.png"_s});
    EXPECT_EQ(settings.handwritingAspect, 0.75);
    EXPECT_EQ(signaturePlace(settings).width, 1);
    EXPECT_EQ(signaturePlace(settings).x, 0.5);
    EXPECT_EQ(signaturePlace(settings).y, 0.5);
    placeSignature(settings, {0.3, 0.1, 0.9});
    EXPECT_EQ(settings.handwritingWidth, 0.3);
    EXPECT_EQ(settings.handwritingX, 0.1);
    EXPECT_EQ(settings.handwritingY, 0.9);
    EXPECT_EQ(withoutSignature(settings), before);
}

} // namespace
} // namespace tarnovel
