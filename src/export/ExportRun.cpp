#include "export/ExportRun.h"

#include <optional>
#include <utility>

#include "base/Cancellation.h"
#include "pipeline/PipelineError.h"
#include "pipeline/WhenFinished.h"

namespace tarnovel {

ExportRun::ExportRun(ImagePipeline &pipeline) : m_pipeline(pipeline)
{
    m_disk.setMaxThreadCount(1);
}

ExportRun::~ExportRun()
{
    m_stop.request_stop();
    m_disk.waitForDone();
}

void ExportRun::start(const QList<PhotoItem> &photos, const ExportOptions &options, Steps steps)
{
    if (m_running) {
        return;
    }
    m_photos = photos;
    m_options = options;
    m_steps = std::move(steps);
    m_index = 0;
    m_running = true;
    m_stop = {};
    next();
}

void ExportRun::next()
{
    if (m_index == m_photos.size()) {
        end(m_steps.completed);
    } else if (m_stop.stop_requested()) {
        end(m_steps.cancelled);
    } else {
        whenFinished<ExportedFile>(
            m_pipeline.exportPhoto(m_photos.at(m_index), m_options, m_stop.get_token()), this,
            [this](const QFuture<ExportedFile> &finished) { rendered(finished); });
    }
}

void ExportRun::rendered(const QFuture<ExportedFile> &finished)
{
    ExportedFile file;
    try {
        file = finished.result();
    } catch (const OperationCancelled &) {
        end(m_steps.cancelled);
        return;
    } catch (const PipelineFailure &failure) {
        end([this, text = errorDescription(failure.error())] { m_steps.failed(text); });
        return;
    } catch (const FileError &error) {
        end([this, text = errorDescription(error)] { m_steps.failed(text); });
        return;
    }
    m_disk.start([this, file, index = m_index] {
        std::optional<FileError> refusal;
        try {
            m_steps.deliver(index, file);
        } catch (const FileError &error) {
            refusal = error;
        }
        QMetaObject::invokeMethod(
            this,
            [this, refusal] {
                if (refusal) {
                    end([this, &refusal] { m_steps.failed(errorDescription(*refusal)); });
                    return;
                }
                m_steps.progressed(++m_index);
                next();
            },
            Qt::QueuedConnection);
    });
}

void ExportRun::end(const std::function<void()> &last)
{
    m_running = false;
    // A copy: what is called may start another run, which replaces the steps.
    const std::function<void()> call = last;
    const Steps kept = m_steps;
    call();
}

} // namespace tarnovel
