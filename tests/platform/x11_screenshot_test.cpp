#include "platform/linux/x11/x11_screenshot.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "base/error.h"
#include "fakes/x_test_server.h"

namespace ovrin {
namespace {

constexpr std::uint32_t black = 0xFF000000, red = 0xFFCC2010, blue = 0xFF1020CC;

class X11ScreenshotTest : public ::testing::Test {
protected:
    void SetUp() override { ::setenv("DISPLAY", server.display(), 1); }
    void TearDown() override { ::unsetenv("DISPLAY"); }

    // Fills it on the screen.
    void paint(const PixelRect& area, std::uint32_t color) const {
        const xcb_gcontext_t context = xcb_generate_id(server.connection());
        xcb_create_gc(server.connection(), context, server.root(), XCB_GC_FOREGROUND, &color);
        const xcb_rectangle_t rectangle{static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                                        static_cast<std::uint16_t>(area.width),
                                        static_cast<std::uint16_t>(area.height)};
        xcb_poly_fill_rectangle(server.connection(), server.root(), context, 1, &rectangle);
        xcb_free_gc(server.connection(), context);
        server.synchronize();
    }

    static std::uint32_t pixel(const Image& picture, int x, int y) {
        std::uint32_t value = 0;
        std::memcpy(&value,
                    picture.data() + static_cast<std::size_t>(y) * picture.bytesPerRow() +
                        std::size_t{4} * static_cast<std::size_t>(x),
                    sizeof value);
        return value;
    }

    XTestServer server{"64x48x24"};
    X11Screenshot screenshot;
};

TEST_F(X11ScreenshotTest, ShowsTheScreenToThePixelAndOpaqueBlackBesideIt) {
    paint({0, 0, 64, 48}, blue);
    paint({60, 40, 4, 8}, red);
    const Image picture = screenshot.take({59, 39, 8, 12});
    ASSERT_EQ(picture.width(), 8);
    ASSERT_EQ(picture.height(), 12);
    EXPECT_EQ(pixel(picture, 0, 1), blue);
    EXPECT_EQ(pixel(picture, 1, 0), blue);
    EXPECT_EQ(pixel(picture, 1, 1), red);
    EXPECT_EQ(pixel(picture, 4, 8), red);
    EXPECT_EQ(pixel(picture, 5, 8), black);
    EXPECT_EQ(pixel(picture, 4, 9), black);
    EXPECT_EQ(pixel(screenshot.take({-10, -10, 2, 2}), 1, 1), black);
    EXPECT_THROW(screenshot.take({0, 0, 0, 5}), Error);
}

TEST_F(X11ScreenshotTest, WhatWasPreparedHoldsNothingOfTheTimeBefore) {
    const PixelRect area{8, 8, 16, 16};
    for (const int prepared : {4, 16, 64, 5000}) {
        paint(area, red);
        screenshot.prepare(prepared, prepared);
        paint(area, blue);
        const Image picture = screenshot.take(area);
        EXPECT_EQ(pixel(picture, 0, 0), blue) << prepared;
        EXPECT_EQ(pixel(picture, 15, 15), blue) << prepared;
    }
}

TEST_F(X11ScreenshotTest, AServerThatDiesIsAnErrorAndTheNextOneIsFound) {
    screenshot.take({0, 0, 8, 8});
    server.stop();
    screenshot.prepare(8, 8);
    EXPECT_THROW(screenshot.take({0, 0, 8, 8}), Error);
    const XTestServer another("64x48x24");
    ::setenv("DISPLAY", another.display(), 1);
    EXPECT_EQ(screenshot.take({0, 0, 8, 8}).width(), 8);
}

}  // namespace
}  // namespace ovrin
