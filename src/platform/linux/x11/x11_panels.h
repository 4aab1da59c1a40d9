// The panels on an X11 desktop (task bars, docks), as far as a program can tell what they look like.
#pragma once

#include <optional>

#include <xcb/xcb.h>

#include "platform/linux/x11/x11_screenshot.h"
#include "theme/color_token.h"

namespace ovrin {

// Whether the panels are light or dark on the screen now; none when there are none that the window manager knows of.
std::optional<theme::Appearance> panelAppearance(xcb_connection_t* connection, X11Screenshot& screenshot);

}  // namespace ovrin
