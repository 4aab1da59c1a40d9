#include "platform/linux/wayland/wayland_pointer.h"

#include <gtest/gtest.h>

#include "fakes/wayland_test_compositor.h"
#include "fakes/wayland_virtual_pointer.h"

namespace ovrin {
namespace {

TEST(WaylandPointerTest, IsFoundOnEveryOutputWhereverItStands) {
    if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "sway is not installed (Debian package sway)";
    const WaylandTestCompositor compositor(
        {{.width = 1200, .height = 900, .scale = 1.5}, {.width = 800, .height = 600, .x = 800, .y = 100}});
    WaylandConnection connection(compositor.display().c_str());
    EXPECT_EQ(WaylandPointer::find(connection), std::nullopt) << "the seat has no pointer yet";

    WaylandVirtualPointer pointer(compositor.display().c_str());
    constexpr Rect<LayoutPoints> layout{0, 0, 1600, 700};
    pointer.moveTo({400, 350}, layout);
    auto place = WaylandPointer::find(connection);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->outputName, "HEADLESS-1");
    EXPECT_EQ(place->outputFrame, (Rect<LayoutPoints>{0, 0, 800, 600}));
    EXPECT_EQ(place->point, (LocalPoint{400, 350}));

    pointer.moveTo({1200, 175}, layout);
    place = WaylandPointer::find(connection);
    ASSERT_TRUE(place);
    EXPECT_EQ(place->outputName, "HEADLESS-2");
    EXPECT_EQ(place->point, (LocalPoint{400, 75}));
}

}  // namespace
}  // namespace ovrin
