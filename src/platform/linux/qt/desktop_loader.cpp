#include "platform/linux/qt/desktop_loader.h"

#include <QSocketNotifier>
#include <string>

#include "base/environment.h"
#include "base/error.h"
#include "platform/linux/desktop/desktop_system_shortcuts.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/desktop/session_displays.h"
#include "platform/linux/qt/freedesktop_notification_center.h"
#include "platform/linux/qt/qt_desktop_layout.h"
#include "platform/linux/qt/wayland_desktop_layout.h"
#include "platform/linux/qt/x11_screen_capture.h"
#include "platform/linux/wayland/kwin_screen_capture.h"
#include "platform/linux/wayland/wayland_clipboard.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"
#include "platform/linux/wayland/wayland_keyboard_layout.h"
#include "platform/linux/wayland/wayland_pointer.h"
#include "platform/linux/wayland/wayland_screen_capture.h"
#include "platform/linux/wayland/wayland_synthetic_keyboard.h"
#include "platform/linux/x11/x11_clipboard.h"
#include "platform/linux/x11/x11_hot_keys.h"
#include "platform/linux/x11/x11_keyboard_layout.h"
#include "platform/linux/x11/x11_synthetic_keyboard.h"
#include "platform/null_adapters.h"
#include "platform/us_keyboard_layout.h"

namespace ovrin {

namespace {

constexpr const char* capturesNowhere = "无法截取屏幕：此桌面不支持。";
constexpr const char* keysBelongToDesktop = "此桌面不支持全局快捷键。";

std::string bindCommand(const HotKey& hotKey) {
    return "请在系统设置中把快捷键绑定到命令“ovrin do " + hotKey.command + "”。";
}

// Without the service, or the extension, that an adapter needs, its null adapter stands in with the reason.
template <typename Seam, typename Make, typename MakeWithout>
std::unique_ptr<Seam> orWithout(const Make& make, const MakeWithout& makeWithout) {
    try {
        return make();
    } catch (const Error& error) {
        return makeWithout(error.errorDescription());
    }
}

}  // namespace

DesktopLoader::DesktopLoader(std::unique_ptr<WaylandConnection> connection)
    : isWayland_(hasWaylandDisplay(Environment::ofProcess())),
      connection_(std::move(connection)),
      pictures_(isWayland_ ? Pictures::none : Pictures::x11) {
    if (!isWayland_) return;
    try {
        if (!connection_) connection_ = std::make_unique<WaylandConnection>();
    } catch (const Error&) {
        return;  // the adapters say what they cannot do there
    }
    // KWin is no global of the compositor: whether it is there, its adapter finds out in time.
    pictures_ = WaylandScreenCapture::isOfferedBy(*connection_) ? Pictures::screencopy : Pictures::kwin;
    tellsPointer_ = WaylandPointer::isOfferedBy(*connection_);
    controlsClipboard_ = WaylandDataDevice::isOfferedBy(*connection_);
    connectionHeard_ = std::make_unique<QSocketNotifier>(connection_->descriptor(), QSocketNotifier::Read);
    QObject::connect(connectionHeard_.get(), &QSocketNotifier::activated, connectionHeard_.get(),
                     [this] { connectionHeard_->setEnabled(connection_->process()); });
}

DesktopLoader::~DesktopLoader() = default;

std::unique_ptr<ScreenCapture> DesktopLoader::makeScreenCapture(WorkerExecutor& workers) {
    switch (pictures_) {
        case Pictures::x11:
            return std::make_unique<X11ScreenCapture>(screenshot_, workers);
        case Pictures::screencopy:
            return std::make_unique<WaylandScreenCapture>(workers, workersConnection_);
        case Pictures::kwin:
            return std::make_unique<KWinScreenCapture>(workers, workersConnection_);
        case Pictures::none:
            break;
    }
    return std::make_unique<NullScreenCapture>(capturesNowhere);
}

std::unique_ptr<ClipboardService> DesktopLoader::makeClipboard(const ImageDecoder& decoder, const ImageEncoder& encoder,
                                                               WorkerExecutor& workers) const {
    return orWithout<ClipboardService>(
        [&]() -> std::unique_ptr<ClipboardService> {
            if (controlsClipboard_) return std::make_unique<WaylandClipboard>(nullptr, decoder, encoder, workers);
            return std::make_unique<X11Clipboard>(nullptr, decoder, encoder, workers);
        },
        [](const std::string& reason) { return std::make_unique<NullClipboard>(reason); });
}

std::unique_ptr<SimulateKeyboard> DesktopLoader::makeKeyboard() const {
    return orWithout<SimulateKeyboard>(
        [this]() -> std::unique_ptr<SimulateKeyboard> {
            if (controlsClipboard_) return std::make_unique<WaylandSimulateKeyboard>(*connection_);
            using enum X11SimulateKeyboard::Reach;
            return std::make_unique<X11SimulateKeyboard>(nullptr, isWayland_ ? x11Programs : everyProgram);
        },
        [](const std::string& /*reason*/) { return std::make_unique<NullSimulateKeyboard>(); });
}

std::unique_ptr<DesktopLayout> DesktopLoader::makeDesktopLayout(WorkerExecutor& workers) const {
    if (tellsPointer_) return std::make_unique<WaylandDesktopLayout>(workers, workersConnection_);
    return std::make_unique<QtDesktopLayout>();
}

// XWayland takes key grabs too, but hears of keys only while one of its own windows has the keyboard.
std::unique_ptr<HotKeys> DesktopLoader::makeHotKeys(EventLoop& mainLoop) const {
    if (isWayland_) return std::make_unique<NullHotKeys>(keysBelongToDesktop, bindCommand);
    return orWithout<HotKeys>(
        [&] { return std::make_unique<X11HotKeys>(mainLoop, nullptr); },
        [](const std::string& reason) { return std::make_unique<NullHotKeys>(reason, bindCommand); });
}

std::unique_ptr<KeyboardLayout> DesktopLoader::makeKeyboardLayout() const {
    return orWithout<KeyboardLayout>(
        [this]() -> std::unique_ptr<KeyboardLayout> {
            if (!isWayland_) return std::make_unique<X11KeyboardLayout>(nullptr);
            if (!connection_) return std::make_unique<USKeyboardLayout>();
            return std::make_unique<WaylandKeyboardLayout>(*connection_);
        },
        [](const std::string& /*reason*/) { return std::make_unique<USKeyboardLayout>(); });
}

std::unique_ptr<SystemShortcuts> DesktopLoader::makeSystemShortcuts(const KeyboardLayout& layout) const {
    return makeDesktopSystemShortcuts(Environment::ofProcess(), layout);
}

std::unique_ptr<NotificationCenter> DesktopLoader::makeNotificationCenter() const {
    if (sessionBus(Environment::ofProcess()) == SessionBus::none) return std::make_unique<NullNotificationCenter>();
    return std::make_unique<FreedesktopNotificationCenter>();
}

}  // namespace ovrin
