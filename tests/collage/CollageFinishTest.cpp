#include <cmath>

#include <QThread>

#include "collage/CollagePage.h"
#include "collage/CollageStudioWorld.h"
#include "collage/SelectedCell.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

using Pictures = StudioWorld;
using Finish = StudioWorld;

/// Stripes and waves, which a careless reduction turns into others.
void writeTexture(const QString &path, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int level =
                static_cast<int>(128 + 60 * std::sin(x * 0.35 + y * 0.21) + 50 * std::sin(y * 0.6 - x * 0.1));
            image.setPixel(x, y, qRgb(level, 255 - level, (x / 40 + y / 40) % 2 * 200));
        }
    }
    ASSERT_TRUE(image.save(path, "JPEG", 95));
}

double psnr(const QImage &a, const QImage &b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const double difference = qGreen(a.pixel(x, y)) - qGreen(b.pixel(x, y));
            sum += difference * difference;
        }
    }
    return 10 * std::log10(255.0 * 255 * a.width() * a.height() / std::max(sum, 1e-9));
}

/// What the result would be at the board's size: every cell straight from its file.
QImage fromFiles(ImagePipeline &pipeline, const CollageStudio &studio, CollageView view)
{
    view.images.clear();
    for (const auto &[slot, rect] : view.plan.layout.cells) {
        const CollageCell &cell = view.design.cells.at(slot);
        const PhotoItem *photo = studio.photo(cell.photo);
        view.images[slot] =
            pipeline.readPlaced(photo->file, cellPlacement(cell, photo->size(), rect), view.plan.size)
                .result();
    }
    QImage canvas(view.plan.size, QImage::Format_RGB32);
    QPainter painter(&canvas);
    view.draw(painter);
    return canvas;
}

TEST_F(Pictures, OfTheRestingBoardAreThoseOfTheResult)
{
    QList<PhotoItem> list;
    for (const QString &name : {u"wide.jpg"_s, u"tall.jpg"_s}) {
        PhotoItem item = photo(name, name == u"wide.jpg"_s ? QSize(1800, 1200) : QSize(1200, 1800));
        writeTexture(m_library + u'/' + name, item.size().toSize());
        list.append(item);
    }
    m_model.append(list);
    open({0, 1});
    m_studio.select(0);
    SelectedCell(m_studio).setFrame(CellFrame::inner);
    ASSERT_TRUE(settle());
    const QImage small = drawn(m_studio.board());
    EXPECT_GT(psnr(small, fromFiles(m_pipeline, m_studio, m_studio.board())), 36);
    m_gestures.panPhoto(0, {31.3, 0});
    EXPECT_FALSE(m_studio.settled());
    EXPECT_GT(psnr(drawn(m_studio.board()), fromFiles(m_pipeline, m_studio, m_studio.board())), 18);
    ASSERT_TRUE(settle());
    EXPECT_GT(psnr(drawn(m_studio.board()), fromFiles(m_pipeline, m_studio, m_studio.board())), 36);
    // The wide photo's cell asks for more than its picture in memory has: it comes from the file.
    m_studio.setStage({1500, 1500}, 1);
    ASSERT_TRUE(settle());
    const QRect wide = m_studio.layout().cells.at(0).toAlignedRect();
    EXPECT_EQ(drawn(m_studio.board()).copy(wide),
              fromFiles(m_pipeline, m_studio, m_studio.board()).copy(wide));
}

TEST_F(Pictures, OfTheLayoutsShowTheUsersPhotos)
{
    open({0, 3, 4});
    ASSERT_TRUE(settle());
    for (const CollagePreset &preset : m_studio.presets()) {
        const CollageView view = m_studio.thumbnail(preset, 120);
        EXPECT_EQ(view.images.size(), 3) << preset.id.toStdString();
        const QImage picture = drawn(view);
        EXPECT_EQ(std::max(picture.width(), picture.height()), 120);
        const QColor own = picture.pixelColor(view.plan.layout.cells.at(1).center().toPoint());
        const QColor wanted = QImage(m_library + u"/3.jpg"_s).pixelColor(20, 20);
        EXPECT_NEAR(own.hue(), wanted.hue(), 3) << preset.id.toStdString();
    }
    m_gestures.nudgeDivider({}, 0.05);
    EXPECT_EQ(m_studio.thumbnail(m_studio.design().preset, 120).design.node.ratio, rootRatio());
}

TEST_F(Pictures, OfALostPhotoLeaveThePaperAndSayWhich)
{
    ASSERT_TRUE(QFile::remove(m_library + u"/3.jpg"_s));
    open({0, 3});
    ASSERT_TRUE(waitFor([this] { return m_studio.unreadable(1); }));
    EXPECT_EQ(m_studio.message(), u"3.jpg: Could not read this photo."_s);
    ASSERT_TRUE(settle());
    m_studio.select(1);
    SelectedCell(m_studio).setFrame(CellFrame::film);
    const QImage board = drawn(m_studio.board());
    EXPECT_EQ(board.pixel(m_studio.layout().cells.at(1).center().toPoint()),
              cellPaper(CellFrame::film)->rgb());
    EXPECT_FALSE(m_studio.unreadable(0));
}

