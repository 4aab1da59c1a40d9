#include "platform/linux/wayland/wayland_screen_capture.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include "base/error.h"
#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "fakes/wayland_test_compositor.h"
#include "platform/linux/wayland/raw_picture.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "wlr-layer-shell-unstable-v1-client.h"

namespace ovrin {
namespace {

constexpr std::uint32_t black = 0xFF000000, red = 0xFFCC2010, green = 0xFF20B030, blue = 0xFF1020CC, white = 0xFFF0F0E0;

std::uint32_t pixel(const Image& picture, int x, int y) {
    std::uint32_t value = 0;
    std::memcpy(&value,
                picture.data() + static_cast<std::size_t>(y) * picture.bytesPerRow() +
                    std::size_t{4} * static_cast<std::size_t>(x),
                sizeof value);
    return value;
}

// Covers an output with a colour a quarter, in reading order, one pixel a point.
class Quarters {
public:
    using Colors = std::array<std::uint32_t, 4>;

    Quarters(const std::string& display, std::size_t output, const Colors& colors) : connection_(display.c_str()) {
        const WaylandOutput& target = connection_.outputs().at(output);
        auto* const compositor = connection_.bind<wl_compositor>(wl_compositor_interface, 4);
        auto* const shell = connection_.bind<zwlr_layer_shell_v1>(zwlr_layer_shell_v1_interface, 1);
        surface_ = wl_compositor_create_surface(compositor);
        layer_ = zwlr_layer_shell_v1_get_layer_surface(shell, surface_, target.output, ZWLR_LAYER_SHELL_V1_LAYER_TOP,
                                                       "test");
        constexpr int everyEdge = 15;
        zwlr_layer_surface_v1_set_anchor(layer_, everyEdge);
        static constexpr zwlr_layer_surface_v1_listener listener = {
            [](void* /*data*/, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t /*width*/,
               std::uint32_t /*height*/) { zwlr_layer_surface_v1_ack_configure(layer, serial); },
            [](void* /*data*/, zwlr_layer_surface_v1* /*layer*/) {}};
        zwlr_layer_surface_v1_add_listener(layer_, &listener, nullptr);
        wl_surface_commit(surface_);
        connection_.roundTrip();
        show(static_cast<int>(target.frame.width), static_cast<int>(target.frame.height), colors);
        zwlr_layer_shell_v1_destroy(shell);
        wl_compositor_destroy(compositor);
    }
    Quarters(const Quarters&) = delete;
    Quarters& operator=(const Quarters&) = delete;
    ~Quarters() {
        wl_callback_destroy(frame_);
        zwlr_layer_surface_v1_destroy(layer_);
        wl_surface_destroy(surface_);
    }

private:
    void show(int width, int height, const Colors& colors) {
        const int size = width * height * 4;
        const int memory = memfd_create("quarters", MFD_CLOEXEC);
        ASSERT_EQ(ftruncate(memory, size), 0);
        auto* const pixels = static_cast<std::uint32_t*>(
            mmap(nullptr, static_cast<std::size_t>(size), PROT_WRITE, MAP_SHARED, memory, 0));
        for (int i = 0; i < width * height; ++i) {
            const std::size_t quarter = (i / width < height / 2 ? 0U : 2U) + (i % width < width / 2 ? 0U : 1U);
            pixels[i] = colors[quarter];
        }
        munmap(pixels, static_cast<std::size_t>(size));
        wl_shm_pool* const pool = wl_shm_create_pool(connection_.sharedMemory(), memory, size);
        wl_buffer* const buffer = wl_shm_pool_create_buffer(pool, 0, width, height, width * 4, WL_SHM_FORMAT_XRGB8888);
        wl_surface_attach(surface_, buffer, 0, 0);
        wl_surface_damage(surface_, 0, 0, width, height);
        frame_ = wl_surface_frame(surface_);
        bool isShown = false;
        static constexpr wl_callback_listener listener = {
            [](void* shown, wl_callback* /*callback*/, std::uint32_t /*time*/) { *static_cast<bool*>(shown) = true; }};
        wl_callback_add_listener(frame_, &listener, &isShown);
        wl_surface_commit(surface_);
        ASSERT_TRUE(connection_.waitUntil([&] { return isShown; }));
        wl_buffer_destroy(buffer);
        wl_shm_pool_destroy(pool);
        close(memory);
    }

