#include "app/window/WindowPlacement.h"

#include <algorithm>

#include <QLoggingCategory>
#include <QTimer>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr QSize smallest(1100, 720);
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
    m_window.setMinimumSize(smallest);
}

void WindowPlacement::restore()
{
    const QByteArray geometry = m_preferences.value(u"windowGeometry"_s).toByteArray();
    if (geometry.isEmpty() || !m_window.restoreGeometry(geometry)) {
        m_window.resize(smallest);
    }
}

void WindowPlacement::remember()
{
    m_preferences.setValue(u"windowGeometry"_s, m_window.saveGeometry());
}

void WindowPlacement::shown()
{
    if (!m_preferences.value(u"macWindowSized"_s, false).toBool()) {
        QTimer::singleShot(settleMs, this, &WindowPlacement::sizeFirstWindow);
    }
}

void WindowPlacement::sizeFirstWindow()
{
    const QRect old = m_window.geometry();
    m_preferences.setValue(u"macWindowSized"_s, true);
    if (old.width() <= 0 || old.width() >= narrow) {
        return;
    }
    QRect frame(QPoint(), roomy);
    frame.moveCenter(old.center());
    frame.moveTo(std::max(frame.x(), 0), std::max(frame.y(), 0));
    qInfo().noquote() << u"Kesmar window from "_s + text(old) + u" to "_s + text(frame);
    m_window.setGeometry(frame);
    QTimer::singleShot(answerMs, this, [this, frame] {
        if (m_window.size() != frame.size()) {
            qInfo().noquote() << u"Kesmar window resize: "_s + u"the window manager keeps "_s +
                                     text(m_window.geometry());
        }
    });
}

} // namespace tarnovel::app
