// The one place that knows which session this is: makes the adapters that differ between sessions.
#pragma once

#include <cstdint>
#include <memory>

#include "base/worker_executor.h"
#include "platform/clipboard_service.h"
#include "platform/image_decoder.h"
#include "platform/image_encoder.h"
#include "platform/screen_capture.h"
#include "platform/synthetic_keyboard.h"

namespace ovrin {

class X11Screenshot;

class DesktopLoader {
public:
    // Asks the compositor of a Wayland session what it offers to programs without a window. Windows come through
    // XWayland there; pictures of the screen and the clipboard don't.
    DesktopLoader();

    // What is handed over outlives what is made.
    std::unique_ptr<ScreenCapture> makeScreenCapture(X11Screenshot& screenshot, WorkerExecutor& workers) const;
    // Throws Error when there is no display.
    std::unique_ptr<ClipboardService> makeClipboard(const ImageDecoder& decoder, const ImageEncoder& encoder,
                                                    WorkerExecutor& workers) const;
    std::unique_ptr<SimulateKeyboard> makeKeyboard() const;

private:
    enum class Pictures : std::uint8_t { x11, screencopy, kwin };

    Pictures pictures_ = Pictures::x11;
    bool controlsClipboard_ = false;
    bool pressesKeys_ = false;
};

}  // namespace ovrin
