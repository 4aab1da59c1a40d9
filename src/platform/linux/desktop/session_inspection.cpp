#include "platform/linux/desktop/session_inspection.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include <fontconfig/fontconfig.h>
#include <gio/gio.h>
#include <sys/socket.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

#include "base/environment.h"
#include "base/error.h"
#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "platform/linux/desktop/bus_connection.h"
#include "platform/linux/desktop/session_displays.h"
#include "platform/linux/desktop/speech_service.h"
#include "platform/linux/wayland/kwin_screen_capture.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"
#include "platform/linux/wayland/wayland_keys.h"
#include "platform/linux/wayland/wayland_screen_capture.h"
#include "platform/linux/x11/x11_connection.h"
#include "platform/linux/x11/x11_screenshot.h"
#include "platform/linux/x11/x11_selection_owners.h"
#include "platform/linux/x11/xcb_xkb.h"
#include "platform/text_recognizer.h"
#include "wlr-layer-shell-unstable-v1-client.h"
#include "xdg-activation-v1-client.h"

namespace ovrin {
namespace {

struct Name {
    const char* name;
    const char* title;
};

// Why something is missing.
struct Lack {
    const char* detail;
    const char* note;
};

constexpr Lack noDisplay{"no display", "没有可用的显示服务器"};
constexpr Lack noBus{"no session bus", "没有会话总线"};
constexpr Lack noX11{"the compositor does not offer it, and there is no XWayland", "此桌面不支持，也没有 XWayland"};

Capability available(const Name& name, const std::string& detail, const std::string& note) {
    return {.name = name.name, .title = name.title, .isAvailable = true, .detail = detail, .note = note};
}

// The mechanism has one name in all languages.
Capability available(const Name& name, const std::string& mechanism) {
    return available(name, mechanism, mechanism);
}

Capability missing(const Name& name, const Lack& lack) {
    return {.name = name.name, .title = name.title, .isAvailable = false, .detail = lack.detail, .note = lack.note};
}

// The name of the program at the other end of the compositor's socket.
std::string compositorName(const WaylandConnection& connection) {
    ucred peer{};
    socklen_t size = sizeof(peer);
    std::string name;
    if (getsockopt(wl_display_get_fd(connection.display()), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0)
        std::getline(std::ifstream("/proc/" + std::to_string(peer.pid) + "/comm"), name);
    return name.empty() ? "Wayland compositor" : name;
}

X11Reply<xcb_get_property_reply_t> property(xcb_connection_t* connection, xcb_window_t window, const char* name) {
    constexpr std::uint32_t longest = 1024;  // units of four bytes
    return X11Reply<xcb_get_property_reply_t>(xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, window, atomNamed(connection, name), XCB_GET_PROPERTY_TYPE_ANY, 0, longest),
        nullptr));
}

std::string propertyText(const X11Reply<xcb_get_property_reply_t>& reply) {
    if (!reply || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

// Window managers say who they are through a window of their own.
std::string windowManagerName(xcb_connection_t* connection) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto check = property(connection, root, "_NET_SUPPORTING_WM_CHECK");
    if (!check || xcb_get_property_value_length(check.get()) < static_cast<int>(sizeof(xcb_window_t))) return {};
    const auto window = *static_cast<const xcb_window_t*>(xcb_get_property_value(check.get()));
    return propertyText(property(connection, window, "_NET_WM_NAME"));
}

// Whether it takes a hint of the name.
bool windowManagerKnows(xcb_connection_t* connection, const char* name) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto supported = property(connection, root, "_NET_SUPPORTED");
    if (!supported || supported->format != 32) return false;
    const std::span atoms(
        static_cast<const xcb_atom_t*>(xcb_get_property_value(supported.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(supported.get())) / sizeof(xcb_atom_t));
    return std::ranges::find(atoms, atomNamed(connection, name)) != atoms.end();
}

bool hasExtension(xcb_connection_t* connection, xcb_extension_t* extension) {
    const xcb_query_extension_reply_t* reply = xcb_get_extension_data(connection, extension);
    return reply != nullptr && reply->present != 0;
}

// The display: what is shown, read and pressed through it.
class DisplayInspection {
public:
    explicit DisplayInspection(WindowPath windows)
        : isWayland_(hasWaylandDisplay(environment_)), hasNativeWindows_(windows == WindowPath::native) {
        try {
            if (isWayland_) wayland_.emplace();
        } catch (const Error&) {
            return;  // neither does it answer the programs of XWayland
        }
        try {
            if (hasX11Display(environment_)) x11_ = connectToX11(nullptr);
        } catch (const Error&) {
            return;
        }
    }

    void addTo(std::vector<Capability>& found) const {
        found.insert(found.end(),
                     {session(), compositor(), capture(), shortcuts(), clipboard(), selection(), replacement(),
                      window({"card", "译文卡片"}), window({"toast", "提示"}), palette(), staysOnTop(), activation()});
    }

    // Whether a panel on X11 takes the tray's icon in as a window.
    bool embedsTrayIcon() const {
        if (!x11_ || hasNativeWindows_) return false;
        constexpr const char* panel = X11SelectionOwners::statusArea;
        try {
            return X11SelectionOwners(nullptr, {panel}).hasOwner(panel);
        } catch (const Error&) {
            return false;
        }
    }

private:
    Capability session() const {
        constexpr Name name{"session", "会话"};
        if (wayland_ && x11_) return available(name, "Wayland, X11 programs included", "Wayland，包括 X11 程序");
        if (wayland_) return available(name, "Wayland");
        if (x11_) return available(name, "X11");
        return missing(name, {"no display answers", "没有可用的显示服务器"});
    }

    Capability compositor() const {
        constexpr Name name{"compositor", "窗口管理"};
        if (wayland_) return available(name, compositorName(*wayland_));
        if (!x11_) return missing(name, noDisplay);
        const std::string manager = windowManagerName(x11_.get());
        return manager.empty() ? missing(name, {"no window manager", "没有窗口管理器"}) : available(name, manager);
    }

    Capability capture() const {
        if (wayland_ && !hasNativeWindows_ && !x11_)
            return missing(captureName,
                           {"the assistant has no windows here: it needs layer-shell and data-control, or XWayland",
                            "无法显示窗口：需要 layer-shell 和 data-control，或 XWayland"});
        if (wayland_ && WaylandScreenCapture::isOfferedBy(*wayland_)) return available(captureName, "screencopy");
        if (wayland_ && KWinScreenCapture::isOffered()) return captureByKWin();
        if (wayland_)
            return missing(captureName, {"the compositor offers no pictures of the screen", "此桌面不支持截图"});
        if (!x11_) return missing(captureName, noDisplay);
        try {
            X11Screenshot().take({.x = 0, .y = 0, .width = 1, .height = 1});
        } catch (const Error&) {
            return missing(captureName, {"the display gives no picture of the screen", "显示服务器没有返回图像"});
        }
        return available(captureName, hasExtension(x11_.get(), &xcb_shm_id) ? "X11 shared memory" : "X11");
    }

    // KWin says only when it is asked for a picture whether it gives any.
    static Capability captureByKWin() {
        RunLoop loop;
        WorkerExecutor workers(1);
        KWinScreenCapture capture(workers);
        try {
            const std::vector<CapturableDisplay> displays = loop.complete(capture.displays());
            if (displays.empty())
                return missing(captureName, {"the compositor shows nothing anywhere", "没有可用的显示器"});
            loop.complete(capture.screenshot({.display = displays.front().id,
                                              .sourceRect = {.x = 0, .y = 0, .width = 1, .height = 1},
                                              .width = 1,
                                              .height = 1}));
        } catch (const Error&) {
            return missing(captureName,
                           {"KWin gave no picture of the screen, which it does for installed programs only",
                            "KDE 只允许已安装的程序截图，请先安装 Ovrin"});
        }
        return available(captureName, "KWin.ScreenShot2");
    }

    Capability shortcuts() const {
        constexpr Name name{"shortcuts", "全局快捷键"};
        if (isWayland_)
            return missing(name, {"the desktop keeps keys to itself; bind one to 'ovrin do ACTION' in its settings",
                                  "此桌面不支持，请在系统设置中把快捷键绑定到“ovrin do capture-ocr”等命令"});
        return byExtension(name, &xcb_xkb_id, "X11 key grabs");
    }

    Capability clipboard() const {
        constexpr Name name{"clipboard", "剪贴板"};
        if (wayland_ && WaylandDataDevice::isOfferedBy(*wayland_)) return available(name, "data-control");
        return byExtension(name, &xcb_xfixes_id, "X11 selections");
    }

    Capability selection() const {
        constexpr Name name{"selection", "读取选中的文字"};
        if (wayland_ && WaylandDataDevice::isOfferedBy(*wayland_)) return available(name, "PRIMARY by data-control");
        if (isWayland_ && !x11_)
            return missing(name, {"the desktop shows programs what is selected only while they have the keyboard",
                                  "此桌面不支持读取其他程序中选中的文字"});
        return byExtension(name, &xcb_xfixes_id, isWayland_ ? "PRIMARY through XWayland" : "X11 PRIMARY");
    }

    Capability replacement() const {
        constexpr Name name{"replacement", "替换选中的文字"};
        const std::string keys = wayland_ ? WaylandKeys::mechanism(*wayland_) : "";
        if (!keys.empty()) return available(name, keys);
        if (isWayland_)
            return missing(name, {"the desktop lets programs press no keys; the text is put on the clipboard",
                                  "此桌面不支持模拟按键，译文将复制到剪贴板"});
        return byExtension(name, &xcb_test_id, "X11 XTEST");
    }

    std::uint32_t layers() const {
        return wayland_ && hasNativeWindows_ ? wayland_->versionOf(zwlr_layer_shell_v1_interface) : 0;
    }

    // Of those that other windows never cover, at a place of the program's choice.
    Capability window(const Name& name) const {
        if (layers() > 0) return available(name, "layer-shell");
        if (x11_) return available(name, isWayland_ ? "XWayland" : "X11");
        return missing(name, isWayland_ ? Lack{"the compositor lets programs place no window", "此桌面不支持浮动窗口"}
                                        : noDisplay);
    }

    // What it takes for the palette to have the keyboard and still let it go.
    Capability palette() const {
        constexpr Name name{"palette", "命令面板"};
        constexpr std::uint32_t onDemand = 4;
        if (layers() >= onDemand)
            return available(name, "layer-shell, keyboard on demand", "layer-shell，按需使用键盘");
        if (layers() > 0)
            return available(name, "layer-shell, keyboard of its own while it is open", "layer-shell，打开时独占键盘");
        return window(name);
    }

    Capability staysOnTop() const {
        constexpr Name name{"stays-on-top", "窗口置顶"};
        if (hasNativeWindows_)
            return missing(
                name, {"the compositor lets no program keep its window above others", "此桌面不支持程序自行置顶窗口"});
        return byHint(name, "_NET_WM_STATE_ABOVE");
    }

    Capability activation() const {
        constexpr Name name{"activation", "窗口置前"};
        if (hasNativeWindows_ && wayland_ && wayland_->versionOf(xdg_activation_v1_interface) > 0)
            return available(name, "xdg-activation");
        if (hasNativeWindows_) return missing(name, {"the compositor knows no xdg-activation", "此桌面不支持"});
        return byHint(name, "_NET_ACTIVE_WINDOW");
    }

    Capability byHint(const Name& name, const char* hint) const {
        if (!x11_) return missing(name, wayland_ ? noX11 : noDisplay);
        if (windowManagerKnows(x11_.get(), hint)) return available(name, hint);
        return missing(name, {"no window manager that knows it", "没有支持它的窗口管理器"});
    }

    Capability byExtension(const Name& name, xcb_extension_t* extension, const char* mechanism) const {
        if (!x11_) return missing(name, wayland_ ? noX11 : noDisplay);
        if (hasExtension(x11_.get(), extension)) return available(name, mechanism);
        return missing(name, {"the X11 display lacks the extension for it", "显示服务器缺少所需的扩展"});
    }

    static constexpr Name captureName{"capture", "截图"};

    Environment environment_ = Environment::ofProcess();
    bool isWayland_;
    bool hasNativeWindows_;
    std::optional<WaylandConnection> wayland_;
    X11Connection x11_{nullptr, xcb_disconnect};
};

using Variant = std::unique_ptr<GVariant, UnreferenceVariant>;

// The services of the session bus.
class BusInspection {
public:
    BusInspection() : bus_(connectToSessionBus(BusDeadline(patience).cancellable())) {}

    void addTo(std::vector<Capability>& found, bool embedsTrayIcon) const {
        found.push_back(tray(embedsTrayIcon));
        found.push_back(notifications());
        found.push_back(keyring());
    }

private:
    static constexpr std::chrono::milliseconds patience{2000};  // with one answer

    Variant call(const char* service, const char* path, const char* interface, const char* method,
                 GVariant* parameters) const {
        if (!bus_) {
            if (parameters != nullptr) g_variant_unref(g_variant_ref_sink(parameters));
            return nullptr;
        }
        return Variant(g_dbus_connection_call_sync(bus_.get(), service, path, interface, method, parameters, nullptr,
                                                   G_DBUS_CALL_FLAGS_NONE, static_cast<int>(patience.count()), nullptr,
                                                   nullptr));
    }

    Capability tray(bool embedsIcon) const {
        constexpr Name name{"tray", "系统托盘"};
        const Capability byBus = trayOnBus(name);
        return embedsIcon && !byBus.isAvailable ? available(name, "XEmbed") : byBus;
    }

    Capability trayOnBus(const Name& name) const {
        constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
        const Variant reply = call(watcher, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get",
                                   g_variant_new("(ss)", watcher, "IsStatusNotifierHostRegistered"));
        if (!reply) return missing(name, bus_ ? Lack{"no panel keeps a tray", "当前桌面没有系统托盘"} : noBus);
        GVariant* inner = nullptr;
        g_variant_get(reply.get(), "(v)", &inner);
        const Variant value(inner);
        const bool isHosted = g_variant_is_of_type(inner, G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(inner);
        return isHosted ? available(name, "StatusNotifierItem")
                        : missing(name, {"no panel shows the tray", "当前桌面没有系统托盘"});
    }

    Capability notifications() const {
        constexpr Name name{"notifications", "通知"};
        const Variant reply = call("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                   "org.freedesktop.Notifications", "GetServerInformation", nullptr);
        if (!reply || !g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(ssss)")))
            return missing(name, bus_ ? Lack{"no notification service answers", "没有通知服务"} : noBus);
        const char* service = nullptr;
        g_variant_get_child(reply.get(), 0, "&s", &service);
        return available(name, service);
    }

    Capability keyring() const {
        constexpr Name name{"keyring", "密钥环"};
        const Variant reply = call("org.freedesktop.secrets", "/org/freedesktop/secrets",
                                   "org.freedesktop.Secret.Service", "ReadAlias", g_variant_new("(s)", "default"));
        if (!reply || !g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(o)")))
            return missing(name, {"no secret service answers; the API key lies in a private file",
                                  "密钥环不可用，密钥保存在仅您可读的文件中"});
        const char* collection = nullptr;
        g_variant_get_child(reply.get(), 0, "&o", &collection);
        const bool hasDefault = std::string(collection) != "/";
        return hasDefault ? available(name, "Secret Service")
                          : missing(name, {"there is none yet; the first key that is saved has one made",
                                           "尚未创建密钥环，首次保存密钥时会请您创建"});
    }

    BusConnection bus_;
};

Capability speech() {
    constexpr Name name{"speech", "朗读"};
    return SpeechService::isInstalled()
               ? available(name, "Speech Dispatcher")
               : missing(name, {"speech-dispatcher is not installed", "没有安装 speech-dispatcher"});
}

// Whether the font that is chosen for Chinese has a character that only Chinese fonts have.
Capability fonts() {
    constexpr Name name{"fonts", "中文字体"};
    constexpr FcChar32 character = U'译';
    const std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)> wanted(
        FcNameParse(reinterpret_cast<const FcChar8*>("sans-serif:lang=zh-cn")), FcPatternDestroy);
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)> match(FcFontMatch(nullptr, wanted.get(), &result),
                                                                        FcPatternDestroy);
    FcCharSet* characters = nullptr;
    FcChar8* family = nullptr;
    if (!match || FcPatternGetCharSet(match.get(), FC_CHARSET, 0, &characters) != FcResultMatch ||
        FcCharSetHasChar(characters, character) == FcFalse)
        return missing(name, {"no font has Chinese characters", "没有安装中文字体"});
    FcPatternGetString(match.get(), FC_FAMILY, 0, &family);
    return available(name, family == nullptr ? "" : reinterpret_cast<const char*>(family));
}

void throwIfStopped(const std::stop_token& stop) {
    if (stop.stop_requested()) throw CancellationError();
}

Capability models(TextRecognizer& recognizer, const std::stop_token& stop) {
    constexpr Name name{"models", "文字识别"};
    constexpr int side = 64;
    try {
        recognizer.perform({}, Image(side, side, std::vector<std::uint8_t>(std::size_t{4} * side * side)), stop);
    } catch (const Error&) {
        return missing(name, {"the models of text recognition cannot be loaded", "文字识别模型无法加载"});
    }
    return available(name, "PP-OCRv6 in ONNX Runtime");
}

}  // namespace

std::vector<Capability> inspectSession(WindowPath windows, TextRecognizer& recognizer, const std::stop_token& stop) {
    std::vector<Capability> found;
    const DisplayInspection display(windows);
    display.addTo(found);
    throwIfStopped(stop);
    BusInspection().addTo(found, display.embedsTrayIcon());
    throwIfStopped(stop);
    found.push_back(speech());
    found.push_back(fonts());
    found.push_back(models(recognizer, stop));
    return found;
}

}  // namespace ovrin
