#pragma once

#include <functional>
#include <stop_token>
#include <utility>

#include <QFuture>
#include <QFutureWatcher>
#include <QObject>

#include "base/Cancellation.h"

namespace tarnovel {

/// Calls `then` with the finished future on the thread of `context`, unless that has gone by then. The
/// future's result may throw there, and has to be caught there.
template<typename Value>
void whenFinished(const QFuture<Value> &future, QObject *context,
                  std::function<void(const QFuture<Value> &)> then)
{
    auto *watcher = new QFutureWatcher<Value>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context, [watcher, then = std::move(then)] {
        watcher->deleteLater();
        then(watcher->future());
    });
    watcher->setFuture(future);
}

/// The same for work that may be cancelled: nothing is called once `stop` is requested, and `failed` for
/// whatever the future throws.
template<typename Value>
void whenArrived(const QFuture<Value> &future, QObject *context, const std::stop_token &stop,
                 std::function<void(const Value &)> arrived, std::function<void()> failed)
{
    whenFinished<Value>(
        future, context,
        [stop, arrived = std::move(arrived), failed = std::move(failed)](const QFuture<Value> &finished) {
            if (stop.stop_requested()) {
                return;
            }
            try {
                arrived(finished.result());
            } catch (const OperationCancelled &) {
                return;
            } catch (const QException &) {
                failed();
            }
        });
}

} // namespace tarnovel
