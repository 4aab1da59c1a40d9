// The one place that knows which session this is: makes the adapters that differ between sessions. Where a session has
// nothing for a seam, what is made tells the user so at the action that needs it; nothing else is lost.
#pragma once

#include <cstdint>
#include <memory>

#include "base/event_loop.h"
#include "base/worker_executor.h"
#include "platform/clipboard_service.h"
#include "platform/desktop_layout.h"
#include "platform/hot_keys.h"
#include "platform/image_decoder.h"
#include "platform/image_encoder.h"
#include "platform/keyboard_layout.h"
#include "platform/linux/wayland/kept_wayland_connection.h"
#include "platform/linux/x11/x11_screenshot.h"
#include "platform/notification_center.h"
#include "platform/screen_capture.h"
#include "platform/synthetic_keyboard.h"
#include "platform/system_shortcuts.h"

class QSocketNotifier;

namespace ovrin {

class DesktopLoader {
public:
    // Asks the compositor of a Wayland session what it offers, through the connection if there is one already, else
    // through one of its own.
    explicit DesktopLoader(std::unique_ptr<WaylandConnection> connection = nullptr);
    ~DesktopLoader();

    // What is handed over outlives what is made, as does the loader.
    std::unique_ptr<ScreenCapture> makeScreenCapture(WorkerExecutor& workers);
    std::unique_ptr<ClipboardService> makeClipboard(const ImageDecoder& decoder, const ImageEncoder& encoder,
                                                    WorkerExecutor& workers) const;
    std::unique_ptr<SimulateKeyboard> makeKeyboard() const;
    std::unique_ptr<DesktopLayout> makeDesktopLayout(WorkerExecutor& workers) const;
    std::unique_ptr<HotKeys> makeHotKeys(EventLoop& mainLoop) const;
    std::unique_ptr<KeyboardLayout> makeKeyboardLayout() const;
    std::unique_ptr<SystemShortcuts> makeSystemShortcuts(const KeyboardLayout& layout) const;
    std::unique_ptr<NotificationCenter> makeNotificationCenter() const;

    // What X11 windows look like on the screen.
    X11Screenshot& screenshot() { return screenshot_; }

private:
    enum class Pictures : std::uint8_t { x11, screencopy, kwin, none };

    bool isWayland_;
    std::unique_ptr<WaylandConnection> connection_;  // of the main thread
    std::unique_ptr<QSocketNotifier> connectionHeard_;
    std::shared_ptr<KeptWaylandConnection> workersConnection_ = std::make_shared<KeptWaylandConnection>();
    Pictures pictures_;
    bool controlsClipboard_ = false;
    bool tellsPointer_ = false;
    X11Screenshot screenshot_;
};

}  // namespace ovrin
