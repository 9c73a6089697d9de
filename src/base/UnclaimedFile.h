#pragma once

#include <utility>

#include <QFile>
#include <QString>

namespace tarnovel {

/// A file that goes again with the last who holds this, unless it is kept.
class UnclaimedFile {
public:
    explicit UnclaimedFile(QString path) : m_path(std::move(path)) {}
    ~UnclaimedFile()
    {
        if (!m_path.isEmpty()) {
            QFile::remove(m_path);
        }
    }
    UnclaimedFile(const UnclaimedFile &) = delete;
    UnclaimedFile &operator=(const UnclaimedFile &) = delete;
    void keep() { m_path.clear(); }

private:
    QString m_path;
};

} // namespace tarnovel
