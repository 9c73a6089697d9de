#pragma once

#include <QString>

namespace tarnovel {

/// A folder among the temporary files that only this user can look into. It goes with this object; what a killed
/// program left is told by the lock that a living one holds on its folder.
class ScratchFolder {
public:
    /// Makes `PREFIXxxxxxx` in the system's temporary folder, after sweeping those that were left. Throws a
    /// FileError where there can be none.
    explicit ScratchFolder(const QString &prefix);
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    const QString &path() const { return m_path; }
    QString filePath(const QString &name) const { return m_path + u'/' + name; }

    /// Removes this user's folders `PREFIXxxxxxx` that nobody holds and that are older than this.
    static void sweep(const QString &prefix, qint64 ageSeconds);

private:
    QString m_path;
    int m_lock = -1;
};

} // namespace tarnovel
