// What can be seen of an X server from outside of its programs: windows, their properties, owners of selections. One
// connection, one thread.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/pixel_area.h"
#include "platform/linux/x11/x11_connection.h"

namespace ovrin {

// A window on the screen as its user knows it: without the frame that a window manager puts around it.
struct DesktopWindow {
    xcb_window_t id = XCB_WINDOW_NONE;
    std::string title;
    std::string instance;             // first part of WM_CLASS
    std::string className;            // second part
    std::string type;                 // such as "_NET_WM_WINDOW_TYPE_NORMAL"; empty when it names none
    std::vector<std::string> states;  // such as "_NET_WM_STATE_ABOVE"
    PixelArea area;                   // on the screen
    bool isOverrideRedirect = false;  // out of the window manager's reach

    bool hasState(std::string_view state) const;
};

class X11View {
public:
    // Throws Error when there is no server at the display, such as ":5".
    explicit X11View(const std::string& display);

    xcb_connection_t* connection() const { return connection_.get(); }
    xcb_window_t root() const { return screen().root; }
    const xcb_screen_t& screen() const;
    xcb_atom_t atom(const std::string& name) const;
    std::string atomName(xcb_atom_t atom) const;

    // Values of a property; empty when the window has none of that name (or is gone).
    std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& property) const;
    std::string text(xcb_window_t window, const std::string& property) const;

    // XCB_WINDOW_NONE when nobody owns it.
    xcb_window_t selectionOwner(const std::string& selection) const;

    // Every window on the screen, those of the window manager first, then those out of its reach.
    std::vector<DesktopWindow> windows() const;
    // Windows that another program embeds in its own, such as tray icons.
    std::vector<DesktopWindow> embeddedWindows() const;
    // None when it is not on the screen.
    std::optional<DesktopWindow> window(xcb_window_t id) const;
    xcb_window_t activeWindow() const;

    // Returns when the server has done everything that this connection asked for.
    void synchronize() const;

private:
    std::vector<xcb_window_t> children(xcb_window_t window) const;
    void collectEmbedded(xcb_window_t parent, std::vector<DesktopWindow>& found) const;

    X11Connection connection_;
    mutable std::map<std::string, xcb_atom_t, std::less<>> atoms_;
};

}  // namespace ovrin
