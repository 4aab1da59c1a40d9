#include "platform/linux/x11/x11_screenshot.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include "base/error.h"
#include "platform/linux/desktop/picture_memory.h"
#include "platform/linux/x11/x11_connection.h"

namespace ovrin {

namespace {

[[noreturn]] void fail(const char* reason) {
    throw Error(std::string("无法截取屏幕：") + reason);
}

// Memory for a picture as a segment of a connection, which has to outlive it.
class SharedSegment {
public:
    SharedSegment(xcb_connection_t* connection, std::size_t size)
        : connection_(connection), memory_(size), id_(xcb_generate_id(connection)) {
        xcb_shm_attach_fd(connection_, id_, memory_.duplicated(), 0);
    }
    SharedSegment(const SharedSegment&) = delete;
    SharedSegment& operator=(const SharedSegment&) = delete;
    ~SharedSegment() {
        xcb_shm_detach(connection_, id_);
        xcb_flush(connection_);
    }

    xcb_shm_get_image_cookie_t request(xcb_window_t window, const PixelRect& part) {
        return xcb_shm_get_image(connection_, window, static_cast<std::int16_t>(part.x),
                                 static_cast<std::int16_t>(part.y), static_cast<std::uint16_t>(part.width),
                                 static_cast<std::uint16_t>(part.height), ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, id_, 0);
    }

    std::span<const std::uint8_t> bytes() const { return memory_.bytes(); }

private:
    xcb_connection_t* connection_;
    PictureMemory memory_;
    xcb_shm_seg_t id_;
};

std::size_t sizeOf(const PixelRect& part) {
    return static_cast<std::size_t>(part.width) * static_cast<std::size_t>(part.height) * 4;
}

std::vector<std::uint8_t> blackPixels(std::size_t count) {
    std::vector<std::uint8_t> pixels(4 * count);
    for (std::size_t i = 3; i < pixels.size(); i += 4) pixels[i] = 0xFF;
    return pixels;
}

// Copies rows of 32-bit pixels whose fourth byte means nothing and makes them opaque.
void copyOpaque(std::span<const std::uint8_t> source, std::uint8_t* target, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, source.data() + 4 * i, sizeof pixel);
        pixel |= 0xFF000000U;
        std::memcpy(target + 4 * i, &pixel, sizeof pixel);
    }
}

}  // namespace

class X11Screenshot::Connection {
public:
    Connection() : connection_(xcb_connect(nullptr, &screenNumber_)) {
        if (xcb_connection_has_error(connection_) != 0) {
            xcb_disconnect(connection_);
            fail("没有可用的显示器。");
        }
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
        for (int i = 0; i < screenNumber_; ++i) xcb_screen_next(&screens);
        screen_ = screens.data;
        const auto* shm = xcb_get_extension_data(connection_, &xcb_shm_id);
        hasSharedMemory_ = shm != nullptr && shm->present != 0;
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() {
        prepared_.reset();
        xcb_disconnect(connection_);
    }

    bool isAlive() const { return xcb_connection_has_error(connection_) == 0; }

    // The size changes when monitors come and go.
    PixelRect rootFrame() {
        const X11Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, screen_->root), nullptr));
        if (!geometry) fail("与显示服务器的连接已断开。");
        return {0, 0, geometry->width, geometry->height};
    }

    // The part must lie inside of the root window. Rows of 32-bit pixels without padding, handed to the function.
    template <typename Use>
    void withPixels(const PixelRect& part, Use use) {
        requireTrueColor();
        if (!hasSharedMemory_ || !useSharedMemory(part, use)) useReply(part, use);
    }

    // To write into new memory takes the server longer than to write, since each of its pages has to be found first.
    // Here it does so with a picture that nobody looks at.
    void prepare(int width, int height) {
        const PixelRect part{0, 0, std::min<int>(width, screen_->width_in_pixels),
                             std::min<int>(height, screen_->height_in_pixels)};
        if (!hasSharedMemory_ || part.width <= 0 || part.height <= 0) return;
        prepared_ = std::make_unique<SharedSegment>(connection_, sizeOf(part));
        xcb_discard_reply(connection_, prepared_->request(screen_->root, part).sequence);
        xcb_flush(connection_);
    }

