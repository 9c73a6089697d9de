#pragma once

#include <deque>
#include <optional>
#include <unordered_set>

#include <QHash>

#include "cli/Console.h"
#include "cli/PhotoMaker.h"
#include "export/ExportNames.h"

namespace tarnovel::cli {

/// What a batch does with its results.
struct BatchOutput {
    QString folder;
    QList<WantedSize> sizes;
    FieldPattern pattern;
    /// Photos in the whole list, and how many of them are this run's.
    int count = 0;
    int ours = 0;
    bool skipExisting = false;
    /// A photo that is taken again is called as before.
    bool keepsNames = false;
    bool dryRun = false;
    bool json = false;
    bool quiet = false;
};

/// One run over a list of photos: names them, has them made, and tells of them, in their order.
class BatchRun {
public:
    BatchRun(BatchOutput output, const PhotoSource &source, PhotoMaker &maker);

    enum class Whose {
        Ours,
        /// Another run makes it; here it only takes its names.
        Others,
    };
    /// The photo at the next place of the list. `name` is what it is called in names of files, `templateId`
    /// its template. Throws OperationCancelled, when what was finished before has been published.
    void take(const PhotoJob &job, const QString &name, const QString &templateId, Whose whose);
    /// Ends every photo that is still on its way.
    void finish();

    /// Tells of something that failed as a whole.
    void reportFailure(const QString &photo, const QString &message, const QString &code);

    int status() const { return m_failed || m_deaf ? 1 : 0; }
    /// Nobody reads standard output any more.
    bool deaf() const { return m_deaf; }

private:
    struct Result {
        WantedSize size;
        FieldValues values;
        int attempt = 0;
        bool skipped = false;
    };
    struct Entry {
        PhotoJob job;
        QList<Result> results;
        bool made = false;
    };

    void setFacts(const PhotoJob &job, QList<Result> &results) const;
    void setAttempts(Entry &entry);
    void preview(const Entry &entry);
    QString path(const Result &result, int attempt) const;
    bool exists(const Result &result) const;
    void endReady();
    void end(const Entry &entry);
    void publish(const Entry &entry, const Result &result, const MadeSize &made);
    void tellSkipped(const Entry &entry, const Result &result);
    Json line(const Entry &entry, const Result &result, const QString &path) const;
    void print(const Json &line);
    void fail(const PhotoJob &job, const Result *result, const QString &message, const QString &code);

    const BatchOutput m_output;
    const PhotoSource &m_source;
    PhotoMaker &m_maker;
    ExportNames::Plan m_names;
    std::deque<Entry> m_entries;
    qsizetype m_making = 0;
    /// Of each photo by its name in the list, where they are kept.
    QHash<QString, QList<int>> m_attempts;
    std::unordered_set<size_t> m_previewed;
    std::unordered_set<size_t> m_warned;
    int m_done = 0;
    bool m_failed = false;
    bool m_deaf = false;
    ProgressBar m_progress;
};

} // namespace tarnovel::cli
