// The assistant on a private desktop: the built program with preferences of one's own.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "desktop/private_desktop.h"
#include "desktop/test_user.h"

namespace ovrin {

class Assistant {
public:
    struct Setup {
        std::string program;     // path of ovrin
        std::string serviceURL;  // its environment tells of the model service there; empty: of none
        std::string standard = "openai-compatible";
        // What the preferences file holds at the start, by stored keys, besides the one that says that the welcome was
        // seen.
        json::Value preferences = json::Value::object();
        enum class Launch : std::uint8_t { first, later } launch = Launch::later;
        std::vector<std::string> environment{};  // on top of the desktop's and what names the service
        // By what it is seen to have come up: its icon in the tray, its name on the bus.
        enum class Sign : std::uint8_t { both, icon, name } sign = Sign::both;
    };

    // Returns when it has come up: with its icon in the tray it listens to its shortcuts. Throws Error with what
    // it said when it ends before.
    Assistant(const PrivateDesktop& desktop, const TestUser& user, const Setup& setup);

    // For the preference of a shortcut: its place on a US keyboard ('T') with Super, Shift and Alt.
    enum class Modifier : int { super = 256, shift = 512, alt = 2048 };
    static std::string shortcut(int keyCode, const std::vector<Modifier>& modifiers);

    ChildProcess& process() { return *process_; }
    // Ends it and starts it again, with what it has stored.
    void restart();
    // Runs the program with other arguments in the same place: "do", "palette". Returns its exit status.
    int run(const std::vector<std::string>& arguments) const;

    // Where its icon is in an XEmbed tray.
    std::optional<DesktopWindow> trayIcon() const;
    DesktopWindow waitForTrayIcon() const;  // drawn, in its final place

    // Its windows, once they are there.
    std::vector<DesktopWindow> overlays() const;  // empty when no region is being selected
    std::vector<DesktopWindow> waitForOverlays(std::size_t count = 1) const;
    std::optional<DesktopWindow> toast() const;  // while one is shown
    DesktopWindow waitForToast() const;
    std::optional<DesktopWindow> panel() const;  // the result panel, while it is shown
    DesktopWindow waitForPanel() const;
    DesktopWindow waitForPalette() const;
    DesktopWindow waitForMenu() const;  // any that it pops up

    // The stored preferences, and the history, newest first.
    json::Value preferences() const;
    json::Value history() const;
    // What it wrote to standard error.
    std::string log() const;

private:
    void start();
    std::vector<std::string> environment() const;
    bool isInTray() const;

    const PrivateDesktop& desktop_;
    const TestUser& user_;
    Setup setup_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace ovrin
