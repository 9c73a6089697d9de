#include <gtest/gtest.h>

#include <limits>
#include <thread>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "base/FileError.h"
#include "base/Json.h"
#include "base/Uuid.h"
#include "model/ImportedFile.h"
#include "model/LibraryCleanup.h"
#include "model/LibraryPaths.h"
#include "model/SessionStore.h"
#include "model/SessionWriter.h"
#include "model/SetAsideSessions.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

/// A library folder of the test's own.
class Library : public testing::Test {
protected:
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString folder() const { return m_folder.path(); }

    void write(const QString &name, const QByteArray &bytes = "x") const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    PhotoItem photo(const QString &file) const
    {
        PhotoItem item;
        item.id = QUuid::createUuid();
        item.file = file;
        item.name = u"名前 – été"_s;
        item.width = 6000;
        item.height = 4000.5;
        return item;
    }

    QTemporaryDir m_folder;
};

using SessionDocument = Library;
using SessionWriting = Library;
using Loading = Library;
using SetAside = Library;
using Cleanup = Library;
using Importing = Library;

TEST_F(SessionDocument, ReadsBackEqual)
{
    Session session;
    session.photos = {photo(u"a.jpg"_s), photo(u"b.jpg"_s)};
    session.selected = session.photos.last().id;
    session.presets = {{QUuid::createUuid(), u"mine"_s, {}, 727'000'000.123},
                       {QUuid::createUuid(), u"new"_s, {}, {}}};
    session.lastStyle = FrameSettings{};
    session.lastStyle->scale = 0.5;
    EXPECT_EQ(readSession(writeSession(session)), session);
    EXPECT_EQ(readSession(R"({"photos":[],"presets":[]})"), Session{});
    EXPECT_EQ(session.referencedFiles(), (std::set<QString>{u"a.jpg"_s, u"b.jpg"_s}));
}

TEST_F(SessionDocument, NamesThePlaceOfAFault)
{
    Session session;
    session.photos = {photo(u"a.jpg"_s), photo(u"b.jpg"_s)};
    Json document = parseJson(writeSession(session));
    document["photos"][1]["settings"]["color"].erase("r");
    try {
        readSession(writeJson(document));
        ADD_FAILURE();
    } catch (const JsonError &error) {
        EXPECT_EQ(error.path(), "/photos/1/settings/color/r");
    }
    EXPECT_THROW(readSession(R"({"photos":[]})"), JsonError);
    EXPECT_THROW(readSession(R"({"photos":[],"presets":[],"selected":"me"})"), JsonError);
}

TEST_F(SessionWriting, DropsWhatIsOlderThanTheLatest)
{
    SessionWriter writer(folder());
    Session session;
    session.photos = {photo(u"seven.jpg"_s)};
    EXPECT_TRUE(writer.save(session, 7));
    EXPECT_FALSE(writer.save({}, 5));
    EXPECT_EQ(readSession(read(u"session.json"_s)), session);
    session.photos.first().name = u"again"_s;
    EXPECT_TRUE(writer.save(session, 7));
    EXPECT_EQ(readSession(read(u"session.json"_s)), session);
}

TEST_F(SessionWriting, KeepsTheOldDocumentWhenTheDiskRefuses)
{
    ASSERT_TRUE(QDir().mkpath(path(u"session.json/inside"_s)));
    SessionWriter writer(folder());
    EXPECT_FALSE(writer.save({}, 1));
    EXPECT_TRUE(QFileInfo::exists(path(u"session.json/inside"_s)));
    ASSERT_TRUE(QDir(path(u"session.json"_s)).removeRecursively());
    Session broken;
    ASSERT_TRUE(writer.save(broken, 2));
    broken.photos = {photo(u"a.jpg"_s)};
    broken.photos.first().settings.x = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(writer.save(broken, 3));
    EXPECT_EQ(readSession(read(u"session.json"_s)), Session{});
}

