#include "app/window/WindowPlacement.h"

#include <algorithm>

#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include "base/Log.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize smallest(1100, 720);
/// Where the screen has not even that much room.
constexpr QSize smallestOfAll(900, 600);
constexpr QSize roomy(1440, 920);
constexpr int narrow = 1300;
constexpr int settleMs = 600;
constexpr int answerMs = 400;

QString text(const QRect &frame)
{
    return u"(%1, %2, %3, %4)"_s.arg(frame.x()).arg(frame.y()).arg(frame.width()).arg(frame.height());
}

} // namespace

WindowPlacement::WindowPlacement(QWidget &window, Preferences &preferences)
    : m_window(window), m_preferences(preferences)
{
    followScreen();
}

QSize WindowPlacement::smallestSize(QSize room)
{
    return smallest.boundedTo(room).expandedTo(smallestOfAll);
}

QRect WindowPlacement::held(const QRect &geometry, const QRect &available, const QMargins &frame)
{
    const QRect room = available.marginsRemoved(frame);
    QRect rect(geometry.topLeft(), geometry.size().boundedTo(room.size()).expandedTo(smallestOfAll));
    // Where even the smallest is too large, the title bar is what must stay in reach.
    rect.moveLeft(std::max(std::min(rect.x(), room.right() + 1 - rect.width()), room.x()));
    rect.moveTop(std::max(std::min(rect.y(), room.bottom() + 1 - rect.height()), room.y()));
    return rect;
}

QRect WindowPlacement::available() const
{
    return m_window.screen()->availableGeometry();
}

QMargins WindowPlacement::frame() const
{
    return m_window.windowHandle() ? m_window.windowHandle()->frameMargins() : QMargins();
}

void WindowPlacement::followScreen()
{
    m_window.setMinimumSize(smallestSize(available().marginsRemoved(frame()).size()));
}

void WindowPlacement::restore()
{
    const QByteArray geometry = m_preferences.get(PreferenceKeys::windowGeometry).toByteArray();
    if (geometry.isEmpty() || !m_window.restoreGeometry(geometry)) {
        // Qt refuses what was saved on a screen of another scale; the size still says what is wanted.
        const QSize size = m_preferences.get(PreferenceKeys::windowSize).toSize();
        m_window.resize((size.isEmpty() ? smallest : size)
                            .boundedTo(available().size())
                            .expandedTo(m_window.minimumSize()));
    }
    m_restored = m_window.size();
}

void WindowPlacement::remember()
{
    m_preferences.set(PreferenceKeys::windowGeometry, {m_window.saveGeometry()});
    m_preferences.set(PreferenceKeys::windowSize, {m_window.normalGeometry().size()});
}

void WindowPlacement::shown()
{
    if (QWindow *handle = m_window.windowHandle()) {
        connect(handle, &QWindow::screenChanged, this, &WindowPlacement::followScreen, Qt::UniqueConnection);
    }
    const bool first = !m_preferences.get(PreferenceKeys::windowSized);
    // The frame is known only once the window manager has put it around.
    QTimer::singleShot(settleMs, this, first ? &WindowPlacement::sizeFirstWindow : &WindowPlacement::hold);
}

void WindowPlacement::hold()
{
    followScreen();
    const QRect now = m_window.geometry();
    const QRect kept = held(now, available(), frame());
    if (m_window.size() == m_restored && kept != now &&
        !(m_window.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen))) {
        m_window.setGeometry(kept);
    }
}

void WindowPlacement::sizeFirstWindow()
{
    const QRect old = m_window.geometry();
    m_preferences.set(PreferenceKeys::windowSized, true);
    if (old.width() <= 0 || old.width() >= narrow) {
        return;
    }
    followScreen();
    QRect wanted(QPoint(), roomy);
    wanted.moveCenter(old.center());
    wanted.moveTo(std::max(wanted.x(), 0), std::max(wanted.y(), 0));
    const QRect frame = held(wanted, available(), this->frame());
    qCInfo(logApp).noquote() << u"Kesmar window from "_s + text(old) + u" to "_s + text(frame);
    m_window.setGeometry(frame);
    QTimer::singleShot(answerMs, this, [this, frame] {
        if (m_window.size() != frame.size()) {
            qCInfo(logApp).noquote() << u"Kesmar window resize: "_s + u"the window manager keeps "_s +
                                            text(m_window.geometry());
        }
    });
}

} // namespace tarnovel::app
