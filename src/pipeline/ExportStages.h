#pragma once

#include <atomic>
#include <memory>
#include <stop_token>

#include <QFuture>
#include <QImage>
#include <QList>
#include <QSemaphore>
#include <QString>
#include <QThreadPool>

#include "base/UnclaimedFile.h"
#include "model/Session.h"
#include "pipeline/ExportOptions.h"
#include "pipeline/PipelineTask.h"

namespace tarnovel {

/// A framed photo in the temporary folder. It goes with the last copy of this.
struct ExportedFile {
    std::shared_ptr<UnclaimedFile> owner;
    QString path;
    QSize canvas;
    qint64 bytes = 0;
};

/// The two stages of an export, each on a thread of its own: a photo is read while the one before is drawn,
/// encoded and written. Two photos at most are between their reading and their end.
class ExportStages {
public:
    /// What becomes of the memory of pictures when nothing more has been asked for.
    enum class Memory { GivenBack, Kept };
    /// Photos are read on `reading`, which outlives this. `ending` stops what is still to be done.
    ExportStages(ReadingLane &reading, QString temporaryFolder, Memory memory, std::stop_token ending);

    /// One file for each of the sizes, from one decoding; each may fail alone.
    QList<QFuture<ExportedFile>> sizes(const PhotoItem &item, const QList<ExportOptions> &sizes,
                                       std::stop_token stop);
    QFuture<ExportedFile> image(const QImage &image, const ExportOptions &options, std::stop_token stop);

    /// Returns when the second stage has nothing more to do.
    void waitForDone() { m_composing.waitForDone(); }

private:
    /// The sizes of one photo on their way.
    struct Exporting;
    void read(const std::shared_ptr<Exporting> &exporting);
    void write(const std::shared_ptr<Exporting> &exporting);
    ExportedFile written(const QImage &image, const ExportOptions &options,
                         const std::stop_token &stop) const;
    /// A photo has been written, or given up.
    void ended();

    ReadingLane &m_reading;
    const QString m_temporaryFolder;
    const Memory m_memory;
    const std::stop_token m_ending;
    QThreadPool m_composing;
    /// Kept from one export to the next: the first touch of fifty megabytes costs as much as the drawing. Of
    /// the composing thread.
    QImage m_canvas;
    /// Photos that may be read or composed at a time.
    QSemaphore m_room;
    /// Exports that were asked for and have not ended.
    std::atomic<int> m_exports = 0;
};

} // namespace tarnovel
