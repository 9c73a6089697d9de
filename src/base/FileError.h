#pragma once

#include <QException>
#include <QString>

namespace tarnovel {

/// What a file was asked for when the system refused.
enum class FileAccess { Read, Write };

/// A file that the system would not read or write. It may cross a QFuture without losing its text.
class FileError : public QException {
public:
    /// `code` is an errno value.
    FileError(QString path, int code, FileAccess access = FileAccess::Write);

    void raise() const override { throw *this; }
    FileError *clone() const override { return new FileError(*this); }
    const char *what() const noexcept override { return m_what.constData(); }

    QString path() const { return m_path; }
    int code() const { return m_code; }
    FileAccess access() const { return m_access; }
    /// The system's own words for the code, for example "No space left on device".
    QString reason() const;

private:
    QString m_path;
    int m_code;
    FileAccess m_access;
    QByteArray m_what;
};

} // namespace tarnovel
