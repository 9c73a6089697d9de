#pragma once

#include <QException>
#include <QString>

#include "base/FileError.h"

namespace tarnovel {

/// How the image service can fail.
enum class PipelineError { unreadable, tooLarge, write, fileSize };

/// What the user is told, in the current language.
QString errorDescription(PipelineError error);

/// What the user is told when the disk refuses, in the current language.
QString errorDescription(const FileError &error);

/// A PipelineError on its way through a QFuture.
class PipelineFailure : public QException {
public:
    /// `file` is the picture that the failure is about, where that is not the photo itself.
    explicit PipelineFailure(PipelineError error, const QString &file = {}) : m_error(error), m_file(file) {}
    void raise() const override { throw *this; }
    PipelineFailure *clone() const override { return new PipelineFailure(*this); }
    const char *what() const noexcept override { return "pipeline failure"; }
    PipelineError error() const { return m_error; }
    const QString &file() const { return m_file; }

private:
    PipelineError m_error;
    QString m_file;
};

} // namespace tarnovel
