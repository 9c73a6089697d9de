#include "editor/EditorWorld.h"
#include "render/BuiltInTemplate.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tarnovel::test {
namespace {

using Appending = EditorWorld;
using Styling = EditorWorld;
using History = EditorWorld;
using Saving = EditorWorld;
using Previewing = EditorWorld;
using Presets = EditorWorld;

QList<int> filmNumbers(const EditorModel &model)
{
    QList<int> numbers;
    for (const PhotoItem &item : model.photos()) {
        numbers.append(item.settings.film ? item.settings.film->number : 0);
    }
    return numbers;
}

FrameSettings filmStyle(int number)
{
    FrameSettings style;
    style.style = FrameStyle::film;
    style.film = FilmOptions();
    style.film->number = number;
    return style;
}

TEST_F(Appending, HoldsFiftyAndPutsNewOnesFirst)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    EXPECT_EQ(model.append(photos(48)), 48);
    const QList<PhotoItem> more = {photo(u"x.jpg"_s), photo(u"y.jpg"_s), photo(u"z.jpg"_s)};
    EXPECT_EQ(model.append(more), 2);
    EXPECT_EQ(model.photos().size(), 50);
    EXPECT_EQ(model.photos().at(1).file, u"y.jpg"_s);
    EXPECT_EQ(model.selected(), more.first().id);
    EXPECT_EQ(model.append(more), 0);
    EXPECT_EQ(model.selected(), more.first().id);
}

TEST_F(Appending, NumbersImportedFilmFramesOnward)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    model.importPhotos(photos(3), filmStyle(5));
    EXPECT_EQ(filmNumbers(model), (QList<int>{5, 6, 7}));
    EXPECT_EQ(model.lastStyle()->film->number, 8);
    EXPECT_EQ(model.photos().at(1).settings.layer(u"brand"_s)->text, u"1.jpg"_s);
    model.importPhotos({photo(u"next.jpg"_s)});
    EXPECT_EQ(filmNumbers(model).first(), 8);
}

TEST_F(Appending, ChoosesTheStyleOfNewPhotos)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    EXPECT_EQ(model.styleForImport(), FrameSettings());
    FrameSettings style;
    style.scale = 0.5;
    model.importPhotos(photos(1), style);
    EXPECT_EQ(model.styleForImport().scale, 0.5);
    model.setAutoApplyLastStyle(false);
    EXPECT_EQ(model.styleForImport(), FrameSettings());
}

TEST_F(Styling, ApplyToAllKeepsCameraTextsAndNumbersByPlace)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    model.append(photos(4));
    model.select(model.photos().at(2).id);
    FrameSettings style = filmStyle(5);
    style.layer(u"title"_s)->text = u"ours"_s;
    style.layer(u"brand"_s)->text = u"mine"_s;
    model.update(style);
    model.applyToAll();
    EXPECT_EQ(filmNumbers(model), (QList<int>{5, 6, 7, 8}));
    EXPECT_EQ(model.photos().at(0).settings.layer(u"title"_s)->text, u"ours"_s);
    EXPECT_EQ(model.photos().at(0).settings.layer(u"brand"_s)->text, u"0.jpg"_s);
    EXPECT_EQ(model.photos().at(2).settings.layer(u"brand"_s)->text, u"mine"_s);
    EXPECT_EQ(stepsBack(model), 1);
    model.undo();
    EXPECT_EQ(model.photos().at(0).settings.style, FrameStyle::simple);
    EXPECT_EQ(model.current()->settings, style);
    model.redo();
    EXPECT_EQ(filmNumbers(model), (QList<int>{5, 6, 7, 8}));
}

TEST_F(Styling, LeavesCopiesOfTheSessionAlone)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    model.append(photos(2));
    const QList<PhotoItem> held = model.photos();
    FrameSettings settings = model.current()->settings;
    settings.scale = 0.123;
    model.update(settings);
    EXPECT_EQ(held.first().settings.scale, 0.88);
    EXPECT_EQ(model.photos().first().settings.scale, 0.123);
}

TEST_F(Styling, MovesAPhotoToThePlaceOfAnother)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    model.append(photos(4));
    const auto id = [&model](int index) { return model.photos().at(index).id; };
    const auto order = [&model] {
        QString names;
        for (const PhotoItem &item : model.photos()) {
            names += item.file.left(1);
        }
        return names;
    };
    model.movePhoto(id(3), id(1));
    EXPECT_EQ(order(), u"0312"_s);
    model.movePhoto(id(0), id(2));
    EXPECT_EQ(order(), u"3102"_s);
    model.movePhoto(id(0), id(0));
    model.movePhoto(QUuid::createUuid(), id(0));
    EXPECT_EQ(order(), u"3102"_s);
}

