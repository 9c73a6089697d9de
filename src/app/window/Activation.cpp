#include "app/window/Activation.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <memory>

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace tarnovel::app::Activation {

namespace {

constexpr uint8_t bitsOfBytes = 8;
constexpr uint8_t bitsOfNumbers = 32;
/// What one client message carries of a text.
constexpr qsizetype messageBytes = 20;

/// What Qt has no call for: the messages of the window manager's and of the startup notification's protocols.
class X11Messages {
public:
    X11Messages(xcb_connection_t *connection, xcb_window_t window)
        : m_connection(connection),
          m_window(window),
          m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root)
    {
    }
    ~X11Messages() { xcb_flush(m_connection); }
    X11Messages(const X11Messages &) = delete;
    X11Messages &operator=(const X11Messages &) = delete;

    void activate(uint32_t time) const
    {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom("_NET_USER_TIME"),
                            XCB_ATOM_CARDINAL, bitsOfNumbers, 1, &time);
        xcb_client_message_event_t message = blank(bitsOfNumbers, "_NET_ACTIVE_WINDOW");
        message.data.data32[0] = 1; // an application asks
        message.data.data32[1] = time;
        send(message, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    }

    /// Ends the waiting pointer of a start that showed no window of its own.
    void endStartup(const QString &id) const
    {
        QByteArray quoted = id.toUtf8();
        quoted.replace('\\', "\\\\").replace('"', "\\\"");
        const QByteArray text = "remove: ID=\"" + quoted + "\"" + '\0';
        for (qsizetype at = 0; at < text.size(); at += messageBytes) {
            xcb_client_message_event_t message =
                blank(bitsOfBytes, at == 0 ? "_NET_STARTUP_INFO_BEGIN" : "_NET_STARTUP_INFO");
            const QByteArray part = text.mid(at, messageBytes);
            std::copy(part.begin(), part.end(), std::begin(message.data.data8));
            send(message, XCB_EVENT_MASK_PROPERTY_CHANGE);
        }
    }

private:
    xcb_atom_t atom(QByteArrayView name) const
    {
        const auto cookie = xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(name.size()), name.data());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(m_connection, cookie, nullptr), &std::free);
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }
    xcb_client_message_event_t blank(uint8_t format, QByteArrayView type) const
    {
        xcb_client_message_event_t message = {};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = format;
        message.window = m_window;
        message.type = atom(type);
        return message;
    }
    void send(const xcb_client_message_event_t &message, uint32_t mask) const
    {
        xcb_send_event(m_connection, 0, m_root, mask, reinterpret_cast<const char *>(&message));
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_window;
    xcb_window_t m_root;
};

} // namespace

std::optional<uint32_t> timeOfStartup(const QString &id)
{
    const qsizetype mark = id.lastIndexOf(u"_TIME"_s);
    bool valid = false;
    const uint32_t time = mark < 0 ? 0 : id.mid(mark + 5).toUInt(&valid);
    return valid && time > 0 ? std::optional(time) : std::nullopt;
}

void bringToFront(QWidget &window, const QString &token)
{
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    // The offscreen platform answers as well, without a server.
    if (const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
        x11 && x11->connection() && QGuiApplication::platformName() == u"xcb"_s) {
        window.raise();
        window.activateWindow();
        const X11Messages messages(x11->connection(), static_cast<xcb_window_t>(window.winId()));
        if (const std::optional<uint32_t> time = timeOfStartup(token)) {
            messages.activate(*time);
        }
        if (!token.isEmpty()) {
            messages.endStartup(token);
        }
        return;
    }
    // Wayland knows no raising, and its plugin looks here for leave to activate; nothing that this program
    // starts may take it for its own.
    if (!token.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    }
    window.activateWindow();
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

} // namespace tarnovel::app::Activation