private:
    void requireTrueColor() const {
        const bool isUsual = (screen_->root_depth == 24 || screen_->root_depth == 32) &&
                             xcb_get_setup(connection_)->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
        if (!isUsual) fail("不支持此显示器的像素格式。");
    }

    template <typename Use>
    bool useSharedMemory(const PixelRect& part, Use use) {
        std::unique_ptr<SharedSegment> segment = std::exchange(prepared_, nullptr);
        if (!segment || segment->bytes().size() < sizeOf(part)) {
            segment = std::make_unique<SharedSegment>(connection_, sizeOf(part));
        }
        const X11Reply<xcb_shm_get_image_reply_t> reply(
            xcb_shm_get_image_reply(connection_, segment->request(screen_->root, part), nullptr));
        if (!reply) return false;
        use(segment->bytes());
        return true;
    }

    // For servers without shared memory, such as those on another machine.
    template <typename Use>
    void useReply(const PixelRect& part, Use use) {
        const std::size_t size = sizeOf(part);
        const auto cookie =
            xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, static_cast<std::int16_t>(part.x),
                          static_cast<std::int16_t>(part.y), static_cast<std::uint16_t>(part.width),
                          static_cast<std::uint16_t>(part.height), ~0U);
        const X11Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection_, cookie, nullptr));
        if (!reply || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) < size) {
            fail("显示服务器没有返回图像。");
        }
        use(std::span<const std::uint8_t>(xcb_get_image_data(reply.get()), size));
    }

    int screenNumber_ = 0;
    xcb_connection_t* connection_;
    const xcb_screen_t* screen_ = nullptr;
    bool hasSharedMemory_ = false;
    std::unique_ptr<SharedSegment> prepared_;  // for the next picture
};

X11Screenshot::X11Screenshot() = default;

X11Screenshot::~X11Screenshot() = default;

Image X11Screenshot::take(const PixelRect& rectangle) {
    if (rectangle.width <= 0 || rectangle.height <= 0) fail("区域为空。");
    const std::lock_guard lock(mutex_);
    connect();
    const auto rowBytes = static_cast<std::size_t>(rectangle.width) * 4;
    const PixelRect visible = intersection(rectangle, connection_->rootFrame());
    const bool isCovered = sizeOf(visible) == sizeOf(rectangle);
    std::vector<std::uint8_t> pixels =
        isCovered ? std::vector<std::uint8_t>(sizeOf(rectangle)) : blackPixels(sizeOf(rectangle) / 4);
    if (visible.width > 0 && visible.height > 0) {
        connection_->withPixels(visible, [&](std::span<const std::uint8_t> source) {
            const auto sourceRowBytes = static_cast<std::size_t>(visible.width) * 4;
            const auto firstRow = static_cast<std::size_t>(visible.y - rectangle.y);
            const auto firstByte = static_cast<std::size_t>(visible.x - rectangle.x) * 4;
            for (std::size_t row = 0; row < static_cast<std::size_t>(visible.height); ++row) {
                copyOpaque(source.subspan(row * sourceRowBytes, sourceRowBytes),
                           pixels.data() + (firstRow + row) * rowBytes + firstByte,
                           static_cast<std::size_t>(visible.width));
            }
        });
    }
    return {rectangle.width, rectangle.height, std::move(pixels)};
}

void X11Screenshot::prepare(int width, int height) {
    const std::lock_guard lock(mutex_);
    try {
        connect();
        connection_->prepare(width, height);
    } catch (const Error&) {
        // Whoever takes the picture meets the same failure.
        return;
    }
}

void X11Screenshot::connect() {
    if (connection_ && connection_->isAlive()) return;
    connection_.reset();
    connection_ = std::make_unique<Connection>();
}

}  // namespace ovrin
