// A private Wayland compositor without a screen: sway, drawing into memory, without XWayland and without a session bus.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "fakes/child_process.h"
#include "fakes/temporary_directory.h"

namespace ovrin {

// A display, in the order called HEADLESS-1, HEADLESS-2 and so on.
struct HeadlessOutput {
    int width = 1280;  // pixels, before it is turned
    int height = 720;
    double scale = 1;                  // pixels per point
    std::string transform = "normal";  // or "90", "180", "270" (degrees clockwise), "flipped", "flipped-90", ...
    int x = 0;                         // points of the layout
    int y = 0;
};

class WaylandTestCompositor {
public:
    // Where the compositor is not installed and nobody demands that every test is run, as CI does. There it is a
    // failure.
    static bool mayBeSkipped();
    static bool isEveryTestDemanded();

    // Returns when it takes connections. The outputs must not overlap. Throws Error when it cannot be started.
    explicit WaylandTestCompositor(const std::vector<HeadlessOutput>& outputs = {HeadlessOutput()});

    // The path of its socket, as a value of WAYLAND_DISPLAY and for wl_display_connect().
    std::string display() const { return socket_.string(); }
    // XDG_RUNTIME_DIR for its programs. It belongs to the user that the compositor runs as.
    const std::filesystem::path& runtimeFolder() const { return folder_.path(); }

    // Where it takes commands of its own (swaymsg).
    const std::filesystem::path& controlSocket() const { return controlSocket_; }

    // As if it had crashed.
    void stop() { compositor_->stop(); }
    // As if it had crashed and come up again. Returns when it takes connections, at the same socket.
    void restart();
    // As if it hung: it answers nobody from now on.
    void freeze() const;
    void thaw() const;

private:
    TemporaryDirectory folder_;
    const ChildProcess::Setup setup_;
    std::unique_ptr<ChildProcess> compositor_;
    std::filesystem::path socket_;
    std::filesystem::path controlSocket_;
};

}  // namespace ovrin
