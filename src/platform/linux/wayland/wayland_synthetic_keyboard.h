// Presses Control+C and Shift+Insert in the program in front, where the compositor lets it. In terminals, where
// Control+C interrupts what runs and nothing that is selected can be replaced, it presses nothing.
//
// Shift+Insert pastes the clipboard in every toolkit's fields, like Control+V, and does no harm elsewhere; a few
// programs paste what is selected with it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"
#include "platform/linux/wayland/wayland_keymap.h"
#include "platform/linux/wayland/wayland_keys.h"
#include "platform/linux/wayland/wayland_seat_keyboard.h"
#include "platform/linux/wayland/wayland_toplevels.h"
#include "platform/synthetic_keyboard.h"

namespace ovrin {

class WaylandSimulateKeyboard final : public SimulateKeyboard {
public:
    // Hears of windows and keymaps when the connection's events are processed. The object lives as long as the
    // program: a compositor without another keyboard loses the keyboard focus with a virtual one. Throws Error when no
    // compositor answers, or it does not tell what is selected.
    explicit WaylandSimulateKeyboard(WaylandConnection& connection);
    WaylandSimulateKeyboard(const WaylandSimulateKeyboard&) = delete;
    WaylandSimulateKeyboard& operator=(const WaylandSimulateKeyboard&) = delete;

    // Whether the compositor lets programs press keys. It cannot be asked for that.
    bool isTrusted() override;
    Task<bool> requestTrust() override { co_return isTrusted(); }

    // A window that is not of this program has the keyboard. Taken to be so where the compositor does not tell of
    // windows.
    bool reachesOtherProgram() override;

    Window frontWindow() override;

    // PRIMARY counts if it has changed since the window got the keyboard; in a terminal if it has last changed while
    // that was in front; where no keys can be pressed always. What this program has put there never does.
    Selection selection() override;

    void copy() override;
    void paste() override;
    void letGo() override;

private:
    void attend(const std::function<void()>& work) const;
    void catchUp();
    const WaylandToplevel* front() const;
    void setKeymap(std::optional<WaylandKeymap> keymap);
    void noteSelection();
    void press(const WaylandKeyStroke& stroke);

    WaylandConnection& connection_;
    std::unique_ptr<WaylandToplevels> toplevels_;  // null where the compositor does not tell of them
    // When PRIMARY last changed by somebody else: the window that was in front, since this activation.
    Window selecting_ = Window::nowhere;
    std::uint64_t selectingSince_ = 0;
    std::optional<WaylandDataDevice> device_;
    std::optional<WaylandKeymap> keymap_;
    std::optional<WaylandSeatKeyboard> keyboard_;
    std::unique_ptr<WaylandKeys> keys_;  // null where none can be pressed
};

}  // namespace ovrin
