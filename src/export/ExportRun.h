#pragma once

#include <functional>
#include <stop_token>

#include <QObject>
#include <QThreadPool>

#include "pipeline/ImagePipeline.h"

namespace tarnovel {

/// Renders photos strictly one after another into temporary files: the part that every destination shares. It
/// lives on the interface thread, which only hears of results.
class ExportRun : public QObject {
    Q_OBJECT

public:
    explicit ExportRun(ImagePipeline &pipeline);
    ~ExportRun() override;

    /// What a run does besides rendering; all are called on the interface thread but `deliver`.
    struct Steps {
        /// Takes a finished temporary file of the photo at this index, on a thread that may wait for the
        /// disk.
        std::function<void(int index, const ExportedFile &file)> deliver;
        std::function<void(int done)> progressed;
        std::function<void()> completed;
        std::function<void()> cancelled;
        /// With the description of what went wrong; the photos that are left are not tried.
        std::function<void(const QString &description)> failed;
    };

    /// Nothing happens while a run is under way.
    void start(const QList<PhotoItem> &photos, const ExportOptions &options, Steps steps);
    /// Ends the run before its next photo; a photo that is being rendered is given up between two steps of
    /// its making.
    void cancel() { m_stop.request_stop(); }
    bool running() const { return m_running; }

private:
    void next();
    void rendered(const QFuture<ExportedFile> &finished);
    void end(const std::function<void()> &last);

    ImagePipeline &m_pipeline;
    QList<PhotoItem> m_photos;
    ExportOptions m_options;
    Steps m_steps;
    int m_index = 0;
    bool m_running = false;
    std::stop_source m_stop;
    QThreadPool m_disk;
};

} // namespace tarnovel
