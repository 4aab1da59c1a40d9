// The settings of a Linux desktop, followed while the program runs: the portal's, else GNOME's, with the window
// toolkit's palette as the last word on dark and light; and whether anything composites the screen.
#pragma once

#include <memory>

#include "base/published.h"
#include "platform/desktop_settings.h"

namespace ovrin {

// Main thread.
class LinuxDesktopSettings {
public:
    // To be made after the QGuiApplication, before which it must go. display: such as ":0"; null for the one the
    // environment names. Never waits for another program: current() is a first guess until the desktop has answered.
    // Nothing wakes the processor while nothing changes. Never throws.
    explicit LinuxDesktopSettings(const char* display = nullptr);
    ~LinuxDesktopSettings();
    LinuxDesktopSettings(const LinuxDesktopSettings&) = delete;
    LinuxDesktopSettings& operator=(const LinuxDesktopSettings&) = delete;

    const Published<DesktopSettings>& current() const { return current_; }

private:
    class Sources;

    Published<DesktopSettings> current_;
    std::unique_ptr<Sources> sources_;
};

}  // namespace ovrin
