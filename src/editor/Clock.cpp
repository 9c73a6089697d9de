#include "editor/Clock.h"

#include <utility>

#include <QDateTime>
#include <QTimer>

namespace tarnovel {

namespace {

class TimerCall : public PendingCall {
public:
    TimerCall(std::chrono::milliseconds delay, std::function<void()> action)
    {
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, std::move(action));
        m_timer.start(delay);
    }

private:
    QTimer m_timer;
};

} // namespace

std::chrono::milliseconds SystemClock::elapsed() const
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

SecondsSince2001 SystemClock::date() const
{
    return secondsSince2001(QDateTime::currentDateTimeUtc());
}

std::unique_ptr<PendingCall> SystemClock::after(std::chrono::milliseconds delay, std::function<void()> action)
{
    return std::make_unique<TimerCall>(delay, std::move(action));
}

} // namespace tarnovel
