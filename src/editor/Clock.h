#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "base/JsonDate.h"

namespace tarnovel {

/// A call that is still to come; destroying it takes it back.
class PendingCall {
public:
    virtual ~PendingCall() = default;
};

/// Time as the editor sees it. Tests put their own in its place.
class Clock {
public:
    virtual ~Clock() = default;
    /// Time since some fixed moment; never set back.
    virtual std::chrono::milliseconds elapsed() const = 0;
    virtual SecondsSince2001 date() const = 0;
    /// Calls `action` once on the calling thread's event loop, after `delay`.
    virtual std::unique_ptr<PendingCall> after(std::chrono::milliseconds delay,
                                               std::function<void()> action) = 0;
};

/// The machine's own clocks and Qt's timers.
class SystemClock : public Clock {
public:
    std::chrono::milliseconds elapsed() const override;
    SecondsSince2001 date() const override;
    std::unique_ptr<PendingCall> after(std::chrono::milliseconds delay,
                                       std::function<void()> action) override;
};

} // namespace tarnovel
