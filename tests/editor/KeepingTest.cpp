// What the session must not lose: documents set aside, saves that failed, files that something still needs.

#include <thread>
#include <unistd.h>

#include <QProcess>

#include "base/Json.h"
#include "base/Uuid.h"
#include "editor/EditorWorld.h"
#include "editor/SingleInstance.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tarnovel::test {
namespace {

class Keeping : public EditorWorld {
protected:
    static QString ownName() { return uuidText(QUuid::createUuid()) + u".jpg"_s; }

    PhotoItem ownPhoto() const { return photo(ownName()); }

    /// A start of the program that runs until what it has to save is saved.
    template<typename Work>
    void start(Work work)
    {
        EditorModel model(m_services, EditorModel::Load::StoredSession);
        work(model);
        model.scheduleSave(SaveScheduler::Moment::AtOnce);
        EXPECT_TRUE(model.flush());
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

    static FrameSettings filmed()
    {
        FrameSettings settings;
        settings.style = FrameStyle::film;
        return settings;
    }

    void store(const Session &session) { EXPECT_TRUE(m_writer.save(session, m_writer.latestRevision() + 1)); }

    void write(const QByteArray &document) const
    {
        QFile file(m_library + u"/session.json"_s);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(document);
    }
};

using Recovery = Keeping;
using KeepingSaves = Keeping;
using KeepingSteps = Keeping;
using KeepingOneEditor = Keeping;

TEST_F(Recovery, KeepsTheFilesOfASetAsideSessionUntilItIsDiscarded)
{
    Session session;
    session.photos = {ownPhoto(), ownPhoto()};
    session.photos[1].settings.backgroundFile = ownPhoto().file;
    Json document = parseJson(writeSession(session));
    document["photos"][0]["settings"]["preset"] = "of a newer version";
    write(writeJson(document));
    const auto expectFiles = [&](bool there) {
        for (const QString &name : session.referencedFiles()) {
            EXPECT_EQ(exists(name), there) << name.toStdString();
        }
    };
    const QString stray = ownPhoto().file;
    start([](EditorModel &model) { EXPECT_TRUE(model.photos().isEmpty()); });
    // The second start decodes a session, which makes every file that nothing names a candidate.
    start([&](EditorModel &model) { model.append({ownPhoto()}); });
    start([](EditorModel &model) { model.removeAll(); });
    start([](EditorModel &) {});
    expectFiles(true);
    EXPECT_FALSE(exists(stray));
    start([](EditorModel &model) {
        ASSERT_EQ(model.setAside().size(), 1);
        model.discard(model.setAside().first());
        EXPECT_TRUE(model.setAside().isEmpty());
    });
    expectFiles(false);
}

TEST_F(Recovery, BringsASessionBackBesideTheOneThatWasBegun)
{
    Session session;
    session.photos = {ownPhoto(), ownPhoto()};
    session.presets = {{QUuid::createUuid(), u"mine"_s, {}, {}}};
    session.selected = session.photos.last().id;
    write("[" + writeSession(session));
    start([&](EditorModel &model) { model.append({ownPhoto()}); });
    // What cannot even be parsed brings nothing back, and keeps everything.
    start([](EditorModel &model) {
        EXPECT_FALSE(model.restore(model.setAside().first()).complete);
        EXPECT_EQ(model.photos().size(), 1);
        EXPECT_EQ(model.setAside().size(), 1);
        model.discard(model.setAside().first());
    });
    for (PhotoItem &item : session.photos) {
        item = ownPhoto();
    }
    session.selected = session.photos.last().id;
    QFile aside(m_library + u"/session-damaged-20260101-120000.json"_s);
    ASSERT_TRUE(aside.open(QIODevice::WriteOnly));
    aside.write(writeSession(session));
    aside.close();
    start([&](EditorModel &model) {
        EXPECT_EQ(model.restorable(model.setAside().first()).session.photos.size(), 2);
        const EditorModel::Restored restored = model.restore(model.setAside().first());
        EXPECT_EQ(restored.photos, 2);
        EXPECT_EQ(restored.presets, 1);
        EXPECT_TRUE(restored.complete);
        EXPECT_EQ(model.photos().size(), 3);
        EXPECT_EQ(model.selected(), session.selected);
    });
    EXPECT_FALSE(aside.exists());
    start([](EditorModel &model) {
        EXPECT_EQ(model.photos().size(), 3);
        EXPECT_EQ(model.presets().size(), 1);
        EXPECT_TRUE(model.setAside().isEmpty());
    });
}

TEST_F(Recovery, LeavesTheDocumentWhereNotEverythingCameBack)
{
    Session session;
    session.photos = {ownPhoto(), ownPhoto()};
    Json document = parseJson(writeSession(session));
    document["photos"][1].erase("id");
    write(writeJson(document));
    start([](EditorModel &model) { EXPECT_FALSE(model.restore(model.setAside().first()).complete); });
    start([](EditorModel &model) {
        EXPECT_EQ(model.photos().size(), 1);
        ASSERT_EQ(model.setAside().size(), 1);
        EXPECT_TRUE(model.restorable(model.setAside().first()).session.photos.isEmpty());
    });
    EXPECT_TRUE(exists(session.photos.at(1).file));
}

TEST_F(Recovery, NeverDropsEditsThatTheSessionLacks)
{
    Session session;
    session.photos = {ownPhoto()};
    session.presets = {{QUuid::createUuid(), u"mine"_s, {}, 5.0}};
    store(session);
    const auto keep = [&](const Session &kept) {
        QFile aside(m_library + u"/session-damaged-20260101-120000.json"_s);
        EXPECT_TRUE(aside.open(QIODevice::WriteOnly));
        aside.write(writeSession(kept));
    };
    Session newer = session;
    newer.photos.first().settings.scale = 0.2;
    keep(newer);
    start([](EditorModel &model) { EXPECT_EQ(model.setAside().size(), 1); });
    keep(session);
    start([](EditorModel &model) { EXPECT_TRUE(model.setAside().isEmpty()); });
}

TEST_F(Recovery, SetsAsideWhatCouldNotBeOpened)
{
    // A link into nowhere stands for a disk that is not there now.
    ASSERT_TRUE(QFile::link(m_folder.filePath(u"elsewhere.json"_s), m_library + u"/session.json"_s));
    const QString name = ownPhoto().file;
    start([&](EditorModel &model) { model.append({ownPhoto()}); });
    start([](EditorModel &) {});
    EXPECT_TRUE(exists(name));
}

TEST_F(KeepingSaves, FlushTriesAgainAndTellsHowItWent)
{
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    ASSERT_TRUE(QDir().mkpath(m_library + u"/session.json/in the way"_s));
    model.append(photos(1));
    EXPECT_FALSE(model.flush());
    EXPECT_FALSE(model.flush());
    ASSERT_TRUE(QDir(m_library + u"/session.json"_s).removeRecursively());
    // No edit since: the state that could not be saved is still to be.
    EXPECT_TRUE(model.flush());
    EXPECT_EQ(stored().photos.size(), 1);
}

TEST_F(KeepingSaves, MakesTheLibraryAgainWhenItWentAway)
{
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    const PhotoItem item = ownPhoto();
    ASSERT_TRUE(QDir(m_library).removeRecursively());
    model.append({item});
    EXPECT_TRUE(model.flush());
    EXPECT_TRUE(exists(u"session.json"_s));
}

TEST_F(KeepingSaves, CleansUpOnlyAfterTheLatestSave)
{
    Session session;
    session.photos = {ownPhoto(), ownPhoto()};
    store(session);
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    model.removePhotos({session.photos.first().id});
    model.flush();
    model.update(FrameSettings()); // overtakes the save that is on the disk, but not yet told
    QCoreApplication::processEvents();
    EXPECT_TRUE(exists(session.photos.first().file));
    model.flush();
    QCoreApplication::processEvents();
    EXPECT_FALSE(exists(session.photos.first().file));
    EXPECT_EQ(stored().photos.size(), 1);
}

TEST_F(KeepingSaves, EveryOperationReachesTheDocument)
{
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    const auto saved = [&] {
        EXPECT_TRUE(model.flush());
        return stored();
    };
    const QList<PhotoItem> items = photos(4);
    model.append(items);
    EXPECT_EQ(saved().photos.size(), 4);
    model.removePhotos({items.at(1).id});
    EXPECT_EQ(saved().photos.size(), 3);
    model.movePhoto(items.at(3).id, items.at(0).id);
    EXPECT_EQ(saved().photos.first().id, items.at(3).id);
    model.select(items.at(2).id);
    EXPECT_EQ(saved().selected, items.at(2).id);
    model.savePreset(u"mine"_s);
    EXPECT_EQ(saved().presets.size(), 1);
    model.deletePreset(model.presets().first().id);
    EXPECT_TRUE(saved().presets.isEmpty());
    model.checkpoint();
    model.update(filmed());
    EXPECT_EQ(saved().photos.at(2).settings.style, FrameStyle::film);
    model.undo();
    EXPECT_EQ(saved().photos.at(2).settings.style, FrameStyle::simple);
    model.removeCurrent();
    EXPECT_EQ(saved().photos.size(), 2);
    model.removeAll();
    EXPECT_TRUE(saved().photos.isEmpty());
}

TEST_F(KeepingSaves, RemembersEditsAndNotLooks)
{
    EditorModel model(m_services, EditorModel::Load::StoredSession);
    EXPECT_FALSE(model.lastEdit());
    const auto save = [&] {
        EXPECT_TRUE(model.flush());
        QCoreApplication::processEvents();
        return model.lastEdit();
    };
    m_clock.advance(1h);
    model.append(photos(2));
    const auto edited = save();
    EXPECT_EQ(edited, m_clock.date());
    m_clock.advance(1h);
    model.select(model.photos().last().id);
    EXPECT_EQ(save(), edited);
    model.checkpoint();
    model.update(FrameSettings());
    EXPECT_EQ(save(), m_clock.date());
}

TEST_F(KeepingSteps, PassOverWhatChangesNothingInSight)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    const QList<PhotoItem> items = photos(3);
    model.append(items);
    const auto edit = [&](int index, double scale) {
        model.select(items.at(index).id);
        model.checkpoint();
        FrameSettings settings = model.current()->settings;
        settings.scale = scale;
        model.update(settings);
    };
    edit(0, 0.5);
    edit(1, 0.6);
    edit(1, 0.7);
    model.select(items.at(0).id);
    model.removePhotos({items.at(1).id});
    model.undoVisibly();
    EXPECT_EQ(model.photo(items.at(0).id)->settings.scale, FrameSettings().scale);
    EXPECT_FALSE(model.canUndo());
    model.redoVisibly();
    EXPECT_EQ(model.photo(items.at(0).id)->settings.scale, 0.5);
}

TEST_F(KeepingSteps, BringTheSelectionBackToo)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    const QList<PhotoItem> items = photos(2);
    model.append(items);
    model.checkpoint();
    model.update(FrameSettings());
    model.select(items.at(1).id);
    model.undo();
    EXPECT_EQ(model.selected(), items.at(0).id);
}

