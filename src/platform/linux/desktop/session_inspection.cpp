#include "platform/linux/desktop/session_inspection.h"

#include <array>
#include <cstddef>
#include <fstream>
#include <memory>
#include <optional>
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
#include "platform/linux/desktop/bus_deadline.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/desktop/session_displays.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"
#include "platform/linux/wayland/kwin_screen_capture.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_data_device.h"
#include "platform/linux/wayland/wayland_keys.h"
#include "platform/linux/wayland/wayland_screen_capture.h"
#include "platform/linux/x11/x11_connection.h"
#include "platform/linux/x11/x11_screenshot.h"
#include "platform/linux/x11/xcb_xkb.h"

namespace ovrin {
namespace {

Capability available(const char* name, std::string mechanism) {
    return {.name = name, .isAvailable = true, .detail = std::move(mechanism)};
}

Capability missing(const char* name, std::string reason) {
    return {.name = name, .isAvailable = false, .detail = std::move(reason)};
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
    constexpr std::uint32_t longest = 64;  // units of four bytes
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

bool hasExtension(xcb_connection_t* connection, xcb_extension_t* extension) {
    const xcb_query_extension_reply_t* reply = xcb_get_extension_data(connection, extension);
    return reply != nullptr && reply->present != 0;
}

// The display: what is shown, read and pressed through it.
class DisplayInspection {
public:
    DisplayInspection() {
        const Environment environment = Environment::ofProcess();
        if (hasWaylandDisplay(environment)) {
            try {
                wayland_.emplace();
            } catch (const Error&) {
                return;
            }
        }
        if (!hasX11Display(environment)) return;
        try {
            x11_ = connectToX11(nullptr);
        } catch (const Error&) {
            return;
        }
    }

    void addTo(std::vector<Capability>& found) const {
        found.push_back(session());
        found.push_back(compositor());
        found.push_back(capture());
        found.push_back(byExtension("shortcuts", &xcb_xkb_id, "X11 key grabs", isNative()));
        if (isNative() && WaylandDataDevice::isOfferedBy(*wayland_)) {
            found.push_back(available("clipboard", "data-control"));
            found.push_back(available("selection", "PRIMARY by data-control"));
        } else {
            found.push_back(byExtension("clipboard", &xcb_xfixes_id, "X11 selections", false));
            found.push_back(byExtension("selection", &xcb_xfixes_id, "X11 PRIMARY", isNative()));
        }
        if (isNative() && WaylandDataDevice::isOfferedBy(*wayland_)) {
            const std::string keys = WaylandKeys::mechanism(*wayland_);
            found.push_back(keys.empty() ? missing("replacement", "this desktop lets no program press keys")
                                         : available("replacement", keys));
        } else {
            found.push_back(byExtension("replacement", &xcb_test_id, "X11 XTEST", isNative()));
        }
    }

private:
    bool isNative() const { return wayland_.has_value(); }

    Capability session() const {
        if (isNative()) return available("session", x11_ ? "Wayland, X11 programs included" : "Wayland");
        if (x11_) return available("session", "X11");
        return missing("session", "no display answers");
    }

    Capability compositor() const {
        if (isNative()) return available("compositor", compositorName(*wayland_));
        if (!x11_) return missing("compositor", "no display");
        const std::string name = windowManagerName(x11_.get());
        return name.empty() ? missing("compositor", "no window manager") : available("compositor", name);
    }

    Capability capture() const {
        if (isNative() && WaylandScreenCapture::isOfferedBy(*wayland_)) return available("capture", "screencopy");
        if (isNative() && KWinScreenCapture::isOffered()) return captureByKWin();
        if (isNative()) return missing("capture", "the compositor offers no pictures of the screen");
        if (!x11_) return missing("capture", "no display");
        try {
            X11Screenshot().take({.x = 0, .y = 0, .width = 1, .height = 1});
        } catch (const Error&) {
            return missing("capture", "the display gives no picture of the screen");
        }
        return available("capture", hasExtension(x11_.get(), &xcb_shm_id) ? "X11 shared memory" : "X11");
    }

    // KWin says only when it is asked for a picture whether it gives any.
    static Capability captureByKWin() {
        RunLoop loop;
        WorkerExecutor workers(1);
        KWinScreenCapture capture(workers);
        try {
            const std::vector<CapturableDisplay> displays = loop.complete(capture.displays());
            if (displays.empty()) return missing("capture", "the compositor shows nothing anywhere");
            loop.complete(capture.screenshot({.display = displays.front().id,
                                              .sourceRect = {.x = 0, .y = 0, .width = 1, .height = 1},
                                              .width = 1,
                                              .height = 1}));
        } catch (const Error&) {
            return missing("capture", "KWin gave no picture of the screen, which it does for installed programs only");
        }
        return available("capture", "KWin.ScreenShot2");
    }

    Capability byExtension(const char* name, xcb_extension_t* extension, const char* mechanism, bool isDeaf) const {
        if (!x11_) return missing(name, "no X11 display");
        if (isDeaf) return missing(name, "the desktop lets X11 programs do this only among themselves");
        if (hasExtension(x11_.get(), extension)) return available(name, mechanism);
        return missing(name, "the X11 display lacks the extension for it");
    }

    std::optional<WaylandConnection> wayland_;
    X11Connection x11_{nullptr, xcb_disconnect};
};

using Variant = std::unique_ptr<GVariant, UnreferenceVariant>;

// The services of the session bus.
class BusInspection {
public:
    BusInspection() {
        if (sessionBus(Environment::ofProcess()) == SessionBus::none) return;
        bus_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, BusDeadline(patience).cancellable(), nullptr));
    }

