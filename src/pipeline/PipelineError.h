#pragma once

#include <optional>

#include <QException>
#include <QString>

#include "base/FileError.h"

namespace tarnovel {

/// How the image service can fail.
enum class PipelineError { Unreadable, TooLarge, Write, FileSize };

/// What the user is told, in the current language.
QString errorDescription(PipelineError error);

/// What the user is told when the system refuses a file, in the current language.
QString errorDescription(const FileError &error);

/// Which picture of a frame a failure is about.
enum class FramePicture { Photo, Background, Logo, Signature };

/// What is wrong with a file that holds a picture, but none that can be framed: nothing but a small preview
/// of it, or more pixels than are taken into memory. `Damaged` is one that begins as a picture and does not
/// go on as one. `NoDecoder` is not the file's fault: what reads it cannot be started.
enum class PictureFault { SmallPreview, TooLarge, NoDecoder, Damaged };

/// A PipelineError on its way through a QFuture.
class PipelineFailure : public QException {
public:
    /// `file` is the picture that the failure is about, where that is not the photo itself; `trouble` is why
    /// it could not even be opened.
    explicit PipelineFailure(PipelineError error, const QString &file = {},
                             FramePicture picture = FramePicture::Photo,
                             const std::optional<FileError> &trouble = {})
        : m_error(error), m_file(file), m_picture(picture), m_trouble(trouble)
    {
    }
    PipelineFailure(PipelineError error, const QString &file, FramePicture picture, PictureFault fault)
        : m_error(error), m_file(file), m_picture(picture), m_fault(fault)
    {
    }
    /// The same failure, said of that file.
    PipelineFailure of(const QString &file) const
    {
        PipelineFailure made = *this;
        made.m_file = file;
        return made;
    }
    void raise() const override { throw *this; }
    PipelineFailure *clone() const override { return new PipelineFailure(*this); }
    const char *what() const noexcept override { return "pipeline failure"; }
    PipelineError error() const { return m_error; }
    const QString &file() const { return m_file; }
    FramePicture picture() const { return m_picture; }
    const std::optional<FileError> &trouble() const { return m_trouble; }
    std::optional<PictureFault> fault() const { return m_fault; }
    /// Whether there is more to say of what is in the file than that it cannot be read.
    bool hasTellingFault() const { return m_fault && *m_fault != PictureFault::Damaged; }

private:
    PipelineError m_error;
    QString m_file;
    FramePicture m_picture;
    std::optional<FileError> m_trouble;
    std::optional<PictureFault> m_fault;
};

/// What the user is told, with the cause where it is known.
QString errorDescription(const PipelineFailure &failure);

/// "The background picture cannot be read.": what the user is told of a picture that goes with a photo.
QString missingPicture(FramePicture picture);

} // namespace tarnovel
