#include <signal.h>

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <gtest/gtest.h>

#include "cli/Program.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

class Watch : public testing::Test {
protected:
    Program m_program;
    QProcess m_process;

    void SetUp() override
    {
        QDir().mkdir(m_program.path(u"in"_s));
        m_program.photo(u"photo.jpg"_s, 90, 60);
    }

    void start(const QStringList &more = {})
    {
        m_process.setWorkingDirectory(m_program.path(QString()));
        m_process.setProcessEnvironment(m_program.environment());
        m_process.start(Program::executable(), QStringList{u"watch"_s, u"--json"_s, u"--size"_s, u"720"_s,
                                                           u"in"_s, u"-o"_s, u"in/out"_s} +
                                                   more);
    }

    void put(const QString &name)
    {
        ASSERT_TRUE(QFile::copy(m_program.path(u"photo.jpg"_s), m_program.path(u"in/"_s + name)));
    }

    /// The next line, or an empty object.
    Json line()
    {
        QElapsedTimer timer;
        timer.start();
        while (!m_process.canReadLine() && timer.elapsed() < 60'000) {
            m_process.waitForReadyRead(1000);
        }
        return m_process.canReadLine() ? parseJson(m_process.readLine()) : Json::object();
    }

    int ended(int signal)
    {
        kill(static_cast<pid_t>(m_process.processId()), signal);
        EXPECT_TRUE(m_process.waitForFinished(60'000));
        EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
        return m_process.exitCode();
    }
};

TEST_F(Watch, FramesWhatIsThereAndWhatComesAndNothingTwice)
{
    put(u"b.jpg"_s);
    put(u"a.jpg"_s);
    m_program.file(u"in/broken.jpg"_s, "<html>");
    m_program.file(u"in/notes.txt"_s, "no picture");
    start({u"-r"_s});
    QStringList first;
    for (int i = 0; i < 3; ++i) {
        const Json each = line();
        first.append(QString::fromStdString(each.value("file", each.value("code", ""))));
    }
    first.sort();
    EXPECT_EQ(first, (QStringList{u"in/out/a-framed.jpg"_s, u"in/out/b-framed.jpg"_s, u"unreadable"_s}));
    // One that is written in two pieces is taken when it is whole.
    QFile photo(m_program.path(u"photo.jpg"_s));
    ASSERT_TRUE(photo.open(QIODevice::ReadOnly));
    const QByteArray bytes = photo.readAll();
    QFile late(m_program.path(u"in/late.jpg"_s));
    ASSERT_TRUE(late.open(QIODevice::WriteOnly));
    late.write(bytes.left(bytes.size() / 2));
    late.flush();
    m_process.waitForReadyRead(1000);
    late.write(bytes.mid(bytes.size() / 2));
    late.close();
    m_program.file(u"in/gone.jpg"_s, "x");
    ASSERT_TRUE(QFile::remove(m_program.path(u"in/gone.jpg"_s)));
    EXPECT_EQ(line().value("file", ""), "in/out/late-framed.jpg");
    // What could not be read is tried again when it has changed, under its own name.
    put(u"new.jpg"_s);
    ASSERT_TRUE(QFile::remove(m_program.path(u"in/broken.jpg"_s)));
    ASSERT_TRUE(QFile::rename(m_program.path(u"in/new.jpg"_s), m_program.path(u"in/broken.jpg"_s)));
    EXPECT_EQ(line().value("file", ""), "in/out/broken-framed.jpg");
    EXPECT_EQ(ended(SIGTERM), 0);
    EXPECT_EQ(m_program.entries(u"temporary"_s), QStringList());
    start({u"-r"_s});
    for (const char *name : {"a", "b", "broken", "late"}) {
        const Json again = line();
        EXPECT_EQ(again.value("file", ""), std::string("in/out/") + name + "-framed.jpg");
        EXPECT_TRUE(again.value("skipped", false));
    }
    EXPECT_EQ(ended(SIGINT), 0);
    EXPECT_EQ(m_program.entries(u"in/out"_s).size(), 4);
}

TEST_F(Watch, RefusesWhatItCannotWatch)
{
    const auto status = [this](const QStringList &arguments) {
        return m_program.run(QStringList{u"watch"_s} + arguments).status;
    };
    EXPECT_EQ(status({u"-o"_s, u"out"_s}), 2);
    EXPECT_EQ(status({u"in"_s}), 2);
    EXPECT_EQ(status({u"in"_s, u"-o"_s, u"in"_s}), 2);
    EXPECT_EQ(status({u"in"_s, u"-o"_s, u"out"_s, u"--shard"_s, u"1/2"_s}), 2);
    EXPECT_EQ(status({u"in"_s, u"-o"_s, u"out"_s, u"--name"_s, u"{n}-{name}"_s}), 2);
    const Outcome none = m_program.run({u"watch"_s, u"none"_s, u"-o"_s, u"out"_s});
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.errors, "tarnovel: none: There is no such folder.\n");
}

} // namespace
} // namespace tarnovel::test