    void addTo(std::vector<Capability>& found) const {
        found.push_back(tray());
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

    Capability tray() const {
        constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
        const Variant reply = call(watcher, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get",
                                   g_variant_new("(ss)", watcher, "IsStatusNotifierHostRegistered"));
        if (!reply) return missing("tray", bus_ ? "no panel keeps a tray" : "no session bus");
        GVariant* inner = nullptr;
        g_variant_get(reply.get(), "(v)", &inner);
        const Variant value(inner);
        const bool isHosted = g_variant_is_of_type(inner, G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(inner);
        return isHosted ? available("tray", "StatusNotifierItem") : missing("tray", "no panel shows the tray");
    }

    Capability notifications() const {
        const Variant reply = call("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                   "org.freedesktop.Notifications", "GetServerInformation", nullptr);
        if (!reply || !g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(ssss)")))
            return missing("notifications", bus_ ? "no notification service answers" : "no session bus");
        const char* name = nullptr;
        g_variant_get_child(reply.get(), 0, "&s", &name);
        return available("notifications", name);
    }

    Capability keyring() const {
        const Variant reply = call("org.freedesktop.secrets", "/org/freedesktop/secrets",
                                   "org.freedesktop.Secret.Service", "ReadAlias", g_variant_new("(s)", "default"));
        if (!reply || !g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(o)")))
            return missing("keyring", "no secret service answers; the API key lies in a private file");
        const char* collection = nullptr;
        g_variant_get_child(reply.get(), 0, "&o", &collection);
        const bool hasDefault = std::string(collection) != "/";
        return hasDefault ? available("keyring", "Secret Service") : missing("keyring", "there is no default keyring");
    }

    std::unique_ptr<GDBusConnection, UnreferenceObject> bus_;
};

Capability speech() {
    const std::unique_ptr<char, decltype(&g_free)> program(g_find_program_in_path("speech-dispatcher"), g_free);
    return program ? available("speech", "Speech Dispatcher") : missing("speech", "speech-dispatcher is not installed");
}

// Whether the font that is chosen for Chinese has a character that only Chinese fonts have.
Capability fonts() {
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
        return missing("fonts", "no font has Chinese characters");
    FcPatternGetString(match.get(), FC_FAMILY, 0, &family);
    return available("fonts", family == nullptr ? "" : reinterpret_cast<const char*>(family));
}

Capability models() {
    constexpr int side = 64;
    try {
        OnnxTextRecognizer(RecognitionFiles::ofThisProgram())
            .perform({}, Image(side, side, std::vector<std::uint8_t>(std::size_t{4} * side * side)), {});
    } catch (const Error&) {
        return missing("models", "the models of text recognition cannot be loaded");
    }
    return available("models", "PP-OCRv6 in ONNX Runtime");
}

}  // namespace

std::vector<Capability> inspectSession() {
    std::vector<Capability> found;
    DisplayInspection().addTo(found);
    BusInspection().addTo(found);
    found.push_back(speech());
    found.push_back(fonts());
    found.push_back(models());
    return found;
}

}  // namespace ovrin
