#include "collage/CollagePage.h"
#include "collage/CollageStudioWorld.h"
#include "collage/SelectedCell.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tarnovel::test {
namespace {

using Chooser = StudioWorld;
using Board = StudioWorld;
using Steps = StudioWorld;

TEST_F(Chooser, NumbersNinePhotosInTapOrder)
{
    m_studio.toggle(id(4));
    EXPECT_FALSE(m_studio.canStart());
    m_studio.start();
    EXPECT_TRUE(m_studio.choosing());
    for (const int index : {2, 7, 0, 1, 3, 5, 6, 8}) {
        m_studio.toggle(id(index));
    }
    EXPECT_EQ(m_studio.order(id(4)), 1);
    EXPECT_EQ(m_studio.order(id(8)), 9);
    int notices = 0;
    QObject::connect(&m_studio, &CollageStudio::changed, &m_studio, [&](CollageStudio::Changes changes) {
        notices += changes & CollageStudio::LimitReached ? 1 : 0;
    });
    m_studio.toggle(id(9));
    EXPECT_EQ(m_studio.total(), 9);
    EXPECT_EQ(m_studio.order(id(9)), 0);
    EXPECT_EQ(notices, 1);
    m_studio.toggle(id(2));
    EXPECT_EQ(m_studio.order(id(7)), 2);
    m_studio.toggle(QUuid::createUuid());
    EXPECT_EQ(m_studio.total(), 8);
}

TEST_F(Chooser, TakesFilesWhereTheyAre)
{
    const QStringList before = libraryFiles();
    const QString good = m_folder.filePath(u"on disk.png"_s);
    const QString bad = m_folder.filePath(u"broken.jpg"_s);
    ASSERT_TRUE(QImage(30, 20, QImage::Format_RGB32).save(good));
    QFile file(bad);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("no picture") > 0);
    file.close();
    m_studio.toggle(id(0));
    m_studio.addFiles({bad, good, good});
    EXPECT_TRUE(m_studio.importing());
    ASSERT_TRUE(waitFor([this] { return !m_studio.importing(); }));
    EXPECT_EQ(m_studio.candidates().size(), 13);
    EXPECT_EQ(m_studio.candidates().last().name, u"on disk"_s);
    EXPECT_EQ(m_studio.order(m_studio.candidates().last().id), 2);
    EXPECT_EQ(m_studio.total(), 2);
    EXPECT_EQ(m_studio.message(), u"1 file could not be read."_s);
    m_studio.start();
    EXPECT_EQ(m_studio.design().cells.size(), 2);
    m_studio.cancel();
    EXPECT_TRUE(m_studio.closed());
    EXPECT_EQ(libraryFiles(), before);
    EXPECT_EQ(m_model.photos().size(), 12);
}

TEST_F(Chooser, FilesBeyondTheLimitAreOfferedButNotPicked)
{
    QStringList paths;
    for (int i = 0; i < 10; ++i) {
        paths.append(m_folder.filePath(u"%1.png"_s.arg(i)));
        ASSERT_TRUE(QImage(3, 2, QImage::Format_RGB32).save(paths.last()));
    }
    int notices = 0;
    QObject::connect(&m_studio, &CollageStudio::changed, &m_studio, [&](CollageStudio::Changes changes) {
        notices += changes & CollageStudio::LimitReached ? 1 : 0;
    });
    m_studio.addFiles(paths);
    ASSERT_TRUE(waitFor([this] { return !m_studio.importing(); }));
    EXPECT_EQ(m_studio.total(), 9);
    EXPECT_EQ(notices, 1);
    EXPECT_EQ(m_studio.candidates().size(), 22);
}

TEST_F(Chooser, MakesTilesAndLetsTheBoardGoFirst)
{
    EXPECT_TRUE(m_studio.tile(id(0)).isNull());
    ASSERT_TRUE(waitFor([this] { return !m_studio.tile(id(0)).isNull(); }));
    EXPECT_TRUE(m_studio.tile(id(5)).isNull());
    open({0, 1});
    EXPECT_FALSE(m_studio.tile(id(0)).isNull());
    // The board shows what there is at once.
    EXPECT_EQ(m_studio.board().images.size(), 1);
    EXPECT_EQ(m_studio.thumbnail(m_studio.design().preset, 100).images.count(0), 1);
    EXPECT_TRUE(waitFor([this] { return !m_studio.tile(id(5)).isNull(); }));
}

