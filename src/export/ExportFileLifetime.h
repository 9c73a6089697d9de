#pragma once

#include <QStringList>

namespace tarnovel {

/// Owns the temporary files of one export: they go when it does. Shared by whoever still offers them.
class ExportFileLifetime {
public:
    ExportFileLifetime() = default;
    ~ExportFileLifetime() { clear(); }
    ExportFileLifetime(const ExportFileLifetime &) = delete;
    ExportFileLifetime &operator=(const ExportFileLifetime &) = delete;

    void add(const QString &file) { m_files.append(file); }
    const QStringList &files() const { return m_files; }
    /// Deletes the files; one that cannot be is passed over.
    void clear();

    /// Once in the life of the process: deletes temporary exports that earlier starts left more than a day
    /// ago.
    static void prepare(const QString &temporaryFolder);
    /// The sweep itself, seen from the moment `nowMs` (milliseconds since 1970).
    static void sweep(const QString &temporaryFolder, qint64 nowMs);

private:
    QStringList m_files;
};

} // namespace tarnovel
