#pragma once

#include <stop_token>
#include <utility>

#include <QObject>
#include <QThreadPool>

#include "base/Cancellation.h"

namespace tarnovel {

/// A thread for work that must not hold up the thread that made it. What the work returns is handed over on
/// that thread, in the order of the requests. Destruction waits for work that has begun, and nothing is
/// handed over any more: a worker is its owner's last member. Work may not throw.
class Worker : public QObject {
public:
    Worker() { m_thread.setMaxThreadCount(1); }
    ~Worker() override
    {
        abandon();
        m_thread.waitForDone();
    }

    /// Runs `work()` after all that was asked for before, then `then(result)`.
    template<typename Work, typename Then>
    void run(Work work, Then then)
    {
        m_thread.start([this, work = std::move(work), then = std::move(then)]() mutable {
            handOver([then = std::move(then), result = work()]() mutable { then(std::move(result)); });
        });
    }

    /// Runs `work(stop)` in place of the last one that was asked for in this way: that one is asked to stop,
    /// and its result is dropped. Work that is stopped may end by OperationCancelled.
    template<typename Work, typename Then>
    void runLatest(Work work, Then then)
    {
        abandon();
        m_stop = {};
        m_thread.start(
            [this, work = std::move(work), then = std::move(then), stop = m_stop.get_token()]() mutable {
                try {
                    throwIfCancelled(stop);
                    handOver([stop, then = std::move(then), result = work(stop)]() mutable {
                        if (!stop.stop_requested()) {
                            then(std::move(result));
                        }
                    });
                } catch (const OperationCancelled &) {
                    return;
                }
            });
    }

    /// What runLatest() was asked for is not wanted any more.
    void abandon() { m_stop.request_stop(); }
    /// Returns when all work has been done; the last results are handed over later.
    void wait() { m_thread.waitForDone(); }

private:
    template<typename Call>
    void handOver(Call call)
    {
        QMetaObject::invokeMethod(this, std::move(call), Qt::QueuedConnection);
    }

    std::stop_source m_stop;
    QThreadPool m_thread;
};

} // namespace tarnovel
