#include "platform/linux/wayland/wayland_connection.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/error.h"
#include "fakes/wayland_test_compositor.h"

namespace ovrin {
namespace {

class WaylandConnectionTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "sway is not installed (Debian package sway)";
    }
};

std::string failureOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const Error& error) {
        return error.errorDescription();
    }
    return "no failure";
}

TEST_F(WaylandConnectionTest, TellsWhereTheOutputsAreInPoints) {
    const WaylandTestCompositor compositor({{.width = 1280, .height = 720, .scale = 1.5},
                                            {.width = 800, .height = 600, .transform = "90", .x = 853, .y = 40}});
    const WaylandConnection connection(compositor.display().c_str());
    const std::vector<WaylandOutput>& outputs = connection.outputs();
    ASSERT_EQ(outputs.size(), 2U);
    EXPECT_EQ(outputs[0].name, "HEADLESS-1");
    EXPECT_EQ(outputs[0].frame, (Rect<LayoutPoints>{0, 0, 853, 480}));
    EXPECT_EQ(outputs[0].modeWidth, 1280);
    EXPECT_EQ(outputs[0].scale, 2);
    EXPECT_EQ(outputs[1].frame, (Rect<LayoutPoints>{853, 40, 600, 800}));
    EXPECT_EQ(outputs[1].modeWidth, 800);
    EXPECT_NE(outputs[1].transform, WL_OUTPUT_TRANSFORM_NORMAL);
}

TEST_F(WaylandConnectionTest, ACompositorThatHangsDiesOrIsNotThereIsAnErrorThatSaysSo) {
    WaylandTestCompositor compositor;
    WaylandConnection connection(compositor.display().c_str());
    compositor.freeze();
    EXPECT_EQ(failureOf([&] { connection.roundTrip(); }), "桌面（Wayland）没有应答。");
    compositor.stop();
    EXPECT_EQ(failureOf([&] { connection.roundTrip(); }), "与桌面（Wayland）的连接已断开。");
    EXPECT_EQ(failureOf([&] { const WaylandConnection another(compositor.display().c_str()); }),
              "无法连接到桌面（Wayland）。");
}

}  // namespace
}  // namespace ovrin