TEST_F(Board, StartsWithTheBestLayoutAndKeepsTheUsersOne)
{
    open({3, 0, 4}); // the first one upright, a mix
    EXPECT_EQ(m_studio.design().preset.id, u"big-left"_s);
    m_studio.choosePreset(u"filmstrip"_s);
    m_studio.select(0);
    SelectedCell(m_studio).setFrame(CellFrame::instant);
    m_studio.toggle(id(5));
    EXPECT_EQ(m_studio.design().preset.id, u"filmstrip"_s);
    EXPECT_EQ(m_studio.design().cells.size(), 4);
    EXPECT_EQ(m_studio.design().cells.at(0).frame, CellFrame::instant);
    m_studio.toggle(id(3));
    EXPECT_EQ(photoOf(0), id(0));
    EXPECT_EQ(m_studio.design().cells.at(0).frame, CellFrame::none);
    m_studio.choosePreset(u"h3"_s);
    m_studio.toggle(id(4));
    EXPECT_EQ(m_studio.design().preset.id, u"h2"_s); // no "h3" for two
    m_studio.toggle(id(5));
    EXPECT_EQ(m_studio.total(), 2); // a collage has two photos at least
    m_studio.choosePreset(u"nowhere"_s);
    EXPECT_EQ(m_studio.design().preset.id, u"h2"_s);
}

TEST_F(Board, ComesBackFromTheChooserAsItWas)
{
    open({0, 3});
    CollagePage(m_studio).setGap(0.05);
    m_gestures.nudgeDivider({}, 0.1);
    m_studio.choosePhotos();
    EXPECT_TRUE(m_studio.choosing());
    CollagePage(m_studio).setGap(0.01);
    m_studio.undo();
    EXPECT_EQ(m_studio.design().gap, 0.05); // nothing changes behind the chooser
    m_studio.start();
    EXPECT_DOUBLE_EQ(rootRatio(), 0.6);
    m_studio.choosePhotos();
    m_studio.toggle(id(0));
    m_studio.toggle(id(4));
    m_studio.start();
    EXPECT_EQ(photoOf(1), id(4));
    m_studio.undo();
    EXPECT_EQ(photoOf(0), id(0));
    EXPECT_EQ(m_studio.picked(), (QList<QUuid>{id(0), id(3)}));
}

TEST_F(Board, CopiesFramesToTheCellsBeside)
{
    open({3, 0, 4});
    SelectedCell(m_studio).setFrame(CellFrame::white);
    EXPECT_EQ(m_studio.message(), u"Tap a cell first"_s);
    EXPECT_FALSE(m_studio.canUndo());
    const auto frames = [this] {
        QString names;
        for (const CollageCell &cell : m_studio.design().cells) {
            names += cellFrameName(cell.frame).left(1);
        }
        return names;
    };
    m_studio.select(1); // the upper one of the right column
    SelectedCell(m_studio).setFrame(CellFrame::white);
    SelectedCell(m_studio).copyFrame(CopyScope::Row);
    EXPECT_EQ(frames(), u"wwn"_s);
    m_studio.undo();
    SelectedCell(m_studio).copyFrame(CopyScope::Column);
    EXPECT_EQ(frames(), u"nww"_s);
    m_studio.undo();
    EXPECT_EQ(frames(), u"nwn"_s);
    SelectedCell(m_studio).copyFrame(CopyScope::All);
    EXPECT_EQ(frames(), u"www"_s);
    m_studio.select(0);
    SelectedCell(m_studio).setFrame(CellFrame::film);
    SelectedCell(m_studio).copyFrame(CopyScope::Row); // reaches both of the right column
    EXPECT_EQ(frames(), u"fff"_s);
}

