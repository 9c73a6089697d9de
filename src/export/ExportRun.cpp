#include "export/ExportRun.h"

#include <cerrno>
#include <utility>

#include "base/Cancellation.h"
#include "base/Log.h"
#include "language/AppLanguage.h"
#include "pipeline/PipelineError.h"
#include "pipeline/WhenFinished.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

ExportRun::ExportRun(ImagePipeline &pipeline) : m_pipeline(pipeline) {}

ExportRun::~ExportRun()
{
    m_stop.request_stop();
}

void ExportRun::start(const QList<PhotoItem> &photos, const ExportOptions &options, Steps steps)
{
    if (m_running) {
        return;
    }
    m_photos = photos;
    m_options = options;
    m_steps = std::make_shared<const Steps>(std::move(steps));
    m_index = 0;
    m_problem.reset();
    m_failure.reset();
    m_skipped.clear();
    m_skippedAlike.clear();
    m_running = true;
    m_stop = {};
    next();
}

void ExportRun::cancel()
{
    m_stop.request_stop();
    if (m_problem) {
        stop();
    }
}

const PhotoItem *ExportRun::current() const
{
    return m_running && m_index < m_photos.size() ? &m_photos.at(m_index) : nullptr;
}

QStringList ExportRun::skippedNames() const
{
    QStringList names;
    for (const ExportProblem &problem : m_skipped) {
        names.append(problem.photo.name);
    }
    return names;
}

void ExportRun::next()
{
    if (m_index == m_photos.size()) {
        end()->completed();
    } else if (m_stop.stop_requested()) {
        end()->cancelled();
    } else {
        whenFinished<ExportedFile>(begun(m_index), this,
                                   [this](const QFuture<ExportedFile> &finished) { rendered(finished); });
        if (m_index + 1 < m_photos.size()) {
            m_ahead = {m_index + 1, begun(m_index + 1)};
        }
    }
}

/// The export of a photo, which may have been asked for already.
QFuture<ExportedFile> ExportRun::begun(int index)
{
    return m_ahead && m_ahead->first == index
               ? m_ahead->second
               : m_pipeline.exportPhoto(m_photos.at(index), m_options, m_stop.get_token());
}

void ExportRun::rendered(const QFuture<ExportedFile> &finished)
{
    const PhotoItem photo = m_photos.at(m_index);
    ExportedFile file;
    try {
        file = finished.result();
    } catch (const OperationCancelled &) {
        end()->cancelled();
        return;
    } catch (const PipelineFailure &failure) {
        fail({photo, errorDescription(failure.error()), errorDescription(failure)});
        return;
    } catch (const FileError &error) {
        // Rendering writes where nobody chose to: without a word more the chosen folder would be blamed.
        fail({photo, errorDescription(error),
              localized({"临时文件夹：", "Temporary folder: ", "Dossier temporaire : "}) +
                  errorDescription(error),
              true});
        return;
    }
    m_disk.run(
        [file, index = m_index, steps = m_steps]() -> std::optional<FileError> {
            try {
                steps->deliver(index, file);
            } catch (const FileError &error) {
                qCWarning(logExport) << "not delivered:" << error.what();
                return error;
            }
            return {};
        },
        [this](const std::optional<FileError> &refusal) { delivered(refusal); });
}

void ExportRun::delivered(const std::optional<FileError> &refusal)
{
    if (refusal) {
        // A file that is too large is this photo's matter; anything else the next one would meet too.
        fail({m_photos.at(m_index), errorDescription(*refusal), errorDescription(*refusal),
              refusal->code() != EFBIG});
        return;
    }
    const std::shared_ptr<const Steps> steps = m_steps;
    steps->progressed(++m_index);
    next();
}

void ExportRun::fail(const ExportProblem &problem)
{
    if (m_skippedAlike.contains(problem.cause)) {
        leaveOut(problem);
        return;
    }
    m_problem = problem;
    if (m_stop.stop_requested()) {
        stop();
        return;
    }
    const std::shared_ptr<const Steps> steps = m_steps;
    steps->paused();
}

void ExportRun::leaveOut(const ExportProblem &problem)
{
    m_skipped.append(problem);
    const std::shared_ptr<const Steps> steps = m_steps;
    steps->progressed(++m_index);
    next();
}

void ExportRun::skip(Skipping which)
{
    if (!m_problem) {
        return;
    }
    const ExportProblem problem = *std::exchange(m_problem, std::nullopt);
    if (problem.worthRetrying) {
        m_ahead.reset();
    }
    if (which == Skipping::AllAlike) {
        m_skippedAlike.insert(problem.cause);
    }
    leaveOut(problem);
}

void ExportRun::retry()
{
    if (m_problem) {
        m_problem.reset();
        m_ahead.reset(); // which may have met what has been put right
        const std::shared_ptr<const Steps> steps = m_steps;
        steps->progressed(m_index);
        next();
    }
}

void ExportRun::stop()
{
    if (m_problem) {
        const ExportProblem problem = *std::exchange(m_problem, std::nullopt);
        m_failure = problem;
        m_stop.request_stop();
        end()->failed(problem);
    }
}

std::shared_ptr<const ExportRun::Steps> ExportRun::end()
{
    m_running = false;
    m_ahead.reset();
    return std::exchange(m_steps, nullptr);
}

} // namespace tarnovel
