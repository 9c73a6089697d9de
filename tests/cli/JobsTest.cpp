#include <signal.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>
#include <gtest/gtest.h>

#include "cli/Program.h"

using namespace Qt::StringLiterals;

namespace tarnovel::test {
namespace {

bool isGone(pid_t process)
{
    QElapsedTimer timer;
    timer.start();
    while (kill(process, 0) == 0 && timer.elapsed() < 60'000) {
        QThread::msleep(10);
    }
    return kill(process, 0) != 0;
}

/// A batch of large photos with two workers, stopped in the middle.
class Workers : public testing::Test {
protected:
    static constexpr int photoCount = 8;
    Program m_program;
    QProcess m_process;

    /// Starts, and waits for the first result.
    void start(const QStringList &more = {})
    {
        QStringList arguments = {u"export"_s, u"--json"_s, u"-j"_s, u"2"_s, u"-o"_s, u"out"_s};
        for (int i = 0; i < photoCount; ++i) {
            const QString name = u"%1.jpg"_s.arg(i);
            if (i == 0) {
                m_program.photo(name, 4000, 3000);
            } else {
                QFile::link(m_program.path(u"0.jpg"_s), m_program.path(name));
            }
            arguments.append(name);
        }
        m_process.setWorkingDirectory(m_program.path(QString()));
        m_process.setProcessEnvironment(m_program.environment());
        m_process.start(Program::executable(), arguments + more);
        ASSERT_TRUE(m_process.waitForReadyRead(60'000)) << "the first photo";
    }

    void expectAllButOne()
    {
        ASSERT_TRUE(m_process.waitForFinished(120'000));
        const Outcome outcome{m_process.exitCode(), m_process.readAllStandardOutput(), {}};
        ASSERT_EQ(outcome.lines().size(), photoCount);
        int failed = 0;
        for (int i = 0; const Json &line : outcome.lines()) {
            EXPECT_EQ(line["photo"], (u"%1.jpg"_s.arg(i++)).toStdString());
            failed += line.contains("error") ? 1 : 0;
            EXPECT_EQ(line.value("code", "worker"), "worker");
        }
        EXPECT_EQ(failed, 1);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(m_program.entries(u"out"_s).size(), photoCount - 1) << "whole files, and nothing else";
        EXPECT_EQ(m_program.entries(u"temporary"_s), QStringList());
    }
};

TEST_F(Workers, ChangeNothingInWhatComesOut)
{
    QStringList photos;
    for (int i = 0; i < 9; ++i) {
        photos.append(m_program.photo(u"%1.jpg"_s.arg(i), i == 0 ? 3000 : 90 + i, 200));
    }
    photos.insert(3, u"gone.jpg"_s);
    photos.insert(5, u"1.jpg"_s);
    photos.insert(7, m_program.file(u"broken.jpg"_s, "<html>"));
    const auto run = [&](const QString &jobs, const QString &folder) {
        QStringList arguments = {u"export"_s, u"--json"_s,   u"-j"_s,     jobs,        u"--size"_s,
                                 u"720"_s,    u"--size"_s,   u"1080"_s,   u"-t"_s,     u"film"_s,
                                 u"--name"_s, u"{name}-x"_s, u"--text"_s, u"title=x"_s};
        Outcome outcome = m_program.run(arguments + QStringList{u"-o"_s, folder} + photos);
        outcome.output.replace(folder.toUtf8() + '/', "");
        return outcome;
    };
    const Outcome one = run(u"1"_s, u"j1"_s);
    EXPECT_EQ(one.status, 1);
    EXPECT_EQ(one.lines().size(), 22);
    for (const QString &jobs : {u"2"_s, u"5"_s}) {
        const QString folder = u'j' + jobs;
        const Outcome several = run(jobs, folder);
        EXPECT_EQ(several.status, one.status);
        EXPECT_EQ(several.output, one.output);
        EXPECT_EQ(several.errors, one.errors);
        ASSERT_EQ(m_program.entries(folder), m_program.entries(u"j1"_s));
        for (const QString &name : m_program.entries(folder)) {
            QFile mine(m_program.path(folder + u'/' + name));
            QFile theirs(m_program.path(u"j1/"_s + name));
            ASSERT_TRUE(mine.open(QIODevice::ReadOnly) && theirs.open(QIODevice::ReadOnly));
            EXPECT_EQ(mine.readAll(), theirs.readAll()) << name.toStdString();
        }
    }
    for (const QString &jobs : {u"0"_s, u"-1"_s, u"two"_s, u"1.5"_s, u""_s}) {
        EXPECT_EQ(m_program.run({u"export"_s, u"-o"_s, u"out"_s, u"--jobs="_s + jobs, u"0.jpg"_s}).status, 2);
    }
}

TEST_F(Workers, CostOnePhotoWhereOneIsKilled)
{
    start();
    const QList<pid_t> workers = childrenOf(m_process.processId());
    ASSERT_EQ(workers.size(), 2);
    kill(workers.first(), SIGKILL);
    expectAllButOne();
}

TEST_F(Workers, CostOnePhotoWhereOneHangs)
{
    start();
    const QList<pid_t> workers = childrenOf(m_process.processId());
    ASSERT_EQ(workers.size(), 2);
    kill(workers.first(), SIGSTOP);
    expectAllButOne();
}

TEST_F(Workers, EndWithTheProgram)
{
    for (const int signal : {SIGINT, SIGKILL}) {
        start();
        QList<pid_t> processes = childrenOf(m_process.processId());
        ASSERT_EQ(processes.size(), 2);
        for (const pid_t worker : QList<pid_t>(processes)) {
            processes += childrenOf(worker);
        }
        kill(static_cast<pid_t>(m_process.processId()), signal);
        ASSERT_TRUE(m_process.waitForFinished(60'000));
        for (const pid_t process : processes) {
            EXPECT_TRUE(isGone(process));
        }
        if (signal == SIGINT) {
            EXPECT_EQ(m_process.exitCode(), 130);
            EXPECT_EQ(m_program.entries(u"temporary"_s), QStringList());
        }
        for (const QString &name : m_program.entries(u"out"_s)) {
            EXPECT_FALSE(name.startsWith(u'.')) << name.toStdString();
            QFile file(m_program.path(u"out/"_s + name));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            EXPECT_TRUE(file.readAll().endsWith("\xff\xd9")) << name.toStdString();
        }
    }
}

} // namespace
} // namespace tarnovel::test
