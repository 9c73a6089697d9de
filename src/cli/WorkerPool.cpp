#include "cli/WorkerPool.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <sched.h>

#include <QFile>

#include "base/AtomicFile.h"
#include "base/Cancellation.h"
#include "base/FileError.h"
#include "base/Log.h"
#include "base/Uuid.h"
#include "cli/Console.h"
#include "cli/FailureCode.h"
#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel::cli {

namespace {

using Outcome = ChildProcess::Outcome;
using std::chrono::milliseconds;

/// The decoder that a worker waits for is given up after ten seconds, so this is longer.
constexpr ChildProcess::Patience patience{
    milliseconds(20'000), milliseconds(90'000), milliseconds(900'000), {}};
constexpr ChildProcess::Patience startPatience{
    milliseconds(20'000), milliseconds(60'000), milliseconds(60'000), {}};

/// Photos beyond those at work that may wait for one before them to be told of, for each worker.
constexpr qsizetype finishedAhead = 3;

/// What one worker may take, and how much of the memory at hand all may take together.
constexpr double workerBytes = 250e6;
constexpr double memoryShare = 0.5;
constexpr int mostWorkers = 1024;

double numberBehind(const QString &file, const QByteArray &key)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray &line : source.readAll().split('\n')) {
        if (line.startsWith(key)) {
            bool number = false;
            const double value = line.mid(key.size()).simplified().split(' ').first().toDouble(&number);
            return number ? value : -1;
        }
    }
    return -1;
}

/// What the kernel would give, and a container's limit leaves; 0 where neither is known.
double availableBytes()
{
    double available = std::max(0.0, numberBehind(u"/proc/meminfo"_s, "MemAvailable:") * 1024);
    const double limit = numberBehind(u"/sys/fs/cgroup/memory.max"_s, "");
    const double used = numberBehind(u"/sys/fs/cgroup/memory.current"_s, "");
    if (limit > 0 && used >= 0) {
        available = std::min(available, std::max(0.0, limit - used));
    }
    return available;
}

int cores()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    return sched_getaffinity(0, sizeof(set), &set) == 0 ? CPU_COUNT(&set) : 1;
}

MadePhoto lostWorker()
{
    return MadePhoto::failed(localized({"处理这张照片的进程意外结束。",
                                        "The process that worked on this photo ended unexpectedly.",
                                        "Le processus qui traitait cette photo s’est arrêté."}),
                             workerCode);
}

MadePhoto hungWorker()
{
    return MadePhoto::failed(localized({"处理这张照片的进程停住不动了。",
                                        "The process that worked on this photo stopped responding.",
                                        "Le processus qui traitait cette photo ne répondait plus."}),
                             workerCode);
}

} // namespace

int workersFor(const std::optional<QString> &typed, qsizetype photos)
{
    int workers = 0;
    if (typed) {
        bool number = false;
        workers = typed->toInt(&number);
        if (!number || workers < 1 || workers > mostWorkers) {
            throw UsageError{
                localized({"--jobs 应为 1 到 1024 的整数：", "--jobs takes a number from 1 to 1024: ",
                           "--jobs prend un nombre de 1 à 1024 : "}) +
                *typed};
        }
    } else {
        const double fitting = std::floor(availableBytes() * memoryShare / workerBytes);
        workers = std::max(1, std::min(cores(), static_cast<int>(std::min(fitting, double(mostWorkers)))));
    }
    return static_cast<int>(std::min<qsizetype>(workers, std::max<qsizetype>(photos, 1)));
}

WorkerPool::WorkerPool(int workers, QStringList arguments, std::stop_token stop)
    : m_arguments(std::move(arguments)),
      m_most(workers * (1 + finishedAhead)),
      m_stopped(std::move(stop), [this] { m_ending.request_stop(); })
{
    for (int i = 0; i < workers; ++i) {
        m_threads.emplace_back([this] { work(); });
    }
}

WorkerPool::~WorkerPool()
{
    m_ending.request_stop();
}

void WorkerPool::begin(const PhotoJob &job)
{
    throwIfCancelled(m_ending.get_token());
    const auto task = std::make_shared<Task>();
    task->job = WorkerMessages::encoded(job);
    task->promise.start();
    m_begun.push_back(task->promise.future());
    const std::scoped_lock lock(m_mutex);
    m_tasks.push_back(task);
    m_asked.notify_one();
}

MadePhoto WorkerPool::next()
{
    const QFuture<MadePhoto> future = m_begun.front();
    m_begun.pop_front();
    return future.result();
}

std::shared_ptr<WorkerPool::Task> WorkerPool::take()
{
    std::unique_lock lock(m_mutex);
    if (!m_asked.wait(lock, m_ending.get_token(), [this] { return !m_tasks.empty(); }) ||
        m_ending.stop_requested()) {
        return nullptr;
    }
    const std::shared_ptr<Task> task = m_tasks.front();
    m_tasks.pop_front();
    return task;
}

/// One worker's thread: a worker ends with the thread that started it.
void WorkerPool::work()
{
    std::unique_ptr<ChildProcess> worker;
    while (const std::shared_ptr<Task> task = take()) {
        try {
            task->promise.addResult(made(worker, task->job));
        } catch (const OperationCancelled &) {
            task->promise.setException(std::current_exception());
        }
        task->promise.finish();
    }
    const std::scoped_lock lock(m_mutex);
    for (const std::shared_ptr<Task> &task : m_tasks) {
        task->promise.setException(OperationCancelled());
        task->promise.finish();
    }
    m_tasks.clear();
}

std::unique_ptr<ChildProcess> WorkerPool::startedWorker()
{
    std::unique_ptr<ChildProcess> worker = ChildProcess::started(u"/proc/self/exe"_s, m_arguments);
    QByteArray bytes;
    if (!worker) {
        return nullptr;
    }
    const Outcome outcome = worker->receive(bytes, startPatience, m_ending.get_token());
    throwIfCancelled(m_ending.get_token());
    if (outcome != Outcome::Message || bytes != WorkerMessages::ready) {
        qCWarning(logCli) << "a worker does not start:" << worker->end();
        return nullptr;
    }
    return worker;
}

MadePhoto WorkerPool::made(std::unique_ptr<ChildProcess> &worker, const QByteArray &job)
{
    const std::stop_token stop = m_ending.get_token();
    QByteArray bytes;
    // A worker that ended while it had nothing to do is no photo's fault.
    for (int round = 0; round < 3; ++round) {
        worker = worker ? std::move(worker) : startedWorker();
        if (!worker) {
            continue;
        }
        if (worker->send(job) && worker->receive(bytes, patience, stop) == Outcome::Message &&
            bytes == WorkerMessages::begun) {
            break;
        }
        throwIfCancelled(stop);
        qCWarning(logCli) << "a worker had ended:" << worker->end();
        worker.reset();
    }
    if (!worker) {
        return lostWorker();
    }
    const Outcome outcome = worker->receive(bytes, patience, stop);
    try {
        if (outcome == Outcome::Message) {
            return WorkerMessages::decodedPhoto(bytes);
        }
    } catch (const JsonError &error) {
        qCWarning(logCli) << "a worker answers nonsense:" << error.what();
    } catch (const FileError &error) {
        qCWarning(logCli) << "a worker's answer cannot be read:" << error.what();
    }
    if (outcome == Outcome::Stopped) {
        worker.reset();
        throw OperationCancelled();
    }
    qCWarning(logCli) << "a worker has ended:" << worker->end();
    worker.reset();
    return outcome == Outcome::Ended || outcome == Outcome::Message ? lostWorker() : hungWorker();
}

namespace WorkerMessages {

namespace {

/// A path that is longer than the system takes is as unreadable when it is cut.
constexpr qsizetype longestPath = 8192;
constexpr char fileMark = '@';

} // namespace

QByteArray encoded(const PhotoJob &job)
{
    Json sizes = Json::array();
    for (const WantedSize &size : job.sizes) {
        sizes.push_back(jsonText(size.name));
    }
    return writeJson(
        {{"index", job.index}, {"photo", jsonText(job.photo.left(longestPath))}, {"sizes", sizes}});
}

PhotoJob decodedJob(const QByteArray &bytes, const QList<WantedSize> &sizes)
{
    const Json json = parseJson(bytes);
    const JsonReader reader(json);
    PhotoJob job;
    job.index = reader.member("index").integer();
    job.photo = reader.member("photo").text();
    for (const JsonReader &each : reader.member("sizes").elements()) {
        const auto wanted = std::ranges::find(sizes, each.text(), &WantedSize::name);
        if (wanted == sizes.end()) {
            each.fail("unknown size");
        }
        job.sizes.append(*wanted);
    }
    return job;
}

QByteArray encoded(const MadePhoto &photo, const QString &folder)
{
    QByteArray whole = writeJson(photo.toJson());
    if (whole.size() < longestMessage) {
        return whole;
    }
    const QString path = folder + u"/answer-"_s + uuidText(QUuid::createUuid());
    replaceFile(path, whole, Durability::Unsynced);
    return fileMark + QFile::encodeName(path);
}

MadePhoto decodedPhoto(const QByteArray &bytes)
{
    if (!bytes.startsWith(fileMark)) {
        return MadePhoto::fromJson(parseJson(bytes));
    }
    const UnclaimedFile answer(QFile::decodeName(bytes.mid(1)));
    return MadePhoto::fromJson(parseJson(readJsonFile(QFile::decodeName(bytes.mid(1)))));
}

} // namespace WorkerMessages

} // namespace tarnovel::cli