TEST_F(Board, SwapsAndReplacesPhotos)
{
    open({3, 0, 4});
    m_studio.select(0);
    SelectedCell(m_studio).setFrame(CellFrame::instant);
    SelectedCell(m_studio).setZoom(9);
    EXPECT_EQ(m_studio.design().cells.at(0).zoom, 4);
    m_studio.swapCells(0, 2);
    EXPECT_EQ(photoOf(2), id(3));
    EXPECT_EQ(m_studio.selected(), 2);
    EXPECT_EQ(m_studio.design().cells.at(2).zoom, 4);
    EXPECT_EQ(m_studio.order(id(4)), 1);
    m_studio.replacePhoto(2, id(4)); // is in the collage: changes places
    EXPECT_EQ(photoOf(0), id(3));
    m_studio.replacePhoto(0, id(9));
    EXPECT_EQ(photoOf(0), id(9));
    EXPECT_EQ(m_studio.design().cells.at(0).frame, CellFrame::instant);
    EXPECT_EQ(m_studio.design().cells.at(0).zoom, 1);
    EXPECT_EQ(m_studio.order(id(3)), 0);
    const QString path = m_folder.filePath(u"dropped.png"_s);
    ASSERT_TRUE(QImage(30, 20, QImage::Format_RGB32).save(path));
    m_studio.replacePhoto(1, path);
    ASSERT_TRUE(waitFor([&] { return m_studio.photo(photoOf(1))->name == u"dropped"_s; }));
    m_studio.swapCells(0, 7);
    EXPECT_EQ(photoOf(0), id(9));
}

TEST_F(Steps, JoinTheChangesOfOneSlider)
{
    open({0, 3});
    EXPECT_FALSE(m_studio.canUndo());
    CollagePage(m_studio).setGap(0.03);
    m_clock.advance(500ms);
    CollagePage(m_studio).setGap(0.5);
    EXPECT_EQ(m_studio.design().gap, CollagePage::largestGap);
    CollagePage(m_studio).setMargin(0.05);
    m_clock.advance(1500ms);
    CollagePage(m_studio).setMargin(-1);
    CollagePage(m_studio).setRadius(std::nan(""));
    m_studio.undo();
    EXPECT_EQ(m_studio.design().margin, 0.05);
    m_studio.undo();
    m_studio.undo();
    EXPECT_EQ(m_studio.design().gap, 0.02);
    EXPECT_FALSE(m_studio.canUndo());
    m_studio.redo();
    EXPECT_EQ(m_studio.design().gap, CollagePage::largestGap);
    CollagePage(m_studio).setAspect(CollageAspect::story);
    EXPECT_FALSE(m_studio.canRedo());
    EXPECT_EQ(m_studio.outputSize(), QSize(1350, 2400));
    EXPECT_EQ(m_studio.boardSize(), QSizeF(337, 600));
}

TEST_F(Steps, TypingOnTheFilmEdgeIsOneStep)
{
    open({0, 3});
    m_studio.choosePreset(u"filmstrip"_s);
    FilmEdge edge;
    for (const QString &typed : {u"M"_s, u"Mi"_s, u"Mine"_s}) {
        edge.topText = typed;
        CollagePage(m_studio).setFilmEdge(edge);
    }
    edge.startNumber = -4;
    CollagePage(m_studio).setFilmEdge(edge);
    EXPECT_EQ(m_studio.design().filmEdge.startNumber, 0);
    edge.stock = u"Ilford HP5 Plus"_s;
    edge.startNumber = 0;
    CollagePage(m_studio).setFilmEdge(edge);
    m_studio.undo();
    EXPECT_EQ(m_studio.design().filmEdge.stock, FilmEdge().stock);
    m_studio.undo();
    EXPECT_EQ(m_studio.design().filmEdge.topText, u"Mine"_s);
    m_studio.undo();
    EXPECT_EQ(m_studio.design().filmEdge, FilmEdge());
}

TEST_F(Steps, GoBackToPhotosThatWereLetGo)
{
    open({0, 3, 4});
    m_studio.select(2);
    m_studio.toggle(id(4));
    EXPECT_FALSE(m_studio.selected());
    m_studio.undo();
    EXPECT_EQ(m_studio.order(id(4)), 3);
    EXPECT_TRUE(settle());
    for (int i = 0; i < 60; ++i) {
        CollagePage(m_studio).setAspect(i % 2 ? CollageAspect::square : CollageAspect::story);
    }
    int steps = 0;
    while (m_studio.canUndo()) {
        m_studio.undo();
        ++steps;
    }
    EXPECT_EQ(steps, CollageStudio::mostSteps);
}

} // namespace
} // namespace tarnovel::test
