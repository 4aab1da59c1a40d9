#include "platform/linux/wayland/kwin_screen_capture.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gio/gio.h>
#include <gio/gunixfdlist.h>
#include <poll.h>
#include <unistd.h>

#include "base/error.h"
#include "platform/linux/desktop/bus_connection.h"
#include "platform/linux/wayland/raw_picture.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_displays.h"

namespace ovrin {
namespace {

using Clock = std::chrono::steady_clock;
using Variant = std::unique_ptr<GVariant, UnreferenceVariant>;

constexpr const char* service = "org.kde.KWin";
constexpr std::chrono::milliseconds patience{2000};  // with the call, and then with the pixels

[[noreturn]] void fail(const char* reason) {
    throw Error(std::string("无法截取屏幕：") + reason);
}

// KWin writes the pixels into one end and closes it.
class Pipe {
public:
    Pipe() {
        if (::pipe2(ends_.data(), O_CLOEXEC) != 0) fail("打开的文件过多。");
        // The most that every user may have: larger pieces wake the two programs less often.
        constexpr int capacity = 1 << 20;
        ::fcntl(ends_[1], F_SETPIPE_SZ, capacity);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        closeWriting();
        ::close(ends_[0]);
    }

    int writing() const { return ends_[1]; }
    void closeWriting() {
        if (ends_[1] >= 0) ::close(ends_[1]);
        ends_[1] = -1;
    }

    // Fewer than `size` bytes where the writer has closed its end before.
    std::vector<std::uint8_t> read(std::size_t size) const {
        const auto deadline = Clock::now() + patience;
        std::vector<std::uint8_t> bytes(size);
        std::size_t count = 0;
        while (count < size) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            pollfd end{.fd = ends_[0], .events = POLLIN, .revents = 0};
            if (left.count() <= 0 || ::poll(&end, 1, static_cast<int>(left.count())) == 0) fail("桌面没有应答。");
            const ssize_t read = ::read(ends_[0], bytes.data() + count, size - count);
            if (read <= 0) break;
            count += static_cast<std::size_t>(read);
        }
        bytes.resize(count);
        return bytes;
    }

private:
    std::array<int, 2> ends_{-1, -1};
};

// KWin looks up who has the name that calls.
BusConnection connectToBus(GCancellable* deadline) {
    BusConnection bus = connectToSessionBus(deadline);
    if (!bus) fail("会话总线没有应答。");
    return bus;
}

[[noreturn]] void failWith(const GError* error) {
    const std::unique_ptr<char, decltype(&g_free)> name(g_dbus_error_get_remote_error(error), g_free);
    const std::string remote = name ? name.get() : "";
    if (remote == "org.kde.KWin.ScreenShot2.Error.NoAuthorized") fail("KDE 只允许已安装的程序截图，请先安装 Ovrin。");
    fail(remote.empty() ? "桌面没有应答。" : "桌面没有返回图像。");
}

// What the picture is like; its pixels are on the way through the pipe then.
RawPicture requestPicture(const Rect<LayoutPoints>& area, const Pipe& pipe) {
    const BusDeadline deadline(patience);
    const BusConnection bus = connectToBus(deadline.cancellable());
    const std::unique_ptr<GUnixFDList, UnreferenceObject> descriptors(g_unix_fd_list_new());
    const int index = g_unix_fd_list_append(descriptors.get(), pipe.writing(), nullptr);
    if (index < 0) fail("打开的文件过多。");
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&options, "{sv}", "native-resolution", g_variant_new_boolean(TRUE));
    GError* error = nullptr;
    const Variant reply(g_dbus_connection_call_with_unix_fd_list_sync(
        bus.get(), service, "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2", "CaptureArea",
        g_variant_new("(iiuua{sv}h)", area.x, area.y, static_cast<guint32>(area.width),
                      static_cast<guint32>(area.height), &options, index),
        G_VARIANT_TYPE("(a{sv})"), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, descriptors.get(), nullptr,
        deadline.cancellable(), &error));
    if (!reply) {
        const std::unique_ptr<GError, decltype(&g_error_free)> owned(error, g_error_free);
        failWith(error);
    }
    const Variant results(g_variant_get_child_value(reply.get(), 0));
    const auto number = [&](const char* key) {
        guint32 value = 0;
        g_variant_lookup(results.get(), key, "u", &value);
        constexpr guint32 largest = 1U << 17U;  // bytes of a row of a picture 32768 pixels wide
        if (value > largest) fail("桌面没有返回图像。");
        return static_cast<int>(value);
    };
    // The numbers of QImage::Format_RGB32, _ARGB32 and _ARGB32_Premultiplied; other formats that KWin may send are
    // bytes in the order of the names, _RGBX8888 and what follows it.
    const int format = number("format");
    constexpr int firstOfWords = 4;
    constexpr int lastOfWords = 6;
    constexpr int firstOfBytes = 16;
    constexpr int lastOfBytes = 18;
    const bool isWords = format >= firstOfWords && format <= lastOfWords;
    if (!isWords && (format < firstOfBytes || format > lastOfBytes)) fail("不支持此显示器的像素格式。");
    return {.bytes = {},
            .width = number("width"),
            .height = number("height"),
            .bytesPerRow = number("stride"),
            .format = isWords ? WL_SHM_FORMAT_XRGB8888 : WL_SHM_FORMAT_XBGR8888};
}

Image takePicture(WaylandConnection& connection, const ScreenshotRequest& request) {
    const WaylandOutput& output = outputOf(connection, request.display);
    const PictureArea area = pictureAreaOf(output, request);
    Pipe pipe;
    RawPicture picture = requestPicture(
        {output.frame.x + area.points.x, output.frame.y + area.points.y, area.points.width, area.points.height}, pipe);
    pipe.closeWriting();
    const std::vector<std::uint8_t> bytes =
        pipe.read(static_cast<std::size_t>(picture.bytesPerRow) * static_cast<std::size_t>(picture.height));
    picture.bytes = bytes;
    return visiblePart(picture, area.pixels);
}

}  // namespace

bool KWinScreenCapture::isOffered() {
    try {
        const BusDeadline deadline(patience);
        const BusConnection bus = connectToBus(deadline.cancellable());
        const Variant owner(g_dbus_connection_call_sync(
            bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner",
            g_variant_new("(s)", service), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, deadline.cancellable(), nullptr));
        return owner != nullptr;
    } catch (const Error&) {
        return false;  // without a bus there is no KWin on it
    }
}

KWinScreenCapture::KWinScreenCapture(WorkerExecutor& workers, std::shared_ptr<KeptWaylandConnection> connection)
    : CompositorScreenCapture(workers, std::move(connection), takePicture) {
    workers.post([found = isFound_](const std::stop_token&) { *found = isOffered(); });
}

Task<bool> KWinScreenCapture::requestAccess() {
    const auto look = [found = isFound_](const std::stop_token&) { return *found = isOffered(); };
    const bool isThere = co_await workers().run(look);
    if (!isThere) fail("此桌面不支持。");
    co_return true;
}

}  // namespace ovrin
