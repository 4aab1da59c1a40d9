#include "platform/linux/qt/desktop_loader.h"

#include <QSocketNotifier>

#include "base/environment.h"
#include "base/error.h"
#include "platform/linux/qt/x11_screen_capture.h"
#include "platform/linux/wayland/kwin_screen_capture.h"
#include "platform/linux/wayland/wayland_clipboard.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"
#include "platform/linux/wayland/wayland_screen_capture.h"
#include "platform/linux/wayland/wayland_synthetic_keyboard.h"
#include "platform/linux/x11/x11_clipboard.h"
#include "platform/linux/x11/x11_synthetic_keyboard.h"

namespace ovrin {

namespace {

// Takes in what the compositor tells from the main loop.
class HeardKeyboard final : public SimulateKeyboard {
public:
    HeardKeyboard() {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                         [this] { notifier_.setEnabled(keyboard_.process()); });
    }

    bool isTrusted() override { return keyboard_.isTrusted(); }
    bool requestTrust() override { return keyboard_.requestTrust(); }
    bool reachesOtherProgram() override { return keyboard_.reachesOtherProgram(); }
    Window frontWindow() override { return keyboard_.frontWindow(); }
    Selection selection() override { return keyboard_.selection(); }
    void copy() override { keyboard_.copy(); }
    void paste() override { keyboard_.paste(); }

private:
    WaylandSimulateKeyboard keyboard_{nullptr};
    QSocketNotifier notifier_{keyboard_.descriptor(), QSocketNotifier::Read};
};

}  // namespace

DesktopLoader::DesktopLoader() {
    if (!Environment::ofProcess().value("WAYLAND_DISPLAY")) return;
    try {
        const WaylandConnection connection;
        if (WaylandScreenCapture::isOfferedBy(connection)) {
            pictures_ = Pictures::screencopy;
        } else if (KWinScreenCapture::isOffered()) {
            pictures_ = Pictures::kwin;
        }
        controlsClipboard_ = WaylandDataDevice::isOfferedBy(connection);
        pressesKeys_ = WaylandSimulateKeyboard::isOfferedBy(connection);
    } catch (const Error&) {
        return;  // the X11 adapters say what they cannot do there
    }
}

std::unique_ptr<ScreenCapture> DesktopLoader::makeScreenCapture(X11Screenshot& screenshot,
                                                                WorkerExecutor& workers) const {
    if (pictures_ == Pictures::screencopy) return std::make_unique<WaylandScreenCapture>(workers);
    if (pictures_ == Pictures::kwin) return std::make_unique<KWinScreenCapture>(workers);
    return std::make_unique<X11ScreenCapture>(screenshot, workers);
}

std::unique_ptr<SimulateKeyboard> DesktopLoader::makeKeyboard() const {
    if (pressesKeys_) return std::make_unique<HeardKeyboard>();
    return std::make_unique<X11SimulateKeyboard>(nullptr);
}

std::unique_ptr<ClipboardService> DesktopLoader::makeClipboard(const ImageDecoder& decoder, const ImageEncoder& encoder,
                                                               WorkerExecutor& workers) const {
    if (controlsClipboard_) return std::make_unique<WaylandClipboard>(nullptr, decoder, encoder, workers);
    return std::make_unique<X11Clipboard>(nullptr, decoder, encoder, workers);
}

}  // namespace ovrin