TEST_F(Styling, SelectsTheFirstPhotoWhenTheSelectedOneGoes)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    model.append(photos(4));
    model.select(model.photos().at(2).id);
    model.removeCurrent();
    EXPECT_EQ(model.selected(), model.photos().first().id);
    model.select(model.photos().at(1).id);
    model.removePhotos({model.photos().at(0).id});
    EXPECT_EQ(model.current()->file, u"1.jpg"_s);
    model.savePreset(u"kept"_s);
    model.checkpoint();
    model.removeAll();
    EXPECT_EQ(model.selected(), std::nullopt);
    EXPECT_FALSE(model.canUndo());
    EXPECT_EQ(model.presets().size(), 1);
    EXPECT_TRUE(model.lastStyle());
    model.removeCurrent();
    model.checkpoint();
    EXPECT_FALSE(model.canUndo());
}

TEST_F(Presets, RememberTheirUse)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    EXPECT_FALSE(model.savePreset(u"none"_s));
    EXPECT_EQ(model.preferredPreset(), nullptr);
    EXPECT_EQ(model.activeTemplateID(), u"plain"_s);
    model.append(photos(1));
    FrameSettings settings = model.current()->settings;
    settings.scale = 0.3;
    model.update(settings);
    EXPECT_TRUE(model.savePreset(u"first"_s));
    m_clock.advance(1s);
    EXPECT_TRUE(model.savePreset(u"second"_s));
    EXPECT_EQ(model.preferredPreset()->name, u"second"_s);
    m_clock.advance(1s);
    model.applyPreset(model.presets().first());
    EXPECT_EQ(model.preferredPreset()->name, u"first"_s);
    EXPECT_EQ(stepsBack(model), 1);
    settings.templateID = {};
    model.update(settings);
    EXPECT_EQ(model.activeTemplateID(), std::nullopt);
    settings = BuiltInTemplates::make(BuiltInTemplate::gear, settings, {});
    settings.templateID = u"preset-X"_s;
    model.update(settings);
    EXPECT_EQ(model.activeTemplateID(), u"preset-X"_s);
    model.deletePreset(model.presets().first().id);
    EXPECT_EQ(model.presets().size(), 1);
}

TEST_F(History, HoldsFortySteps)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    model.append(photos(2));
    for (int i = 1; i <= 41; ++i) {
        model.checkpoint();
        FrameSettings settings = model.current()->settings;
        settings.x = i;
        model.update(settings);
    }
    EXPECT_EQ(stepsBack(model), 40);
    while (model.canUndo()) {
        model.undo();
    }
    EXPECT_EQ(model.current()->settings.x, 1); // the step to 0 is gone
    model.redo();
    EXPECT_EQ(model.current()->settings.x, 2);
    while (model.canRedo()) {
        model.redo();
    }
    EXPECT_EQ(model.current()->settings.x, 41);
    model.undo();
    model.checkpoint();
    EXPECT_FALSE(model.canRedo());
}

TEST_F(History, SkipsPhotosThatAreGone)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    model.append(photos(3));
    model.select(model.photos().at(1).id);
    FrameSettings settings;
    settings.scale = 0.3;
    model.update(settings);
    model.applyToAll();
    model.removeCurrent();
    model.undo();
    EXPECT_EQ(model.photos().size(), 2);
    EXPECT_EQ(model.photos().first().settings.scale, 0.88);
    EXPECT_EQ(model.selected(), model.photos().first().id);
}

TEST_F(Saving, JoinsEditsIntoOneWrite)
{
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    model.append(photos(1));
    for (int i = 0; i < 10; ++i) {
        FrameSettings settings = model.current()->settings;
        settings.x = i;
        model.update(settings);
        m_clock.advance(340ms);
        QCoreApplication::processEvents();
        EXPECT_FALSE(exists(u"session.json"_s));
    }
    m_clock.advance(10ms);
    ASSERT_TRUE(waitFor([this] { return exists(u"session.json"_s); }));
    EXPECT_EQ(stored().photos.first().settings.x, 9);
    m_clock.advance(10s);
    QFile::remove(m_library + u"/session.json"_s);
    QCoreApplication::processEvents();
    EXPECT_FALSE(exists(u"session.json"_s));
}

TEST_F(Saving, AtOnceTakesThePlaceOfAWaitingSave)
{
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    model.append(photos(1));
    model.scheduleSave(SaveScheduler::Moment::AtOnce);
    ASSERT_TRUE(waitFor([this] { return exists(u"session.json"_s); }));
    model.flush();
    QFile::remove(m_library + u"/session.json"_s);
    m_clock.advance(10s);
    model.flush();
    EXPECT_FALSE(exists(u"session.json"_s));
}