TEST_F(SessionWriting, MakesAFolderThatWentAwayAndClosesItToOthers)
{
    const QString again = path(u"gone/library"_s);
    ASSERT_TRUE(SessionWriter(again).save({}, 1));
    const auto forOthers = [](const QString &file) {
        return QFileInfo(file).permissions() & (QFile::ReadGroup | QFile::ReadOther | QFile::ExeOther);
    };
    EXPECT_FALSE(forOthers(again));
    EXPECT_FALSE(forOthers(again + u"/session.json"_s));
    write(u"photo.jpg"_s);
    EXPECT_FALSE(forOthers(again + u'/' + ImportedFile::receive(path(u"photo.jpg"_s), again).file));
}

TEST_F(SessionWriting, LeavesOneWholeDocumentBehindManyThreads)
{
    SessionWriter writer(folder());
    std::vector<std::jthread> threads;
    for (int revision = 1; revision <= 8; ++revision) {
        threads.emplace_back([&, revision] {
            Session session;
            session.photos = {photo(QString::number(revision))};
            writer.save(session, revision);
        });
    }
    threads.clear();
    EXPECT_EQ(readSession(read(u"session.json"_s)).photos.first().file, u"8"_s);
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST_F(Loading, DropsPhotosWhoseFilesAreGone)
{
    write(u"b.jpg"_s);
    Session session;
    session.photos = {photo(u"gone.jpg"_s), photo(u"b.jpg"_s), photo(u"../escape.jpg"_s),
                      photo(u"/etc/hostname"_s)};
    session.photos[1].settings.layers.clear();
    session.selected = session.photos.first().id;
    SessionWriter(folder()).save(session, 1);
    const LoadedSession loaded = loadSession(folder(), LibraryAccess::Own);
    ASSERT_EQ(loaded.session.photos.size(), 1);
    EXPECT_EQ(loaded.session.selected, session.photos.at(1).id);
    EXPECT_EQ(loaded.session.lastStyle, std::nullopt);
    EXPECT_EQ(loaded.session.photos.first().settings.layers, defaultLayers());
}

TEST_F(Loading, TidiesEveryRecordAndNoNameLeadsOut)
{
    write(u"a.jpg"_s);
    Session session;
    session.photos = {photo(u"a.jpg"_s)};
    FrameSettings &settings = session.photos.first().settings;
    settings.layers.resize(3);
    settings.layers[0].imageFile = u"/etc/passwd"_s;
    settings.layers[1].imageFile = u"logo.png"_s;
    settings.backgroundFile = u"../../x.jpg"_s;
    settings.handwritingFile = u".."_s;
    session.presets = {{QUuid::createUuid(), u"mine"_s, settings, {}}};
    session.lastStyle = settings;
    SessionWriter(folder()).save(session, 1);
    const Session loaded = loadSession(folder(), LibraryAccess::Own).session;
    for (const FrameSettings &record :
         {loaded.photos.first().settings, loaded.presets.first().settings, *loaded.lastStyle}) {
        EXPECT_EQ(record.layers.size(), 7);
        EXPECT_EQ(record.referencedFiles(), std::set<QString>{u"logo.png"_s});
    }
}

TEST_F(Loading, HoldsNamesAndLayersToABound)
{
    write(u"a.jpg"_s);
    Session session;
    session.photos = {photo(u"a.jpg"_s)};
    session.photos.first().name = QString(1'000'000, u'n');
    EXPECT_EQ(readSession(writeSession(session)).photos.first().name.size(), 1'000);
    session.photos.first().settings.layers = QList<TextLayer>(1'001, TextLayer());
    try {
        readSession(writeSession(session));
        ADD_FAILURE();
    } catch (const JsonError &error) {
        EXPECT_EQ(error.path(), "/photos/0/settings/layers");
    }
}

TEST_F(Loading, TakesTheLastStyleFromTheSelectedPhoto)
{
    write(u"a.jpg"_s);
    Session session;
    session.photos = {photo(u"a.jpg"_s)};
    session.photos.first().settings.scale = 0.5;
    session.selected = session.photos.first().id;
    SessionWriter(folder()).save(session, 1);
    EXPECT_EQ(loadSession(folder(), LibraryAccess::Own).session.lastStyle, session.photos.first().settings);
}

TEST_F(Loading, SetsADamagedDocumentAside)
{
    const QString owned = uuidText(QUuid::createUuid()) + u".jpg"_s;
    write(owned);
    write(u"session.json"_s, "{\"photos\":[");
    EXPECT_EQ(loadSession(folder(), LibraryAccess::ReadOnly).setAside, QString());
    EXPECT_EQ(read(u"session.json"_s), "{\"photos\":[");
    const LoadedSession loaded = loadSession(folder(), LibraryAccess::Own);
    EXPECT_FALSE(loaded.decoded);
    EXPECT_EQ(loaded.session, Session{});
    EXPECT_TRUE(loaded.cleanupCandidates.empty());
    EXPECT_EQ(read(QFileInfo(loaded.setAside).fileName()), "{\"photos\":[");
    EXPECT_FALSE(QFileInfo::exists(path(u"session.json"_s)));
    EXPECT_FALSE(loadSession(path(u"absent"_s), LibraryAccess::Own).decoded);
}

TEST_F(SetAside, BringsBackAllThatCanBeRead)
{
    for (const char *name : {"a.jpg", "b.jpg", "c.jpg"}) {
        write(QString::fromLatin1(name));
    }
    Session session;
    session.photos = {photo(u"a.jpg"_s), photo(u"b.jpg"_s), photo(u"c.jpg"_s), photo(u"gone.jpg"_s)};
    session.photos[1].settings.scale = 0.4;
    session.selected = session.photos.at(1).id;
    session.presets = {{QUuid::createUuid(), u"mine"_s, {}, 1}, {QUuid::createUuid(), u"other"_s, {}, 1}};
    Json document = parseJson(writeSession(session));
    document["photos"][1]["settings"]["style"] = "of a newer version";
    document["photos"][1]["settings"]["layers"][2]["x"] = "left";
    document["photos"][1]["settings"]["backgroundFile"] = "../../x.jpg";
    document["photos"][2].erase("file");
    document["presets"][0]["id"] = 7;
    write(u"session.json"_s, writeJson(document));
    ASSERT_FALSE(loadSession(folder(), LibraryAccess::Own).decoded);
    const QList<SetAsideSession> kept = SetAsideSessions::in(folder());
    ASSERT_EQ(kept.size(), 1);
    EXPECT_LE(std::abs(kept.first().when.secsTo(QDateTime::currentDateTime())), 60);
    const SalvagedSession found = SetAsideSessions::salvage(kept.first(), folder());
    ASSERT_EQ(found.session.photos.size(), 2);
    EXPECT_EQ(found.session.photos.first(), session.photos.first());
    const FrameSettings &patched = found.session.photos.last().settings;
    EXPECT_EQ(patched.scale, 0.4);
    EXPECT_EQ(patched.style, FrameStyle::simple);
    EXPECT_EQ(patched.layers.size(), 7);
    EXPECT_TRUE(patched.referencedFiles().empty());
    EXPECT_EQ(found.session.selected, session.selected);
    ASSERT_EQ(found.session.presets.size(), 1);
    EXPECT_EQ(found.session.presets.first().name, u"other"_s);
    EXPECT_EQ(found.session.presets.first().lastUsed, 1);
    EXPECT_EQ(found.lostPhotos, 2);
    EXPECT_EQ(found.lostPresets, 1);
    EXPECT_EQ(found.changed, 1);
    EXPECT_FALSE(found.cutShort);
}

TEST_F(SetAside, KeepsTheFilesThatItMayNeed)
{
    const QString named = uuidText(QUuid::createUuid()) + u".jpg"_s;
    const QString older = uuidText(QUuid::createUuid()) + u".jpg"_s;
    const QString younger = uuidText(QUuid::createUuid()) + u".jpg"_s;
    for (const QString &name : {named, older, younger}) {
        write(name);
    }
    const auto setTime = [this](const QString &name, const QDateTime &time) {
        QFile file(path(name));
        return file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime);
    };
    const QDateTime now = QDateTime::currentDateTimeUtc();
    ASSERT_TRUE(setTime(older, now.addDays(-1)) && setTime(younger, now.addDays(1)));
    // Of another version: what the fields mean is not known, but the names are.
    write(u"session.json"_s, R"({"pictures":[{"of":")" + named.toUtf8() + R"("}]})");
    ASSERT_FALSE(loadSession(folder(), LibraryAccess::Own).decoded);
    EXPECT_TRUE(SetAsideSessions::neededFiles(folder()).contains(named));
    EXPECT_FALSE(SetAsideSessions::neededFiles(folder()).contains(older));
    write(u"session.json"_s, "{\"photos\":[{");
    ASSERT_FALSE(loadSession(folder(), LibraryAccess::Own).decoded);
    EXPECT_EQ(SetAsideSessions::in(folder()).size(), 2);
    EXPECT_TRUE(SetAsideSessions::neededFiles(folder()).contains(older));
    EXPECT_FALSE(SetAsideSessions::neededFiles(folder()).contains(younger));
}

TEST_F(Cleanup, DeletesOnlyUnusedFilesOfItsOwnShape)
{
    const QString used = uuidText(QUuid::createUuid()) + u".jpg"_s;
    const QString unused = uuidText(QUuid::createUuid()) + u".HEIC"_s;
    const QString signature = u"handwriting-"_s + uuidText(QUuid::createUuid()) + u".png"_s;
    const QString link = uuidText(QUuid::createUuid()) + u".png"_s;
    const QStringList foreign = {u"session.json"_s, u"note.txt"_s, u"handwriting-mine.png"_s,
                                 uuidText(QUuid::createUuid()) + u"-copy.jpg"_s};
    for (const QString &name : QStringList{used, unused, signature} + foreign) {
        write(name);
    }
    ASSERT_TRUE(QFile::link(path(used), path(link)));
    ASSERT_TRUE(QDir().mkdir(path(uuidText(QUuid::createUuid()))));
    const std::set<QString> candidates = LibraryCleanup::candidates(folder());
    EXPECT_EQ(candidates, (std::set<QString>{used, unused, signature}));

    std::set<QString> asked = candidates;
    asked.insert({link, u"note.txt"_s, u"../"_s + unused});
    EXPECT_EQ(LibraryCleanup::removeUnused(asked, {used}, folder()), (std::set<QString>{unused, signature}));
    for (const QString &name : QStringList{used, link} + foreign) {
        EXPECT_TRUE(QFileInfo::exists(path(name))) << name.toStdString();
    }
    EXPECT_TRUE(LibraryCleanup::candidates(path(u"absent"_s)).empty());
}

TEST_F(Importing, CopiesContentsUnderANewName)
{
    write(u"my photo.JPeg"_s, "pixels");
    ASSERT_TRUE(QFile::link(path(u"my photo.JPeg"_s), path(u"link.jpg"_s)));
    const ImportedFile first = ImportedFile::receive(path(u"my photo.JPeg"_s), folder());
    const ImportedFile second = ImportedFile::receive(path(u"link.jpg"_s), folder());
    EXPECT_TRUE(first.file.endsWith(u".JPeg"_s));
    EXPECT_TRUE(uuidFromText(first.file.left(36)));
    EXPECT_EQ(read(second.file), "pixels");
    EXPECT_FALSE(QFileInfo(path(second.file)).isSymLink());
    EXPECT_THROW(ImportedFile::receive(path(u"absent.jpg"_s), folder()), FileError);
    EXPECT_THROW(ImportedFile::receive(folder(), folder()), FileError);
    EXPECT_EQ(QDir(folder()).entryList(QDir::Files | QDir::Hidden).size(), 4);
}

} // namespace
} // namespace tarnovel
