// Presses Control+C and Shift+Insert in the program in front, on a virtual keyboard of the compositor. In terminals,
// where Control+C interrupts what runs and nothing that is selected can be replaced, it presses nothing.
//
// Shift+Insert pastes the clipboard in every toolkit's fields, like Control+V, and does no harm elsewhere. The
// compositor keeps the modifiers of each keyboard apart: keys that the user still holds from a shortcut change nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"
#include "platform/linux/wayland/wayland_keymap.h"
#include "platform/linux/wayland/wayland_toplevels.h"
#include "platform/synthetic_keyboard.h"
#include "virtual-keyboard-unstable-v1-client.h"

namespace ovrin {

class WaylandSimulateKeyboard final : public SimulateKeyboard {
public:
    // Whether it can tell what is selected and press keys.
    static bool isOfferedBy(const WaylandConnection& connection);

    // name: of the compositor's socket; null for the one the environment names. Throws Error when no compositor
    // answers, or it does not tell what is selected.
    explicit WaylandSimulateKeyboard(const char* name);
    WaylandSimulateKeyboard(const WaylandSimulateKeyboard&) = delete;
    WaylandSimulateKeyboard& operator=(const WaylandSimulateKeyboard&) = delete;
    // A compositor without another keyboard loses the keyboard focus with this one: the object lives as long as the
    // program.
    ~WaylandSimulateKeyboard() override;

    // Readable when process() has something to do.
    int descriptor() const { return wl_display_get_fd(connection_.display()); }
    // Takes in what the compositor told; false when it has gone and will tell nothing any more. A program that does not
    // listen is disconnected in the end.
    bool process();

    // Whether the compositor lets programs press keys. It can't be asked to.
    bool isTrusted() override;
    bool requestTrust() override { return isTrusted(); }

    // A window that is not of this program has the keyboard. Taken to be so where the compositor does not tell of
    // windows.
    bool reachesOtherProgram() override;

    Window frontWindow() override;

    // What a terminal has selected is the PRIMARY selection, if that has last changed while it was in front.
    Selection selection() override;

    void copy() override;
    void paste() override;

private:
    void attend(const std::function<void()>& work);
    void catchUp();
    void followKeyboard(bool hasKeyboard);
    void takeKeymap(std::uint32_t format, int descriptor, std::uint32_t size);
    void press(const WaylandKeyStroke& stroke);
    bool prepareVirtualKeyboard();
    void key(std::uint32_t code, bool isPressed);

    WaylandConnection connection_;
    bool isLost_ = false;
    WaylandToplevels toplevels_;
    Window selecting_ = Window::nowhere;  // the one that was in front when PRIMARY last changed
    std::optional<WaylandDataDevice> device_;
    wl_seat* seat_ = nullptr;
    wl_keyboard* keyboard_ = nullptr;  // of the seat; tells the keymap
    std::optional<WaylandKeymap> keymap_;
    zwp_virtual_keyboard_manager_v1* manager_;
    zwp_virtual_keyboard_v1* virtualKeyboard_ = nullptr;
    std::string givenKeymap_;  // to the virtual keyboard
};

}  // namespace ovrin