TEST_F(Finish, PutsTheCollageFirst)
{
    open({3, 0, 4});
    CollagePage(m_studio).setGap(0.04);
    CollageStudio::Changes heard;
    QObject::connect(&m_studio, &CollageStudio::changed, [&heard](auto changes) { heard |= changes; });
    ASSERT_TRUE(m_studio.canFinish());
    m_studio.finish();
    EXPECT_TRUE(m_studio.saving());
    EXPECT_FALSE(m_studio.canFinish());
    CollagePage(m_studio).setGap(0.01);
    m_studio.undo();
    m_studio.toggle(id(7));
    EXPECT_EQ(m_studio.design().gap, 0.04); // what would be lost is refused
    EXPECT_EQ(m_studio.total(), 3);
    ASSERT_TRUE(waitFor([this] { return m_studio.closed(); }));
    EXPECT_TRUE(heard & CollageStudio::PhaseChanged);
    ASSERT_EQ(m_model.photos().size(), 13);
    const PhotoItem &made = m_model.photos().first();
    EXPECT_EQ(m_model.selected(), made.id);
    EXPECT_EQ(made.name, u"Collage"_s);
    EXPECT_EQ(made.size(), QSizeF(2400, 2400));
    EXPECT_EQ(QImage(m_library + u'/' + made.file).size(), QSize(2400, 2400));
    EXPECT_EQ(QDir(m_folder.filePath(u"temporary/Exports"_s)).entryList(QDir::Files), QStringList());
}

TEST_F(Finish, FailsWithTheLostPhotosNameAndCanBeTriedAgain)
{
    open({0, 3});
    ASSERT_TRUE(settle());
    ASSERT_TRUE(QFile::remove(m_library + u"/3.jpg"_s));
    const QStringList before = libraryFiles();
    m_studio.finish();
    ASSERT_TRUE(waitFor([this] { return !m_studio.saving(); }));
    EXPECT_FALSE(m_studio.closed());
    EXPECT_TRUE(m_studio.message().startsWith(u"Could not save the collage. 3.jpg: "_s))
        << m_studio.message().toStdString();
    EXPECT_EQ(libraryFiles(), before);
    EXPECT_EQ(m_model.photos().size(), 12);
    m_studio.replacePhoto(1, id(4));
    m_studio.finish();
    EXPECT_EQ(m_studio.message(), QString());
    EXPECT_TRUE(waitFor([this] { return m_studio.closed(); }));
    EXPECT_EQ(m_model.photos().size(), 13);
}

TEST_F(Finish, FailsWhenTheSessionIsFullOrTheDiskRefuses)
{
    open({0, 3});
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(u"temporary"_s));
    QFile inTheWay(m_folder.filePath(u"temporary/Exports"_s));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    inTheWay.close();
    m_studio.finish();
    ASSERT_TRUE(waitFor([this] { return !m_studio.saving(); }));
    EXPECT_EQ(m_studio.message(), u"Could not save the collage. A file stands where a folder is needed."_s);
    ASSERT_TRUE(inTheWay.remove());
    m_model.append(photos(38));
    const QStringList before = libraryFiles();
    m_studio.finish();
    EXPECT_FALSE(m_studio.saving());
    EXPECT_EQ(m_studio.message(), u"Could not save the collage. The session already has 50 photos."_s);
    EXPECT_EQ(libraryFiles(), before);
    EXPECT_TRUE(m_studio.canFinish());
}

TEST_F(Finish, LeavesNothingBehindWhenItIsCancelled)
{
    const QStringList before = libraryFiles();
    open({0, 3});
    m_studio.finish();
    m_studio.cancel();
    EXPECT_TRUE(m_studio.closed());
    EXPECT_FALSE(m_studio.saving());
    m_made.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(libraryFiles(), before);
    // A collage that is done, but whose studio goes before it hears of it.
    auto gone = std::make_unique<CollageStudio>(m_model, m_pipeline, m_clock);
    gone->toggle(id(0));
    gone->toggle(id(1));
    gone->start();
    gone->finish();
    QElapsedTimer timer;
    timer.start();
    while (libraryFiles() == before && timer.elapsed() < 10'000) {
        QThread::msleep(2);
    }
    EXPECT_NE(libraryFiles(), before);
    gone.reset();
    EXPECT_EQ(libraryFiles(), before);
    EXPECT_EQ(m_model.photos().size(), 12);
}

} // namespace
} // namespace tarnovel::test
