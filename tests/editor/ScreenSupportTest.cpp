#include "editor/CanvasImages.h"
#include <random>

#include <QPainter>

#include "editor/EditorWorld.h"
#include "editor/LiveFrame.h"
#include "editor/SettingsEdits.h"
#include "editor/Thumbnails.h"
#include "pipeline/PlacedPhoto.h"
#include "render/BuiltInTemplate.h"

namespace tarnovel::test {
namespace {

using namespace Qt::StringLiterals;

class ScreenSupport : public EditorWorld {
protected:
    EditorModel m_model{m_services, EditorModel::Load::Empty};
};

TEST_F(ScreenSupport, DrawsAThumbnailOnceUntilItsPhotoChanges)
{
    Thumbnails thumbnails(m_pipeline);
    QStringList drawn;
    QObject::connect(&thumbnails, &Thumbnails::ready,
                     [&drawn](const ThumbnailKey &key) { drawn.append(key.id); });
    const QList<PhotoItem> items = photos(3);
    const auto ask = [&](int index, const PhotoItem &item) {
        return thumbnails.image({ThumbnailKey::Of::Photo, QString::number(index)}, item, {90, 90});
    };
    EXPECT_TRUE(ask(0, items.at(0)).isNull());
    ask(1, items.at(1));
    ask(2, items.at(2));
    ASSERT_TRUE(waitFor([&] { return thumbnails.idle(); }));
    // The first was begun at once; of those that wait, the last one asked for comes first.
    EXPECT_EQ(drawn, (QStringList{u"0"_s, u"2"_s, u"1"_s}));

    const QImage first = ask(0, items.at(0));
    EXPECT_EQ(first.size(), Thumbnails::canvasIn({90, 90}, items.at(0)));
    EXPECT_TRUE(thumbnails.idle()) << "nothing has changed";
    PhotoItem changed = items.at(0);
    changed.settings.color = {1, 0, 0};
    EXPECT_EQ(ask(0, changed), first) << "the old picture stands in";
    ASSERT_TRUE(waitFor([&] { return thumbnails.idle(); }));
    EXPECT_NE(ask(0, changed), first);
    EXPECT_EQ(drawn.size(), 4);
}

TEST_F(ScreenSupport, ThumbnailsTellWhichFilesCannotBeRead)
{
    Thumbnails thumbnails(m_pipeline);
    PhotoItem gone = photo(u"gone.jpg"_s);
    QFile::remove(m_library + u"/gone.jpg"_s);
    thumbnails.image(ThumbnailKey::photo(gone), gone, {90, 90});
    ASSERT_TRUE(waitFor([&] { return thumbnails.idle(); }));
    EXPECT_TRUE(thumbnails.unreadable(gone.file));
    thumbnails.image(ThumbnailKey::photo(gone), gone, {90, 90});
    EXPECT_TRUE(thumbnails.idle()) << "it is not tried again at every repaint";
}

TEST_F(ScreenSupport, ADraggedPhotoKeepsItsPixelsUntilItRests)
{
    PhotoItem item = photo(u"one.jpg"_s, {900, 600});
    Previews previews;
    previews.photo = m_pipeline.read(item.file, 1400).result();
    CanvasImages images(m_clock);
    const QSize canvas(300, 400);
    bool better = false;
    QObject::connect(&images, &CanvasImages::changed, [&better] { better = true; });
    EXPECT_EQ(images.images(item, canvas, previews).photo.image.size(), previews.photo.size());
    ASSERT_TRUE(waitFor([&] { return better; }));
    const PhotoImage resting = images.images(item, canvas, previews).photo;
    EXPECT_LT(resting.image.width(), canvas.width()) << "at the canvas's own pixels";

    item.settings.x = 0.0137;
    const PhotoImage moved = images.images(item, canvas, previews).photo;
    EXPECT_EQ(moved.image.size(), resting.image.size());
    const QRectF whole = CompositionRenderer::photoPlacement(item, item.settings, canvas).whole;
    const double left = whole.x() + moved.extent.x() * whole.width();
    EXPECT_NEAR(left, std::round(left), 1e-6) << "its pixels lie on the canvas's";

    better = false;
    m_clock.advance(CanvasImages::rest / 2);
    item.settings.x = 0.0171;
    images.images(item, canvas, previews);
    m_clock.advance(CanvasImages::rest * 3 / 4);
    QCoreApplication::processEvents();
    EXPECT_FALSE(better) << "the hand has moved meanwhile";
    m_clock.advance(CanvasImages::rest);
    ASSERT_TRUE(waitFor([&] { return better; }));
    const PhotoImage rested = images.images(item, canvas, previews).photo;
    EXPECT_NE(rested.image.cacheKey(), resting.image.cacheKey());
    // An image of the exact place: the same as one that was made for it from the start.
    const PhotoPlacement placement = CompositionRenderer::photoPlacement(item, item.settings, canvas);
    EXPECT_EQ(rested.image, placedPhoto(previews.photo, placedRegion(placement)).image);
    better = false;
    m_clock.advance(CanvasImages::rest * 2);
    QCoreApplication::processEvents();
    EXPECT_FALSE(better) << "nothing is left to be made";
}

TEST_F(ScreenSupport, AVeryLongPhotoFillsItsFrameWhileItIsDragged)
{
    PhotoItem item = photo(u"long.jpg"_s, {300, 1500});
    item.settings = BuiltInTemplates::make(BuiltInTemplate::cinema, item.settings, {});
    Previews previews;
    previews.photo = m_pipeline.read(item.file, 1400).result();
    CanvasImages images(m_clock);
    const QSize canvas(480, 270);
    bool better = false;
    QObject::connect(&images, &CanvasImages::changed, [&better] { better = true; });
    images.images(item, canvas, previews);
    ASSERT_TRUE(waitFor([&] { return better; }));
    for (const double y : {0.05, 0.2, 0.5, -0.5}) {
        item.settings.y = y;
        const PhotoPlacement placement = CompositionRenderer::photoPlacement(item, item.settings, canvas);
        ASSERT_NE(placement.shown, placement.whole);
        const QRectF part = images.images(item, canvas, previews).photo.extent;
        const QRectF &whole = placement.whole;
        const QRectF lent(whole.x() + part.x() * whole.width(), whole.y() + part.y() * whole.height(),
                          part.width() * whole.width(), part.height() * whole.height());
        EXPECT_TRUE(lent.adjusted(-0.5, -0.5, 0.5, 0.5).contains(placement.shown & whole)) << y;
    }
}

/// A frame of any looks with layers of several kinds, one of them turned.
PhotoItem dressed(PhotoItem item, BuiltInTemplate look, Backdrop background)
{
    item.settings.layer(u"brand"_s)->text = u"Åström 相机"_s;
    item.settings.layer(u"exif"_s)->text = u"35 mm f/2.8"_s;
    item.settings = BuiltInTemplates::make(look, item.settings, {});
    item.settings.background = background;
    item.settings.secondColor = {0.1, 0.3, 0.5};
    TextLayer &title = *item.settings.layer(u"title"_s);
    title.text = u"ÇA flies\nhigh 🌋"_s;
    title.visible = true;
    title.size = 0.05;
    title.rotation = 33;
    return item;
}

TEST_F(ScreenSupport, TheLiveFrameHasThePixelsOfAWholeDrawing)
{
    const PhotoItem photo = this->photo(u"one.jpg"_s, {900, 600});
    Previews previews;
    previews.photo = m_pipeline.read(photo.file, 1400).result();
    const QSize canvas(311, 403);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> share(-0.2, 0.2);
    for (const BuiltInTemplate look :
         {BuiltInTemplate::gear, BuiltInTemplate::full, BuiltInTemplate::film, BuiltInTemplate::cinema}) {
        PhotoItem item = dressed(photo, look, Backdrop::gradient);
        LiveFrame live;
        CanvasImages images(m_clock);
        int parts = 0;
        for (int i = 0; i < 40; ++i) {
            FrameSettings &settings = item.settings;
            TextLayer &title = *settings.layer(u"title"_s);
            switch (i % 5) {
            case 0:
                settings.x = share(random);
                settings.y = share(random);
                break;
            case 1:
                settings.scale = 0.6 + share(random);
                break;
            case 2:
                title.x = 0.5 + 2 * share(random);
                title.y = 0.5 + 2 * share(random);
                break;
            case 3:
                title.rotation = 900 * share(random);
                title.ink.r = 0.5 + share(random);
                break;
            default:
                settings.color.g = 0.5 + share(random);
            }
            const CompositionImages pictures = images.images(item, canvas, previews);
            parts += live.draw(item, canvas, pictures) != QRect({}, canvas) ? 1 : 0;
            QImage whole(canvas, QImage::Format_RGB32);
            QPainter painter(&whole);
            CompositionRenderer::draw(painter, item, item.settings, canvas, pictures);
            painter.end();
            ASSERT_EQ(live.image(), whole) << "look " << int(look) << ", step " << i;
            QCoreApplication::processEvents();
        }
        EXPECT_GT(parts, 10) << "look " << int(look);
    }
}

TEST_F(ScreenSupport, EditsAreStepsOrJoinTheControlThatIsHeld)
{
    m_model.append({photo(u"one.jpg"_s)});
    SettingsEdits edits(m_model, m_clock);
    edits.step([](FrameSettings &settings) { settings.lockX = settings.lockX; });
    EXPECT_FALSE(m_model.canUndo()) << "a change to the same value is none";
    for (const double scale : {0.5, 0.6, 0.7}) {
        edits.adjust(u"scale"_s, [scale](FrameSettings &settings) { settings.scale = scale; });
    }
    edits.endAdjusting();
    edits.adjust(u"scale"_s, [](FrameSettings &settings) { settings.scale = 0.9; });
    m_model.undo();
    EXPECT_EQ(m_model.current()->settings.scale, 0.7);
    m_model.undo();
    EXPECT_EQ(m_model.current()->settings.scale, FrameSettings().scale);
}

} // namespace
} // namespace tarnovel::test
