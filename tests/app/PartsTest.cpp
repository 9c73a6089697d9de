// Parts of the window that need none: keys, drops, shared state.

#include <QDir>
#include <QFile>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>

#include "app/EditorContext.h"
#include "app/handwriting/HandwritingKeys.h"
#include "app/window/FileDrops.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

using namespace app;

/// What a key of the handwriting page does, in a word; empty for a key that is not the page's.
QString done(Qt::Key key, const QString &sign = {}, Qt::KeyboardModifiers held = {})
{
    QString what;
    const HandwritingKeys keys({.undo = [&] { what = u"undo"_s; },
                                .redo = [&] { what = u"redo"_s; },
                                .take = [&](HandwritingTool tool) { what = handwritingToolTitle(tool); },
                                .move = [&](bool moving) { what = moving ? u"move"_s : u"write"_s; },
                                .widen = [&](int sizes) { what = u"wider by %1"_s.arg(sizes); },
                                .enlarge = [&] { what = u"larger"_s; },
                                .reduce = [&] { what = u"smaller"_s; },
                                .fit = [&] { what = u"fit"_s; },
                                .leave = [&] { what = u"leave"_s; },
                                .hold = [&] { what = u"hold"_s; }});
    if (const std::function<void()> *act = keys.find(QKeyEvent(QEvent::KeyPress, key, held, sign))) {
        (*act)();
    }
    return what;
}

TEST(HandwritingKeys, EachKeyDoesItsOneThing)
{
    const auto control = Qt::ControlModifier;
    const struct {
        Qt::Key key;
        QString sign;
        Qt::KeyboardModifiers held;
        QString what;
    } rows[] = {{Qt::Key_Z, u"\x1a"_s, control, u"undo"_s},
                {Qt::Key_Z, u"\x1a"_s, control | Qt::ShiftModifier, u"redo"_s},
                {Qt::Key_Y, {}, control, u"redo"_s},
                {Qt::Key_0, {}, control, u"fit"_s},
                {Qt::Key_Plus, {}, control, u"larger"_s},
                {Qt::Key_Equal, {}, control | Qt::ShiftModifier, u"larger"_s},
                {Qt::Key_Minus, {}, control, u"smaller"_s},
                {Qt::Key_Plus, u"+"_s, {}, u"larger"_s},
                {Qt::Key_Minus, u"-"_s, Qt::KeypadModifier, u"smaller"_s},
                {Qt::Key_BracketLeft, u"["_s, {}, u"wider by -1"_s},
                {Qt::Key_8, u"]"_s, {}, u"wider by 1"_s}, // where the sign is on a figure
                {Qt::Key_D, u"d"_s, {}, u"write"_s},
                {Qt::Key_M, u"M"_s, Qt::ShiftModifier, u"move"_s},
                {Qt::Key_E, u"e"_s, {}, handwritingToolTitle(HandwritingTool::Eraser)},
                {Qt::Key_1, u"1"_s, {}, handwritingToolTitle(HandwritingTool::Signature)},
                {Qt::Key_Ampersand, u"4"_s, {}, handwritingToolTitle(HandwritingTool::Marker)},
                {Qt::Key_5, u"5"_s, {}, handwritingToolTitle(HandwritingTool::Eraser)},
                {Qt::Key_Space, u" "_s, {}, u"hold"_s},
                {Qt::Key_Escape, {}, {}, u"leave"_s},
                // And these are others'.
                {Qt::Key_6, u"6"_s, {}, {}},
                {Qt::Key_E, u"e"_s, Qt::AltModifier, {}},
                {Qt::Key_D, u"d"_s, control, {}},
                {Qt::Key_Escape, {}, control, {}},
                {Qt::Key_Tab, u"\t"_s, {}, {}},
                {Qt::Key_F6, {}, {}, {}}};
    for (const auto &row : rows) {
        EXPECT_EQ(done(row.key, row.sign, row.held), row.what) << row.key << " " << row.sign.toStdString();
    }
}