TEST_F(KeepingSteps, AChangeOutlivesAnObserverThatChangesTheList)
{
    EditorModel model(m_services, EditorModel::Load::Empty);
    const QList<PhotoItem> items = photos(3);
    model.append(items);
    QList<PhotoItem> seen;
    bool removed = false;
    QObject::connect(&model, &EditorModel::changed, &model, [&](EditorModel::Changes changes) {
        if (changes & EditorModel::HistoryChanged && !removed) {
            removed = true;
            model.removePhotos({items.at(0).id});
            seen = model.photos();
        }
    });
    FrameSettings settings;
    settings.scale = 0.3;
    model.change(items.at(2).id, settings);
    EXPECT_EQ(model.photo(items.at(2).id)->settings.scale, 0.3);
    EXPECT_NE(seen.at(1).settings.scale, 0.3); // what an observer copied stays as it was
}

TEST_F(KeepingOneEditor, AStoppedOwnerCostsASecondAndNothingElse)
{
    SingleInstance first(m_library);
    ASSERT_TRUE(first.acquire({}));
    // Nobody lets the owner's events pass: it is as if it were stopped.
    SingleInstance second(m_library);
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(second.acquire({u"/tmp/a.jpg"_s}));
    EXPECT_GE(timer.elapsed(), 500);
    EXPECT_FALSE(second.handedOver());
    QStringList received;
    QObject::connect(&first, &SingleInstance::photosReceived, &first,
                     [&](const QStringList &photos) { received += photos; });
    bool handed = false;
    std::jthread again([&] { handed = !second.acquire({u"/tmp/b.jpg"_s}) && second.handedOver(); });
    EXPECT_TRUE(waitFor([&] { return received.contains(u"/tmp/b.jpg"_s); }));
    again.join();
    EXPECT_TRUE(handed);
    // What was given up is not taken up once the owner goes on.
    EXPECT_EQ(received, QStringList{u"/tmp/b.jpg"_s});
}

