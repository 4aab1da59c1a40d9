// The user of a private desktop: moves the pointer, types, looks at the screen and reads the clipboard, all through the
// X server and without the help of the programs. Every action returns once the server has handed it on; what comes of
// it has to be waited for. One thread.
#pragma once

#include <QImage>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/pixel_area.h"
#include "desktop/wait.h"
#include "desktop/x11_view.h"

namespace ovrin {

// Which windows are meant: all that is given has to fit.
struct WindowLook {
    std::string title{};
    std::string program{};  // either part of WM_CLASS, in whatever case
    std::string type{};
    int width = 0;
    int height = 0;

    bool fits(const DesktopWindow& window) const;
    std::string description() const;
};

class TestUser {
public:
    enum class Button : std::uint8_t { left = 1, middle = 2, right = 3, wheelUp = 4, wheelDown = 5 };

    // Throws Error when no X server with the XFixes extension is there. Without XTest the user can only look.
    explicit TestUser(const std::string& display);

    const X11View& view() const { return view_; }

    // The pointer.
    void moveTo(PixelSpot spot) const;
    void press(Button button = Button::left) const;
    void release(Button button = Button::left) const;
    void click(PixelSpot spot, Button button = Button::left) const;
    void doubleClick(PixelSpot spot) const;
    // Turns the wheel by so many notches, downwards when there are more than 0.
    void scroll(PixelSpot spot, int notches) const;
    // Presses, moves in some steps, and releases.
    void drag(PixelSpot from, PixelSpot to) const;
    // The same without the release.
    void beginDrag(PixelSpot from, PixelSpot to) const;
    // Returns when no program holds the pointer: the window manager does until the window is where a drag left it.
    void waitForFreePointer() const;

    // The keyboard. A combination is the names of X keysyms with + between them, modifiers first: "Super_L+Shift_L+t",
    // "Escape". The keys are pressed in order and released in reverse order.
    void pressKeys(std::string_view combination) const;
    void holdKeys(std::string_view combination) const;
    void releaseKeys(std::string_view combination) const;
    // Whether some program has the combination for itself, wherever the keyboard is.
    bool isTaken(std::string_view combination) const;
    // Takes the combination as another program would (while no lock key is on), and gives it back.
    void takeKeys(std::string_view combination) const;
    void giveKeysBack(std::string_view combination) const;
    // ASCII, with line breaks as Return. Throws Error for what the keyboard has no key for.
    void type(std::string_view text) const;

    // Windows.
    std::vector<DesktopWindow> find(const WindowLook& look) const;
    DesktopWindow waitForWindow(const WindowLook& look) const;
    void waitUntilGone(xcb_window_t window) const;
    void waitUntilActive(xcb_window_t window) const;
    // Asks the window manager to put its upper-left corner there; its frame comes around it.
    void moveWindow(xcb_window_t window, PixelSpot corner) const;

    // The text on the clipboard; empty when there is none.
    std::string clipboardText();
    void waitForClipboard(const std::string& text);
    // As often as the clipboard has changed hands since this user exists.
    int clipboardChanges();

    // What is on the screen. Throws Error when it cannot be read or written.
    QImage picture() const;
    QImage picture(const PixelArea& area) const;
    void savePicture(const PixelArea& area, const std::filesystem::path& file) const;
    // Returns the first picture that fits, and throws Error as waitFor() does.
    QImage waitForPicture(const std::string& what, const PixelArea& area,
                          const std::function<bool(const QImage&)>& fits) const;
    // Returns when nothing moves there any more.
    void waitForStillPicture(const PixelArea& area) const;

private:
    enum class Press : std::uint8_t { down, up };
    void fake(std::uint8_t type, std::uint8_t detail, PixelSpot spot = {}) const;
    void key(xcb_keycode_t code, Press press) const;
    void waitForButton(Button button, Press state) const;

    struct Stroke {
        xcb_keycode_t code = 0;
        bool isShifted = false;
    };
    Stroke strokeOf(std::uint32_t keysym) const;
    struct Grab {
        std::uint16_t modifiers = 0;
        xcb_keycode_t key = 0;
    };
    Grab grabOf(std::string_view combination) const;
    std::vector<xcb_keycode_t> codesOf(std::string_view combination) const;

    void handleEvents();

    X11View view_;
    xcb_window_t window_ = XCB_WINDOW_NONE;  // of our own, to receive the clipboard
    std::uint8_t selectionEvent_ = 0;
    int clipboardChanges_ = 0;
    std::optional<xcb_atom_t> delivery_;  // where the clipboard's owner has put what it was asked for, if anywhere
    std::vector<std::uint32_t> keysyms_;  // keysymsPerCode_ for each code from the first one on
    std::size_t keysymsPerCode_ = 0;
    xcb_keycode_t firstCode_ = 0;
};

}  // namespace ovrin
