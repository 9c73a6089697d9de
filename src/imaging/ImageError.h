#pragma once

#include <QException>

namespace tarnovel {

/// A picture that cannot be had from a file. The message of `what` is for a log; what a person reads is
/// chosen where the error is shown.
class ImageError : public QException {
public:
    /// `SmallPreview`: the file holds its picture in a raw form, and only a thumbnail to be read.
    /// `NoDecoder`: nothing is wrong with the file, but what reads it cannot be started.
    enum class Cause { Missing, Unsupported, TooLarge, Damaged, SmallPreview, NoDecoder };

    ImageError(Cause cause, const QByteArray &detail) : m_cause(cause), m_detail(detail) {}
    void raise() const override { throw *this; }
    ImageError *clone() const override { return new ImageError(*this); }
    const char *what() const noexcept override { return m_detail.constData(); }
    Cause cause() const { return m_cause; }

private:
    Cause m_cause;
    QByteArray m_detail;
};

} // namespace tarnovel
