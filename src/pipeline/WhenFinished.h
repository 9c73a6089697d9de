#pragma once

#include <functional>
#include <utility>

#include <QFuture>
#include <QFutureWatcher>
#include <QObject>

namespace tarnovel {

/// Calls `then` with the finished future on the thread of `context`, unless that has gone by then. The
/// future's result may throw there, and has to be caught there.
template<typename Value>
void whenFinished(QFuture<Value> future, QObject *context, std::function<void(const QFuture<Value> &)> then)
{
    auto *watcher = new QFutureWatcher<Value>(context);
    QObject::connect(watcher, &QFutureWatcherBase::finished, context, [watcher, then = std::move(then)] {
        watcher->deleteLater();
        then(watcher->future());
    });
    watcher->setFuture(std::move(future));
}

} // namespace tarnovel