TEST_F(Saving, FailsAloudAndTriesAgain)
{
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    ASSERT_TRUE(QDir().mkpath(m_library + u"/session.json/in the way"_s));
    model.append(photos(1));
    model.scheduleSave(SaveScheduler::Moment::AtOnce);
    ASSERT_TRUE(waitFor([&model] { return !model.message().isEmpty(); }));
    EXPECT_EQ(model.message(), u"Could not save your edits. Check available device storage."_s);
    EXPECT_EQ(model.photos().size(), 1);
    ASSERT_TRUE(QDir(m_library + u"/session.json"_s).removeRecursively());
    model.update(model.current()->settings);
    m_clock.advance(1s);
    model.flush();
    EXPECT_EQ(stored().photos.size(), 1);
}

TEST_F(Saving, DeletesAFileOnlyWhenNothingCanBringItBack)
{
    const auto ownFile = [] {
        return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + u".jpg"_s;
    };
    const QString used = ownFile();
    const QString stray = ownFile();
    {
        EditorModel model(m_services, EditorModel::Load::StoredSession);
        model.append({photo(used)});
    }
    photo(stray);
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    const QString backdrop = ownFile();
    photo(backdrop);
    FrameSettings settings = model.current()->settings;
    settings.backgroundFile = backdrop;
    model.update(settings);
    model.checkpoint();
    settings.backgroundFile = {};
    model.update(settings);
    const auto save = [this, &model] {
        model.scheduleSave();
        m_clock.advance(1s);
        model.flush();
        QCoreApplication::processEvents();
    };
    save();
    EXPECT_FALSE(exists(stray));
    EXPECT_TRUE(exists(backdrop));
    for (int i = 0; i < 40; ++i) {
        model.checkpoint();
    }
    save();
    EXPECT_FALSE(exists(backdrop));
    EXPECT_TRUE(exists(used));
}

TEST_F(Saving, BringsTheSessionBack)
{
    QList<PhotoItem> before;
    {
        EditorModel model(m_services, EditorModel::Load::StoredSession);
        model.append(photos(3));
        model.select(model.photos().at(1).id);
        before = model.photos();
    }
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    EXPECT_EQ(model.photos(), before);
    EXPECT_EQ(model.current()->file, u"1.jpg"_s);
}

TEST_F(Previewing, LoadsWhatTheSelectedPhotoNeeds)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    PhotoItem item = photo(u"a.jpg"_s, {1600, 800});
    photo(u"logo.jpg"_s, {900, 900});
    photo(u"ink.jpg"_s, {2000, 500});
    item.settings.background = Backdrop::blur;
    item.settings.layer(u"watermark"_s)->imageFile = u"logo.jpg"_s;
    item.settings.handwritingFile = u"ink.jpg"_s;
    model.append({item});
    ASSERT_TRUE(waitFor(
        [&model] { return !model.previews().palette.isEmpty() && !model.previews().background.isNull(); }));
    const Previews &previews = model.previews();
    EXPECT_EQ(previews.photo.size(), QSize(1400, 700));
    EXPECT_EQ(previews.background.size(), QSize(500, 250));
    EXPECT_EQ(previews.logo.size(), QSize(600, 600));
    EXPECT_EQ(previews.signature.size(), QSize(1200, 300));
}

TEST_F(Previewing, PublishesOnlyTheLatestPhoto)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    QList<PhotoItem> items;
    for (int i = 0; i < 8; ++i) {
        items.append(photo(u"%1.jpg"_s.arg(i), {400 + 100 * i, 300}));
    }
    model.append(items);
    QList<QSize> seen;
    QObject::connect(&model, &EditorModel::changed, &model, [&](EditorModel::Changes changes) {
        if (changes & EditorModel::PreviewsChanged && !model.previews().photo.isNull()) {
            seen.append(model.previews().photo.size());
        }
    });
    for (const PhotoItem &item : items) {
        model.select(item.id);
    }
    ASSERT_TRUE(waitFor([&model] { return !model.previews().palette.isEmpty(); }));
    EXPECT_FALSE(seen.isEmpty());
    EXPECT_TRUE(std::ranges::all_of(seen, [](QSize size) { return size == QSize(1100, 300); }));
    // Selecting it again needs no decoding: the picture is there at once.
    model.select(items.last().id);
    EXPECT_EQ(model.previews().photo.size(), QSize(1100, 300));
}

TEST_F(Previewing, SaysWhenAPhotoCannotBeRead)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    PhotoItem item = photo(u"a.jpg"_s);
    item.file = u"gone.jpg"_s;
    item.settings.backgroundFile = u"gone too.jpg"_s;
    item.settings.background = Backdrop::image;
    model.append({item});
    ASSERT_TRUE(waitFor([&model] { return !model.message().isEmpty(); }));
    EXPECT_EQ(model.message(), u"Could not read this photo."_s);
    EXPECT_TRUE(model.previews().background.isNull());
}

} // namespace
} // namespace tarnovel::test
