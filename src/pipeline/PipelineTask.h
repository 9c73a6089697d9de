#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <stop_token>
#include <type_traits>
#include <utility>

#include <QFuture>
#include <QPromise>
#include <QThreadPool>

#include "base/Cancellation.h"
#include "base/Log.h"
#include "imaging/ImageError.h"
#include "pipeline/PhotoReader.h"
#include "pipeline/PipelineError.h"

namespace tarnovel {

/// A thread of the pipeline and what is read on it.
struct ReadingLane {
    PhotoReader reader;
    QThreadPool thread;

    ReadingLane(const QString &libraryFolder, PictureMemory memory, const QString &thumbnailFolder)
        : reader(libraryFolder, memory, thumbnailFolder)
    {
        thread.setMaxThreadCount(1);
        thread.setExpiryTimeout(-1); // a decoder ends with the thread that started it
    }
};

/// Stops when either of two does.
class JoinedStop {
public:
    JoinedStop(const std::stop_token &one, const std::stop_token &other)
        : m_one(one, [this] { m_both.request_stop(); }), m_other(other, [this] { m_both.request_stop(); })
    {
    }
    std::stop_token token() const { return m_both.get_token(); }

private:
    std::stop_source m_both;
    std::stop_callback<std::function<void()>> m_one;
    std::stop_callback<std::function<void()>> m_other;
};

/// What `work(stop)` returns. What the lower layers throw becomes what the pipeline promises; the log gets
/// the cause, with the `subject`.
template<typename Work>
auto promised(const QString &subject, const std::stop_token &stop, const Work &work)
{
    try {
        throwIfCancelled(stop);
        return work(stop);
    } catch (const ImageError &error) {
        qCWarning(logImaging) << subject << error.what();
        const std::optional<PictureFault> fault = faultOf(error);
        throw fault ? PipelineFailure(PipelineError::Unreadable, {}, FramePicture::Photo, *fault)
                    : PipelineFailure(PipelineError::Unreadable);
    } catch (const std::bad_alloc &) {
        qCWarning(logImaging) << subject << "out of memory";
        throw PipelineFailure(PipelineError::TooLarge);
    } catch (const QException &) {
        throw;
    } catch (const std::exception &error) {
        qCWarning(logImaging) << subject << error.what();
        // Nothing may leave the thread but what the service promises: the next photo is still to be done.
        throw PipelineFailure(PipelineError::Unreadable);
    }
}

/// Does the work, calls `ended`, and then tells how it went: whoever hears of it may look at what is left
/// behind.
template<typename Value, typename Work, typename Ended>
void fulfil(QPromise<Value> &promise, const QString &subject, const std::stop_token &stop, const Work &work,
            const Ended &ended)
{
    std::optional<Value> value;
    std::exception_ptr failure;
    try {
        value = promised(subject, stop, work);
    } catch (...) {
        failure = std::current_exception();
    }
    ended();
    if (failure) {
        promise.setException(failure);
    } else {
        promise.addResult(std::move(*value));
    }
    promise.finish();
}

/// A promise that somebody may wait for. Not QtConcurrent::run: whoever waits for a task of that may be made
/// to run it, out of turn and on another thread.
template<typename Value>
std::shared_ptr<QPromise<Value>> startedPromise()
{
    auto promise = std::make_shared<QPromise<Value>>();
    promise->start();
    return promise;
}

/// Runs `work(stop)` on the thread, until either of the two stops.
template<typename Work>
auto enqueued(QThreadPool &thread, const QString &subject, std::stop_token stop, std::stop_token ending,
              Work work)
{
    using Value = std::decay_t<std::invoke_result_t<Work, const std::stop_token &>>;
    const std::shared_ptr<QPromise<Value>> promise = startedPromise<Value>();
    QFuture<Value> future = promise->future();
    thread.start([promise, subject, stop = std::move(stop), ending = std::move(ending),
                  work = std::move(work)]() mutable {
        const JoinedStop either(stop, ending);
        fulfil(*promise, subject, either.token(), work, [] {});
    });
    return future;
}

} // namespace tarnovel
