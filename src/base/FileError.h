#pragma once

#include <QException>
#include <QString>

namespace tarnovel {

/// A file that the system would not read or write. It may cross a QFuture without losing its text.
class FileError : public QException {
public:
    /// `code` is an errno value.
    FileError(QString path, int code);

    void raise() const override { throw *this; }
    FileError *clone() const override { return new FileError(*this); }
    const char *what() const noexcept override { return m_what.constData(); }

    QString path() const { return m_path; }
    int code() const { return m_code; }
    /// The system's own words for the code, for example "No space left on device".
    QString reason() const;

private:
    QString m_path;
    int m_code;
    QByteArray m_what;
};

} // namespace tarnovel