    WaylandConnection connection_;
    wl_surface* surface_ = nullptr;
    zwlr_layer_surface_v1* layer_ = nullptr;
    wl_callback* frame_ = nullptr;
};

class WaylandScreenCaptureTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "sway is not installed (Debian package sway)";
    }
    void TearDown() override { ::unsetenv("WAYLAND_DISPLAY"); }

    void start(const std::vector<HeadlessOutput>& outputs) {
        compositor.emplace(outputs);
        ::setenv("WAYLAND_DISPLAY", compositor->display().c_str(), 1);
    }
    std::vector<CapturableDisplay> displays() { return loop.complete(capture.displays()); }
    Image take(const CapturableDisplay& display, const LocalRect& part, int width, int height) {
        return loop.complete(
            capture.screenshot({.display = display.id, .sourceRect = part, .width = width, .height = height}));
    }
    std::string failureOfTaking(const CapturableDisplay& display) {
        try {
            take(display, {0, 0, 8, 8}, 8, 8);
        } catch (const Error& error) {
            return error.errorDescription();
        }
        return "no failure";
    }
    // The quarters' colours in a picture of all of them.
    static Quarters::Colors quartersOf(const Image& picture) {
        const int left = picture.width() / 4;
        const int right = picture.width() - left;
        const int top = picture.height() / 4;
        const int bottom = picture.height() - top;
        return {pixel(picture, left, top), pixel(picture, right, top), pixel(picture, left, bottom),
                pixel(picture, right, bottom)};
    }

    std::optional<WaylandTestCompositor> compositor;
    RunLoop loop;
    WorkerExecutor workers{1};
    WaylandScreenCapture capture{workers};
};

TEST_F(WaylandScreenCaptureTest, EachOutputIsSeenAsItIsTurnedAndAPartOfItToThePixel) {
    const std::vector<std::string> transforms{"normal",  "90",         "180",         "270",
                                              "flipped", "flipped-90", "flipped-180", "flipped-270"};
    std::vector<HeadlessOutput> outputs;
    for (std::size_t i = 0; i < transforms.size(); ++i) {
        outputs.push_back({.width = 80, .height = 60, .transform = transforms[i], .x = 100 * static_cast<int>(i)});
    }
    start(outputs);
    const std::vector<CapturableDisplay> found = displays();
    ASSERT_EQ(found.size(), outputs.size());
    const Quarters::Colors colors{red, green, blue, white};
    for (std::size_t i = 0; i < found.size(); ++i) {
        const Quarters shown(compositor->display(), i, colors);
        const int width = static_cast<int>(found[i].frame.width);
        const int height = static_cast<int>(found[i].frame.height);
        EXPECT_EQ(width, i % 2 == 0 ? 80 : 60);
        EXPECT_EQ(quartersOf(take(found[i], {0, 0, found[i].frame.width, found[i].frame.height}, width, height)),
                  colors)
            << transforms[i];
        const Image part = take(found[i], {width / 2.0 - 3, height / 2.0 - 1, 5, 4}, 5, 4);
        EXPECT_EQ(pixel(part, 2, 0), red) << transforms[i];
        EXPECT_EQ(pixel(part, 3, 0), green) << transforms[i];
        EXPECT_EQ(pixel(part, 2, 1), blue) << transforms[i];
        EXPECT_EQ(pixel(part, 3, 1), white) << transforms[i];
    }
}

