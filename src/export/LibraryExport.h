#pragma once

#include <memory>
#include <optional>

#include <QObject>

#include "base/Worker.h"
#include "export/DeliveredThumbnails.h"
#include "export/ExportFileLifetime.h"
#include "export/ExportRun.h"
#include "export/PhotoLibrary.h"
#include "language/PhotographyQuotes.h"

namespace tarnovel {

/// Exports photos into the photo library: all are rendered first, then the whole batch goes in, or nothing.
class LibraryExport : public QObject {
    Q_OBJECT

public:
    enum class Phase {
        Idle,
        Rendering,
        /// No way back: the sheet offers no cancel.
        Saving,
        Saved,
    };

    LibraryExport(ImagePipeline &pipeline, PhotoLibrary &library);

    /// Nothing happens without photos or while a run is under way.
    void start(const QList<PhotoItem> &photos, const ExportOptions &options);
    void cancel();

    Phase phase() const { return m_phase; }
    int progress() const { return m_progress; }
    int total() const { return m_total; }
    const QString &error() const { return m_error; }
    /// The last run was ended by the user: no failure.
    bool cancelled() const { return m_cancelled && !m_error.isEmpty(); }
    /// The library has refused; the panel offers another folder.
    bool denied() const { return m_denied; }
    /// What is in its way, in the language of that moment; empty when that is not known.
    const QString &refusal() const { return m_refusal; }
    /// What the run waits for, and how it goes on.
    ExportRun &run() { return m_run; }
    const ExportRun &run() const { return m_run; }
    /// Where the photos are after a success.
    const QStringList &saved() const { return m_saved; }
    const QList<QImage> &thumbnails() const { return m_thumbnails.images(); }
    const std::optional<PhotographyQuote> &quote() const { return m_quote; }
    /// The temporary files of the run under way. After a success they live as long as someone holds this;
    /// what is offered then are the photos of the library.
    std::shared_ptr<const ExportFileLifetime> files() const { return m_files; }

    /// The texts of the saving phase and of success, in the current language.
    static QString savingText();
    static QString savingHint();
    static QString savedText();
    static QString shareText();

Q_SIGNALS:
    void changed();
    /// Once for each batch that is in the library.
    void succeeded();

private:
    void begin(PhotoLibraryAccess access);
    void save();
    void finishSaving();
    void fail(const QString &error);
    void failRendering(const QString &description);
    void failCancelled();

    PhotoLibrary &m_library;
    QList<PhotoItem> m_photos;
    ExportOptions m_options;
    std::shared_ptr<ExportFileLifetime> m_files;
    Phase m_phase = Phase::Idle;
    int m_progress = 0;
    int m_total = 0;
    QString m_error;
    bool m_denied = false;
    QString m_refusal;
    /// Cancelled while the library was still being asked.
    bool m_cancelled = false;
    QStringList m_saved;
    DeliveredThumbnails m_thumbnails;
    std::optional<PhotographyQuote> m_quote;
    ExportRun m_run;
    Worker m_disk;
};

} // namespace tarnovel
