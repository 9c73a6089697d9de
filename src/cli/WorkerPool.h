#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

#include <QFuture>
#include <QPromise>
#include <QStringList>

#include "base/ChildProcess.h"
#include "cli/PhotoMaker.h"

namespace tarnovel::cli {

/// Makes photos in processes of their own, as many at a time as there are workers. A worker that ends, or
/// that does nothing any more, costs the photo that it was making, and the next photo gets another one.
class WorkerPool : public PhotoMaker {
public:
    /// Workers are this program with `arguments`; each is started at its first photo.
    WorkerPool(int workers, QStringList arguments, std::stop_token stop);
    ~WorkerPool() override;
    WorkerPool(const WorkerPool &) = delete;
    WorkerPool &operator=(const WorkerPool &) = delete;

    qsizetype most() const override { return m_most; }
    void begin(const PhotoJob &job) override;
    MadePhoto next() override;

private:
    struct Task {
        QByteArray job;
        QPromise<MadePhoto> promise;
    };

    void work();
    std::shared_ptr<Task> take();
    MadePhoto made(std::unique_ptr<ChildProcess> &worker, const QByteArray &job);
    std::unique_ptr<ChildProcess> startedWorker();

    const QStringList m_arguments;
    const qsizetype m_most;
    std::stop_source m_ending;
    std::stop_callback<std::function<void()>> m_stopped;
    std::mutex m_mutex;
    std::condition_variable_any m_asked;
    std::deque<std::shared_ptr<Task>> m_tasks;
    std::deque<QFuture<MadePhoto>> m_begun;
    std::vector<std::jthread> m_threads;
};

/// How many workers a batch of so many photos gets: what was typed, or the cores, fewer where memory would
/// not do. Throws a UsageError for anything but a number from 1.
int workersFor(const std::optional<QString> &typed, qsizetype photos);

/// The messages between the program and a worker.
namespace WorkerMessages {

inline const QByteArray ready = QByteArrayLiteral("ready");
inline const QByteArray begun = QByteArrayLiteral("begun");

QByteArray encoded(const PhotoJob &job);
/// The job with the sizes of these names. Throws a JsonError.
PhotoJob decodedJob(const QByteArray &bytes, const QList<WantedSize> &sizes);

/// What was made, or, where that is too long for a message, the name of a file in `folder` that says it.
QByteArray encoded(const MadePhoto &photo, const QString &folder);
/// Throws a JsonError, and a FileError for a file that cannot be read.
MadePhoto decodedPhoto(const QByteArray &bytes);

} // namespace WorkerMessages

} // namespace tarnovel::cli
