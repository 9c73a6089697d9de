#pragma once

#include <QList>
#include <QStringList>

#include "pipeline/ImagePipeline.h"

namespace tarnovel {

/// Owns the temporary files of one export: they go when it does. Shared by whoever still offers them.
class ExportFileLifetime {
public:
    ExportFileLifetime() = default;
    ExportFileLifetime(const ExportFileLifetime &) = delete;
    ExportFileLifetime &operator=(const ExportFileLifetime &) = delete;

    void add(const ExportedFile &file) { m_files.append(file); }
    QStringList files() const;
    /// Deletes the files; one that cannot be is passed over.
    void clear() { m_files.clear(); }

    /// Once in the life of the process: deletes temporary exports that earlier starts left more than a day
    /// ago.
    static void prepare(const QString &temporaryFolder);
    /// The sweep itself, seen from the moment `nowMs` (milliseconds since 1970).
    static void sweep(const QString &temporaryFolder, qint64 nowMs);

private:
    QList<ExportedFile> m_files;
};

} // namespace tarnovel