class Drops : public testing::Test {
protected:
    QTemporaryDir m_folder;

    QString file(const QString &name) const
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile made(path);
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
        return path;
    }

    static QStringList pictures(const QList<QUrl> &urls)
    {
        QMimeData data;
        data.setUrls(urls);
        return FileDrops::pictures(&data);
    }
};

TEST_F(Drops, TakePicturesAndTheFirstLevelOfFolders)
{
    const QString photo = file(u"b.JPG"_s);
    const QString text = file(u"notes.txt"_s);
    const QString inside = file(u"set/2.heic"_s);
    const QString before = file(u"set/1.png"_s);
    file(u"set/readme.md"_s);
    file(u"set/deeper/3.jpg"_s);
    EXPECT_EQ(
        pictures({QUrl::fromLocalFile(photo), QUrl::fromLocalFile(text),
                  QUrl::fromLocalFile(m_folder.filePath(u"set"_s)), QUrl(u"https://example.org/a.jpg"_s)}),
        (QStringList{photo, before, inside}));
    // What was named is taken as it is: the import says what is wrong with it.
    EXPECT_EQ(FileDrops::pictures(QStringList{text}), QStringList{text});
    EXPECT_EQ(pictures({}), QStringList());
}

TEST_F(Drops, TellFilesFromAddresses)
{
    QMimeData data;
    EXPECT_FALSE(FileDrops::hasFiles(&data));
    EXPECT_FALSE(FileDrops::hasWebAddress(&data));
    data.setUrls({QUrl(u"https://example.org/a.jpg"_s)});
    EXPECT_FALSE(FileDrops::hasFiles(&data));
    EXPECT_TRUE(FileDrops::hasWebAddress(&data));
    data.setUrls({QUrl(u"ftp://example.org/a.jpg"_s)});
    EXPECT_FALSE(FileDrops::hasWebAddress(&data));
    data.setUrls({QUrl::fromLocalFile(u"/a.jpg"_s)});
    EXPECT_TRUE(FileDrops::hasFiles(&data));
}

TEST_F(Drops, ArgumentsMayBeAddressesOfFiles)
{
    EXPECT_EQ(FileDrops::pathOf(u"file:///photos/%C3%A9t%C3%A9.jpg"_s), u"/photos/été.jpg"_s);
    EXPECT_EQ(FileDrops::pathOf(u"/photos/100%25.jpg"_s), u"/photos/100%25.jpg"_s);
    EXPECT_EQ(FileDrops::pathOf(u"a.jpg"_s), QDir::current().absoluteFilePath(u"a.jpg"_s));
}

TEST(SharedState, ATakerOfColoursGoesWithTheToolThatAsked)
{
    EditorState state;
    QSignalSpy tool(&state, &EditorState::toolChanged);
    QSignalSpy picking(&state, &EditorState::pickingChanged);
    QSignalSpy layer(&state, &EditorState::layerChanged);
    state.setTool(Tool::Border);
    EXPECT_EQ(tool.size(), 1);
    QColor taken;
    state.pickColor([&taken](const QColor &color) { taken = color; });
    ASSERT_TRUE(state.colorTaker());
    state.colorTaker()(Qt::red);
    EXPECT_EQ(taken, QColor(Qt::red));
    state.setTool(Tool::Border);
    EXPECT_FALSE(state.colorTaker()) << "the same tool again ends the picking";
    EXPECT_EQ(tool.size(), 1) << "and changes nothing";
    EXPECT_EQ(picking.size(), 2);
    state.endPicking();
    EXPECT_EQ(picking.size(), 2);
    state.selectLayer(u"title"_s);
    state.selectLayer(u"title"_s);
    EXPECT_EQ(layer.size(), 1);
    EXPECT_EQ(state.selectedLayer(), u"title"_s);
}

} // namespace
} // namespace tarnovel::test
