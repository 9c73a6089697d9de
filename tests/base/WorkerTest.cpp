#include "base/Worker.h"

#include <atomic>
#include <semaphore>

#include <QCoreApplication>
#include <QStringList>
#include <QThread>
#include <gtest/gtest.h>

namespace tarnovel {
namespace {

using namespace Qt::StringLiterals;

TEST(Worker, HandsResultsOverInOrderOnTheThreadThatAsked)
{
    Worker worker;
    QList<int> results;
    QThread *there = nullptr;
    for (int i = 0; i < 5; ++i) {
        worker.run([i] { return std::pair(i, QThread::currentThread()); },
                   [&](const std::pair<int, QThread *> &result) {
                       EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                       there = result.second;
                       results.append(result.first);
                   });
    }
    worker.wait();
    EXPECT_TRUE(results.isEmpty()) << "the interface thread has not come round yet";
    QCoreApplication::processEvents();
    EXPECT_EQ(results, (QList<int>{0, 1, 2, 3, 4}));
    EXPECT_NE(there, QThread::currentThread());
}

TEST(Worker, ANewerRequestTakesThePlaceOfTheLast)
{
    Worker worker;
    std::binary_semaphore begun(0);
    QStringList results;
    const auto keep = [&](const QString &result) { results.append(result); };
    worker.runLatest(
        [&](const std::stop_token &stop) -> QString {
            begun.release();
            while (!stop.stop_requested()) {
                QThread::yieldCurrentThread();
            }
            throwIfCancelled(stop);
            return u"never"_s;
        },
        keep);
    begun.acquire();
    worker.runLatest([](const std::stop_token &) { return u"skipped"_s; }, keep);
    worker.runLatest([](const std::stop_token &) { return u"latest"_s; }, keep);
    worker.wait();
    QCoreApplication::processEvents();
    EXPECT_EQ(results, (QStringList{u"latest"_s}));
    // One that is done already, but not handed over, is dropped as well.
    worker.runLatest([](const std::stop_token &) { return u"done"_s; }, keep);
    worker.wait();
    worker.abandon();
    QCoreApplication::processEvents();
    EXPECT_EQ(results, (QStringList{u"latest"_s}));
}

TEST(Worker, ItsEndWaitsForWorkAndHandsNothingOver)
{
    std::atomic<bool> ended = false;
    bool told = false;
    {
        Worker worker;
        worker.run(
            [&] {
                QThread::msleep(30);
                ended = true;
                return 0;
            },
            [&](int) { told = true; });
    }
    EXPECT_TRUE(ended);
    QCoreApplication::processEvents();
    EXPECT_FALSE(told);
}

} // namespace
} // namespace tarnovel
