#include <random>

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include "base/AtomicFile.h"
#include "editor/EditorWorld.h"
#include "model/LibraryPaths.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

/// A stored session of two photos, whose next edit removes one of them, and a stray file of the library's own
/// shape.
class Crash : public EditorWorld {
protected:
    QString m_first = ownName();
    QString m_second = ownName();
    QString m_stray = ownName();
    QByteArray m_old;
    QByteArray m_new;

    static QString ownName()
    {
        return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + u".jpg"_s;
    }

    QByteArray document() const
    {
        QFile file(m_library + u"/session.json"_s);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void SetUp() override
    {
        Session session;
        session.photos = {photo(m_first), photo(m_second)};
        session.selected = session.photos.first().id;
        session.lastStyle = session.photos.first().settings;
        m_old = writeSession(session);
        session.photos.removeLast();
        session.photos.first().settings.scale = 0.3;
        session.lastStyle = session.photos.first().settings;
        m_new = writeSession(session);
        reset();
    }

    void reset() const
    {
        for (const QString &name : QDir(m_library).entryList(QDir::Files | QDir::Hidden)) {
            QFile::remove(m_library + u'/' + name);
        }
        for (const QString &name : {m_first, m_second, m_stray}) {
            photo(name);
        }
        QFile file(m_library + u"/session.json"_s);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(m_old);
    }

    /// Runs the editing program under strace with this injection; true when it came to its end.
    bool runWith(const QString &injection) const
    {
        QProcess process;
        // A sanitizer cannot look for leaks in a process that is being traced.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
        process.setProcessEnvironment(environment);
        process.start(u"strace"_s, {u"-f"_s, u"-qq"_s, u"-o"_s, u"/dev/null"_s, u"-e"_s,
                                    u"inject="_s + injection, QStringLiteral(EDIT_ONCE), m_library});
        EXPECT_TRUE(process.waitForFinished(60'000));
        return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    }

    /// What must hold after any end: one of the two documents byte for byte, with all that it names; and the
    /// next start leaves nothing but what it needs.
    void expectWhole(const std::string &when) const
    {
        const QByteArray now = document();
        EXPECT_TRUE(now == m_old || now == m_new) << when << ": " << now.size() << " bytes";
        for (const QString &name : readSession(now).referencedFiles()) {
            EXPECT_TRUE(exists(name)) << when;
        }
        QProcess next;
        next.start(QStringLiteral(EDIT_ONCE), {m_library});
        ASSERT_TRUE(next.waitForFinished(60'000));
        EXPECT_EQ(document(), m_new) << when;
        EXPECT_EQ(QDir(m_library).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 2)
            << when;
        reset();
    }

    static bool canTrace()
    {
        QProcess process;
        process.start(u"strace"_s, {u"-o"_s, u"/dev/null"_s, u"true"_s});
        return process.waitForFinished(10'000) && process.exitStatus() == QProcess::NormalExit &&
               process.exitCode() == 0;
    }
};

TEST_F(Crash, AtAnyWriteLeavesTheOldOrTheNewSession)
{
    if (!canTrace()) {
        std::mt19937 random(7);
        for (int i = 0; i < 200; ++i) {
            QProcess process;
            process.start(QStringLiteral(EDIT_ONCE), {m_library});
            ASSERT_TRUE(process.waitForStarted());
            process.waitForFinished(static_cast<int>(random() % 120));
            process.kill();
            process.waitForFinished(10'000);
            expectWhole("random kill " + std::to_string(i));
        }
        return;
    }
    int kills = 0;
    for (const char *call :
         {"write", "fsync", "rename", "renameat2", "unlink", "unlinkat", "ftruncate", "linkat"}) {
        for (int when = 1; when < 400; ++when) {
            const bool finished =
                runWith(u"%1:signal=SIGKILL:when=%2"_s.arg(QLatin1StringView(call)).arg(when));
            if (finished) {
                EXPECT_EQ(document(), m_new) << call;
                break;
            }
            ++kills;
            expectWhole(std::string(call) + " " + std::to_string(when));
        }
        reset();
    }
    EXPECT_GE(kills, 5); // at least write, two syncs, rename and the deletions
    RecordProperty("kills", kills);
}

TEST_F(Crash, ASaveReachesTheDiskBeforeItTakesItsPlace)
{
    if (!canTrace()) {
        return; // the kernel of this machine lets nobody look
    }
    const QString log = m_folder.filePath(u"calls"_s);
    QProcess process;
    process.start(u"strace"_s, {u"-f"_s, u"-qq"_s, u"-y"_s, u"-o"_s, log, u"-e"_s, u"trace=fsync,rename"_s,
                                QStringLiteral(EDIT_ONCE), m_library});
    ASSERT_TRUE(process.waitForFinished(60'000));
    QFile file(log);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList calls;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
        if (line.contains(u"rename("_s) && line.contains(u"session.json"_s)) {
            calls.append(u"rename"_s);
        } else if (line.contains(u"fsync("_s)) {
            calls.append(line.contains(u".tarnovel-"_s) ? u"file"_s : u"folder"_s);
        }
    }
    EXPECT_EQ(calls, (QStringList{u"file"_s, u"rename"_s, u"folder"_s}));
    reset();
    // A disk that says it could not is believed.
    runWith(u"fsync:error=EIO"_s);
    EXPECT_EQ(document(), m_old);
    EXPECT_TRUE(exists(m_second));
    reset();
    // So is a file system without an exclusive rename: nothing that has the name is replaced.
    const QString source = m_folder.filePath(u"source"_s);
    replaceFile(source, "new");
    for (const char *missing : {"renameat2:error=EINVAL", "renameat2,link,linkat:error=EINVAL"}) {
        const QTemporaryDir goal;
        replaceFile(goal.filePath(u"0"_s), "old");
        QProcess publish;
        publish.start(u"strace"_s, {u"-f"_s, u"-qq"_s, u"-o"_s, u"/dev/null"_s, u"-e"_s,
                                    u"inject="_s + QString::fromLatin1(missing), QStringLiteral(EDIT_ONCE),
                                    goal.path(), u"publish"_s, source});
        ASSERT_TRUE(publish.waitForFinished(60'000));
        const auto contents = [&goal](const QString &name) {
            QFile each(goal.filePath(name));
            return each.open(QIODevice::ReadOnly) ? each.readAll() : QByteArray();
        };
        EXPECT_EQ(contents(u"0"_s), "old") << missing;
        EXPECT_EQ(contents(u"1"_s), "new") << missing;
        EXPECT_EQ(QDir(goal.path()).entryList(QDir::Files | QDir::Hidden).size(), 2) << missing;
    }
}

TEST_F(Crash, FullDiskKeepsTheOldDocumentAndSaysSo)
{
    SessionWriter(m_library).save(readSession(m_old), 1);
    QProcess process;
    process.start(QStringLiteral(EDIT_ONCE), {m_library, u"full"_s});
    ASSERT_TRUE(process.waitForFinished(60'000));
    // The first save failed and deleted nothing; the second went through.
    EXPECT_EQ(process.readAllStandardOutput(),
              "Could not save your edits. Check available device storage.\n\n");
    EXPECT_EQ(document(), m_new);
    expectWhole("after a full disk");
}

} // namespace
} // namespace tarnovel::test