/// Hands photos to the owner of a library as this user would; prints the answer.
constexpr const char *strangerProgram = R"(
import hashlib, os, socket, struct, sys
name = "tarnovel-%s-%s" % (sys.argv[2], hashlib.sha256(os.path.realpath(sys.argv[1]).encode()).hexdigest()[:16])
text = lambda t: struct.pack(">I", 2 * len(t)) + t.encode("utf-16-be")
message = struct.pack(">I", 1) + text("/tmp/theirs.jpg") + text("")
peer = socket.socket(socket.AF_UNIX)
peer.settimeout(10)
try:
    peer.connect("\0" + name)
    peer.sendall(struct.pack(">I", len(message)) + message)
    print(peer.recv(1).decode() or "closed")
    peer.sendall(b"y")
except OSError:
    print("closed")
)";

TEST_F(KeepingOneEditor, ListensToItsOwnUserAlone)
{
    SingleInstance owner(m_library);
    ASSERT_TRUE(owner.acquire({}));
    QStringList received;
    QObject::connect(&owner, &SingleInstance::photosReceived, &owner,
                     [&](const QStringList &photos) { received += photos; });
    const auto answerTo = [&](const QStringList &as) {
        QProcess program;
        program.start(u"env"_s,
                      as + QStringList{u"/usr/bin/python3"_s, u"-c"_s, QString::fromLatin1(strangerProgram),
                                       m_library, QString::number(getuid())});
        EXPECT_TRUE(waitFor([&] { return program.state() == QProcess::NotRunning; }));
        return program.readAllStandardOutput().trimmed();
    };
    EXPECT_EQ(answerTo({}), "k");
    EXPECT_EQ(received.size(), 1);
    if (geteuid() == 0) { // only root may play somebody else
        EXPECT_EQ(answerTo({u"setpriv"_s, u"--reuid=65534"_s, u"--clear-groups"_s}), "closed");
        EXPECT_EQ(received.size(), 1);
    }
}

TEST_F(KeepingOneEditor, NeedNeitherRoomOnTheDiskNorTheSameRuntimeFolder)
{
    SingleInstance first(m_library);
    ASSERT_TRUE(first.acquire({}));
    EXPECT_TRUE(QDir(m_library).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder.path()));
    bool handed = false;
    std::jthread second([&] {
        SingleInstance other(m_library);
        handed = !other.acquire({u"/tmp/a.jpg"_s}) && other.handedOver();
    });
    QStringList received;
    QObject::connect(&first, &SingleInstance::photosReceived, &first,
                     [&](const QStringList &photos) { received = photos; });
    EXPECT_TRUE(waitFor([&] { return !received.isEmpty(); }));
    second.join();
    qputenv("XDG_RUNTIME_DIR", before);
    EXPECT_TRUE(handed);
    // Its folder went away and was made again: the name still has its owner.
    ASSERT_TRUE(QDir(m_library).removeRecursively() && QDir().mkpath(m_library));
    SingleInstance third(m_library);
    EXPECT_FALSE(third.acquire({}));
}

} // namespace
} // namespace tarnovel::test
