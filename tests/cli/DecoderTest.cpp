#include <signal.h>

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>

#include "cli/Program.h"

using namespace Qt::StringLiterals;

namespace tarnovel {
namespace {

using namespace test;

/// Exports six photos and sends the decoder a signal on the way.
class Batch : public testing::Test {
protected:
    Program m_program;
    QProcess m_process;

    void startAndSignal(int signal)
    {
        QStringList arguments = {u"export"_s, u"--json"_s, u"-j"_s, u"1"_s, u"-o"_s, u"out"_s};
        for (int i = 0; i < 6; ++i) {
            arguments.append(m_program.photo(u"%1.jpg"_s.arg(i), 4000, 3000));
        }
        m_process.setWorkingDirectory(m_program.path(QString()));
        m_process.setProcessEnvironment(m_program.environment());
        m_process.start(Program::executable(), arguments);
        ASSERT_TRUE(m_process.waitForReadyRead(60'000)) << "the first photo";
        const QList<pid_t> decoders = childrenOf(m_process.processId());
        ASSERT_EQ(decoders.size(), 1);
        kill(decoders.first(), signal);
    }

    void expectAllButOne()
    {
        ASSERT_TRUE(m_process.waitForFinished(120'000));
        EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
        QStringList order;
        int failed = 0;
        for (const QByteArray &line : m_process.readAllStandardOutput().split('\n')) {
            if (!line.isEmpty()) {
                const Json json = Json::parse(line.toStdString());
                failed += json.contains("error") ? 1 : 0;
                order.append(QString::fromStdString(json["photo"]).right(5));
            }
        }
        EXPECT_EQ(order,
                  (QStringList{u"0.jpg"_s, u"1.jpg"_s, u"2.jpg"_s, u"3.jpg"_s, u"4.jpg"_s, u"5.jpg"_s}));
        EXPECT_LE(failed, 1);
        EXPECT_EQ(m_process.exitCode(), failed);
        EXPECT_EQ(m_program.entries(u"out"_s).size(), 6 - failed) << "whole files, and nothing else";
    }
};

TEST_F(Batch, GoesOnWhereItsDecoderIsKilled)
{
    startAndSignal(SIGKILL);
    expectAllButOne();
}

TEST_F(Batch, GoesOnWhereItsDecoderIsFrozen)
{
    startAndSignal(SIGSTOP);
    expectAllButOne();
}

TEST_F(Batch, TakesItsDecoderWithIt)
{
    startAndSignal(0);
    const QList<pid_t> decoders = childrenOf(m_process.processId());
    ASSERT_EQ(decoders.size(), 1);
    m_process.kill();
    ASSERT_TRUE(m_process.waitForFinished(60'000));
    QElapsedTimer timer;
    timer.start();
    while (kill(decoders.first(), 0) == 0 && timer.elapsed() < 60'000) {
        QThread::msleep(10);
    }
    EXPECT_NE(kill(decoders.first(), 0), 0) << "a decoder without a program";
}

} // namespace
} // namespace tarnovel
