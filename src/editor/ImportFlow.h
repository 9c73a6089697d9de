#pragma once

#include <optional>
#include <stop_token>

#include <QObject>
#include <QStringList>

#include "base/FileError.h"
#include "base/Worker.h"
#include "editor/EditorModel.h"

namespace tarnovel {

/// What an import does with its files.
enum class ImportMode {
    /// Each becomes a photo of the session.
    Photos,
    /// The first that can be read becomes the selected photo's backdrop.
    Background,
    /// The first that can be read becomes the selected photo's logo.
    Logo,
};

struct ImportRequest {
    QStringList paths = {};
    ImportMode mode = ImportMode::Photos;
    /// The photo that a background or a logo is for; the selected one of the moment when absent.
    std::optional<QUuid> target = {};
};

/// A file that was not brought in, for a reason that can be named: the path that was asked for, and a
/// sentence in the language of that moment.
struct ImportRefusal {
    QString path;
    QString reason;
};

/// What an import came to.
struct ImportSummary {
    qsizetype added = 0;
    /// Files that are there and open, but hold nothing that is known as a picture.
    qsizetype unreadable = 0;
    QList<ImportRefusal> refused = {};
    /// The disk took no more copies: what came before is in the session, the rest was not tried.
    QString stopped = {};
    /// Files were left out because the session was full.
    bool truncated = false;
    bool cancelled = false;

    /// What the user is told, in the current language; empty when all went as wished.
    QString message() const;
};

/// Brings files into the library and the session, one after another, off the interface thread. Copies that
/// come to nothing are removed again. The model's `busy` and `importProgress` follow; its `message` ends with
/// the summary's.
class ImportFlow : public QObject {
    Q_OBJECT

public:
    ImportFlow(EditorModel &model, ImagePipeline &pipeline);
    ~ImportFlow() override;

    /// Queued behind a running import.
    void start(const ImportRequest &request);
    void cancel();
    /// Ends the import with the photos that have come in so far, before it returns; what waits is dropped.
    void endNow();
    bool running() const { return m_running; }

Q_SIGNALS:
    void finished(const tarnovel::ImportSummary &summary);

private:
    void next();
    void step();
    void copied(const QString &file, const std::optional<FileError> &refusal);
    void refused(const FileError &refusal);
    void notFramed(const QString &file, const QString &reason);
    void inspected(const QString &file, const std::optional<PhotoItem> &item);
    void takeCopied();
    void finish();
    /// Gives the selected photo the picture that was brought in for it.
    void finishPicture();
    void remove(const QString &file) const;
    /// Deletes the copies of the prepared photos from this one on.
    void removeFrom(qsizetype index);

    EditorModel &m_model;
    ImagePipeline &m_pipeline;
    QList<ImportRequest> m_queue;
    ImportRequest m_request;
    qsizetype m_index = 0;
    QList<PhotoItem> m_items;
    /// The copy that is being inspected.
    QString m_copied;
    ImportSummary m_summary;
    bool m_running = false;
    /// Counts the imports and their early ends: what is told of an older one comes too late.
    int m_run = 0;
    std::stop_source m_stop;
    Worker m_copier;
};

} // namespace tarnovel
