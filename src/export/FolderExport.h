#pragma once

#include <optional>

#include <QObject>
#include <QStringList>
#include <QUuid>

#include "base/AtomicFile.h"
#include "export/DeliveredThumbnails.h"
#include "export/ExportRun.h"
#include "language/FieldPattern.h"
#include "language/PhotographyQuotes.h"

namespace tarnovel {

/// One finished export.
struct ExportResult {
    QUuid id;
    QString folder;
    /// The files written, in the order of the run.
    QStringList files;
    /// Photos that were left out, by name.
    QStringList skipped;
    std::optional<PhotographyQuote> quote;
};

/// Exports photos into a folder, one after another. Finished files stay whatever happens to the rest;
/// existing ones are never overwritten.
class FolderExport : public QObject {
    Q_OBJECT

public:
    explicit FolderExport(ImagePipeline &pipeline);

    /// Nothing happens without photos or while a run is under way.
    void start(const QList<PhotoItem> &photos, const ExportOptions &options, const QString &folder);
    /// The same with names by a pattern; `sizeName` is what its size is called in them.
    void start(const QList<PhotoItem> &photos, const ExportOptions &options, const QString &folder,
               const FieldPattern &names, const QString &sizeName);
    void cancel() { m_run.cancel(); }
    /// What the run waits for, and how it goes on.
    ExportRun &run() { return m_run; }
    const ExportRun &run() const { return m_run; }

    bool working() const { return m_run.running(); }
    int progress() const { return m_progress; }
    int total() const { return m_total; }
    /// The last failure or cancellation, as the user is told; empty when there is none.
    const QString &error() const { return m_error; }
    /// The last run was ended by the user: no failure.
    bool cancelled() const { return m_cancelled; }
    const std::optional<ExportResult> &result() const { return m_result; }
    /// Of the result's files; they arrive after it.
    const QList<QImage> &thumbnails() const { return m_thumbnails.images(); }
    void dismissResult();

Q_SIGNALS:
    void changed();

private:
    QString deliver(const QList<PhotoItem> &photos, int index, const ExportedFile &file);
    /// A summary where there is something to sum up.
    void sumUp();
    void fail(const QString &error);
    void finish();

    ImagePipeline &m_pipeline;
    QString m_folder;
    FieldPattern m_names;
    QString m_sizeName;
    QStringList m_written;
    TakenNames m_taken;
    QString m_extension;
    int m_progress = 0;
    int m_total = 0;
    QString m_error;
    bool m_cancelled = false;
    std::optional<ExportResult> m_result;
    DeliveredThumbnails m_thumbnails;
    ExportRun m_run;
};

} // namespace tarnovel
