#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

#include <QObject>
#include <QSet>
#include <QStringList>

#include "base/Worker.h"
#include "pipeline/ImagePipeline.h"

namespace tarnovel {

/// A photo that could not be exported.
struct ExportProblem {
    PhotoItem photo;
    /// What kind of failure it was, and what lies behind it; in the language of that moment.
    QString description;
    QString cause;
    /// The disk refused: the same photo may succeed once there is room, or the folder is back.
    bool worthRetrying = false;
};

/// Renders photos strictly one after another into temporary files, each asked for while the one before it is
/// made: the part that every destination shares. It lives on the interface thread, which only hears of
/// results.
class ExportRun : public QObject {
    Q_OBJECT

public:
    explicit ExportRun(ImagePipeline &pipeline);
    ~ExportRun() override;

    /// What a run does besides rendering; all are called on the interface thread but `deliver`. Each may
    /// start the next run.
    struct Steps {
        /// Takes a finished temporary file of the photo at this index, on a thread that may wait for the
        /// disk.
        std::function<void(int index, const ExportedFile &file)> deliver;
        /// Photos that are finished or left out.
        std::function<void(int done)> progressed;
        std::function<void()> completed;
        std::function<void()> cancelled;
        /// The run waits: `skip`, `retry` or `stop` goes on.
        std::function<void()> paused;
        /// Stopped after a problem; the photos that are left are not tried.
        std::function<void(const ExportProblem &problem)> failed;
    };

    /// Nothing happens while a run is under way.
    void start(const QList<PhotoItem> &photos, const ExportOptions &options, Steps steps);
    /// Ends the run before its next photo; a photo that is being rendered is given up between two steps of
    /// its making. A run that waits is stopped.
    void cancel();
    bool running() const { return m_running; }
    /// The photo that is being made.
    const PhotoItem *current() const;

    /// What the run waits for, or nothing.
    const std::optional<ExportProblem> &problem() const { return m_problem; }
    enum class Skipping {
        ThisPhoto,
        /// Later ones of the same cause too, without a question.
        AllAlike,
    };
    void skip(Skipping which = Skipping::ThisPhoto);
    void retry();
    void stop();
    /// What the last run was stopped by.
    const std::optional<ExportProblem> &failure() const { return m_failure; }
    /// The photos that were left out, in order.
    const QList<ExportProblem> &skipped() const { return m_skipped; }
    QStringList skippedNames() const;

private:
    void next();
    QFuture<ExportedFile> begun(int index);
    void rendered(const QFuture<ExportedFile> &finished);
    void delivered(const std::optional<FileError> &refusal);
    void fail(const ExportProblem &problem);
    void leaveOut(const ExportProblem &problem);
    /// The steps of the run that ends here: what is called may start another one.
    std::shared_ptr<const Steps> end();

    ImagePipeline &m_pipeline;
    QList<PhotoItem> m_photos;
    ExportOptions m_options;
    std::shared_ptr<const Steps> m_steps;
    int m_index = 0;
    /// The photo after that: it is read while this one is drawn, encoded and written.
    std::optional<std::pair<int, QFuture<ExportedFile>>> m_ahead;
    bool m_running = false;
    std::optional<ExportProblem> m_problem;
    std::optional<ExportProblem> m_failure;
    QList<ExportProblem> m_skipped;
    QSet<QString> m_skippedAlike;
    std::stop_source m_stop;
    Worker m_disk;
};

} // namespace tarnovel
