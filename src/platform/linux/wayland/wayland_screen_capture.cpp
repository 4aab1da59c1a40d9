#include "platform/linux/wayland/wayland_screen_capture.h"

#include <cstddef>
#include <optional>

#include "base/error.h"
#include "platform/linux/desktop/picture_memory.h"
#include "platform/linux/wayland/raw_picture.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "platform/linux/wayland/wayland_displays.h"
#include "wlr-screencopy-unstable-v1-client.h"

namespace ovrin {
namespace {

using Manager = WaylandObject<zwlr_screencopy_manager_v1, zwlr_screencopy_manager_v1_destroy>;
using Frame = WaylandObject<zwlr_screencopy_frame_v1, zwlr_screencopy_frame_v1_destroy>;
using Pool = WaylandObject<wl_shm_pool, wl_shm_pool_destroy>;
using Buffer = WaylandObject<wl_buffer, wl_buffer_destroy>;

// What the compositor has told about a picture.
struct Progress {
    std::optional<RawPicture> announced;  // as it will be written, without its bytes
    bool isReady = false;
    bool hasFailed = false;
};

Progress& progressOf(void* data) {
    return *static_cast<Progress*>(data);
}

// The protocol's first version is all that is needed; the events after `failed` belong to later ones.
constexpr zwlr_screencopy_frame_v1_listener frameListener = {
    [](void* data, zwlr_screencopy_frame_v1* /*frame*/, std::uint32_t format, std::uint32_t width, std::uint32_t height,
       std::uint32_t stride) {
        progressOf(data).announced = {.bytes = {},
                                      .width = static_cast<int>(width),
                                      .height = static_cast<int>(height),
                                      .bytesPerRow = static_cast<int>(stride),
                                      .format = format};
    },
    [](void* data, zwlr_screencopy_frame_v1* /*frame*/, std::uint32_t flags) {
        progressOf(data).announced->isBottomRowFirst = (flags & ZWLR_SCREENCOPY_FRAME_V1_FLAGS_Y_INVERT) != 0;
    },
    [](void* data, zwlr_screencopy_frame_v1* /*frame*/, std::uint32_t /*secondsHigh*/, std::uint32_t /*secondsLow*/,
       std::uint32_t /*nanoseconds*/) { progressOf(data).isReady = true; },
    [](void* data, zwlr_screencopy_frame_v1* /*frame*/) { progressOf(data).hasFailed = true; },
    nullptr,
    nullptr,
    nullptr};

Frame startFrame(zwlr_screencopy_manager_v1* manager, wl_output* output, const PictureArea& area) {
    constexpr int withoutPointer = 0;
    if (area.isWholeOutput) return Frame(zwlr_screencopy_manager_v1_capture_output(manager, withoutPointer, output));
    return Frame(zwlr_screencopy_manager_v1_capture_output_region(
        manager, withoutPointer, output, area.points.x, area.points.y, area.points.width, area.points.height));
}

Image takePicture(WaylandConnection& connection, const ScreenshotRequest& request) {
    const WaylandOutput& output = outputOf(connection, request.display);
    const PictureArea area = pictureAreaOf(output, request);
    const Manager manager(connection.bind<zwlr_screencopy_manager_v1>(zwlr_screencopy_manager_v1_interface, 1));
    if (!manager || connection.sharedMemory() == nullptr) throw Error("无法截取屏幕：此桌面不支持。");

    const Frame frame = startFrame(manager.get(), output.output, area);
    Progress progress;
    zwlr_screencopy_frame_v1_add_listener(frame.get(), &frameListener, &progress);
    const auto waitFor = [&](auto isDone) {
        const bool isAnswered = connection.waitUntil([&] { return progress.hasFailed || isDone(); });
        if (!isAnswered) throw Error("无法截取屏幕：桌面没有应答。");
        if (progress.hasFailed) throw Error("无法截取屏幕：桌面没有返回图像。");
    };
    waitFor([&] { return progress.announced.has_value(); });

    const RawPicture& announced = *progress.announced;
    const int size = announced.bytesPerRow * announced.height;
    const PictureMemory memory(static_cast<std::size_t>(size));
    const Pool pool(wl_shm_create_pool(connection.sharedMemory(), memory.descriptor(), size));
    const Buffer buffer(wl_shm_pool_create_buffer(pool.get(), 0, announced.width, announced.height,
                                                  announced.bytesPerRow, announced.format));
    zwlr_screencopy_frame_v1_copy(frame.get(), buffer.get());
    waitFor([&] { return progress.isReady; });

    RawPicture picture = announced;
    picture.bytes = memory.bytes();
    picture.transform = output.transform;
    return visiblePart(picture, area.pixels);
}

}  // namespace

bool WaylandScreenCapture::isOfferedBy(const WaylandConnection& connection) {
    return connection.versionOf(zwlr_screencopy_manager_v1_interface) > 0;
}

WaylandScreenCapture::WaylandScreenCapture(WorkerExecutor& workers, std::shared_ptr<KeptWaylandConnection> connection)
    : CompositorScreenCapture(workers, std::move(connection), takePicture) {}

}  // namespace ovrin
