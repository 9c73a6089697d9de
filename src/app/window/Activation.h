#pragma once

#include <cstdint>
#include <optional>

class QString;
class QWidget;

namespace tarnovel::app::Activation {

/// Shows the window before all others, with the leave that the desktop gave the start that asks for it: a
/// token of Wayland's, or an X11 startup id. Without one, desktops may only mark the window.
void bringToFront(QWidget &window, const QString &token);

/// When the user acted, in the X server's milliseconds, as a startup id tells; none where it does not.
std::optional<uint32_t> timeOfStartup(const QString &id);

} // namespace tarnovel::app::Activation
