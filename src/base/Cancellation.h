#pragma once

#include <stop_token>

#include <QException>

namespace tarnovel {

/// The outcome of work whose user changed her mind: neither a result nor an error, and never shown as one.
class OperationCancelled : public QException {
public:
    void raise() const override { throw *this; }
    OperationCancelled *clone() const override { return new OperationCancelled(*this); }
    const char *what() const noexcept override { return "cancelled"; }
};

inline void throwIfCancelled(const std::stop_token &stop)
{
    if (stop.stop_requested()) {
        throw OperationCancelled();
    }
}

} // namespace tarnovel