TEST_F(WaylandScreenCaptureTest, PartsOfScaledOutputsHaveTheirPixels) {
    start({{.width = 1280, .height = 720, .scale = 1.5, .x = 200, .y = 100}, {.width = 800, .scale = 2}});
    const std::vector<CapturableDisplay> found = displays();
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].frame, (DisplayRect{0, 0, 853, 480}));
    EXPECT_EQ(found[0].scaleFactor, 1.5);
    EXPECT_EQ(found[1].frame, (DisplayRect{-200, -100, 400, 360}));
    EXPECT_EQ(found[1].scaleFactor, 2);
    const Quarters::Colors colors{red, green, blue, white};
    const Quarters first(compositor->display(), 0, colors);
    const Quarters second(compositor->display(), 1, {white, blue, green, red});
    // 20 points on both sides of the middle, whose first pixel is at 426 * 1.5.
    EXPECT_EQ(quartersOf(take(found[0], {406, 220, 40, 40}, 60, 60)), colors);
    // At the very end, where the output has half a pixel less than its points.
    const Image corner = take(found[0], {833, 460, 20, 20}, 30, 30);
    EXPECT_EQ(pixel(corner, 29, 29), white);
    EXPECT_EQ(quartersOf(take(found[1], {180.5, 160.5, 39, 39}, 78, 78)), (Quarters::Colors{white, blue, green, red}));
}

TEST_F(WaylandScreenCaptureTest, WhatIsNoLongerThereIsAnErrorAndTheNextCompositorIsFound) {
    start({HeadlessOutput()});
    const std::vector<CapturableDisplay> found = displays();
    EXPECT_EQ(failureOfTaking({.id = DisplayId{9999}, .frame = found.at(0).frame}), "无法截取屏幕：显示器已断开。");
    EXPECT_EQ(failureOfTaking(found.at(0)), "no failure");
    compositor->stop();
    start({HeadlessOutput()});
    EXPECT_EQ(failureOfTaking(displays().at(0)), "no failure");
    compositor->freeze();
    EXPECT_EQ(failureOfTaking(found.at(0)), "无法截取屏幕：桌面没有应答。");
    compositor->stop();
    EXPECT_EQ(failureOfTaking(found.at(0)), "无法连接到桌面（Wayland）。");
    start({HeadlessOutput()});
    EXPECT_EQ(failureOfTaking(displays().at(0)), "no failure");
}

// What the compositor of the tests never sends.
TEST(RawPictureTest, EveryFormatAndOrderOfRowsGivesTheSameColors) {
    struct Case {
        std::uint32_t format;
        std::uint32_t red;
        std::uint32_t blue;
    };
    const std::vector<Case> cases{{WL_SHM_FORMAT_ARGB8888, 0x00CC2010, 0x7F1020CC},
                                  {WL_SHM_FORMAT_XBGR8888, 0x001020CC, 0x00CC2010},
                                  {WL_SHM_FORMAT_XRGB2101010, 0xCCU << 22U | 0x20U << 12U | 0x10U << 2U | 3U,
                                   0x10U << 22U | 0x20U << 12U | 0xCCU << 2U},
                                  {WL_SHM_FORMAT_XBGR2101010, 0x10U << 22U | 0x20U << 12U | 0xCCU << 2U,
                                   0xCCU << 22U | 0x20U << 12U | 0x10U << 2U}};
    for (const Case& example : cases) {
        // One column of two pixels in rows of two, of which the second means nothing.
        const std::array<std::uint32_t, 4> pixels{example.red, 7, example.blue, 7};
        RawPicture raw{.bytes = {reinterpret_cast<const std::uint8_t*>(pixels.data()), sizeof pixels},
                       .width = 1,
                       .height = 2,
                       .bytesPerRow = 8,
                       .format = example.format};
        const Image picture = visiblePart(raw, {0, 0, 2, 2});
        EXPECT_EQ(pixel(picture, 0, 0), red);
        EXPECT_EQ(pixel(picture, 0, 1), blue);
        EXPECT_EQ(pixel(picture, 1, 0), black);
        raw.isBottomRowFirst = true;
        EXPECT_EQ(pixel(visiblePart(raw, {0, 0, 1, 2}), 0, 0), blue);
        raw.bytesPerRow = 9;
        EXPECT_THROW(visiblePart(raw, {0, 0, 1, 2}), Error);
    }
}

}  // namespace
}  // namespace ovrin
