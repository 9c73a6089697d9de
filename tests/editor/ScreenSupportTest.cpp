#include "editor/CanvasImages.h"
#include "editor/EditorWorld.h"
#include "editor/SettingsEdits.h"
#include "editor/Thumbnails.h"

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
    CanvasImages images;
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
