#include "platform/linux/qt/desktop_loader.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "fakes/wayland_test_compositor.h"

namespace ovrin {
namespace {

TEST(DesktopLoaderTest, PicturesOfAWaylandSessionComeFromItsCompositor) {
    if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "needs sway";
    const WaylandTestCompositor compositor({{.width = 640, .height = 480}});
    RunLoop loop;
    WorkerExecutor workers(1);
    ::setenv("WAYLAND_DISPLAY", compositor.display().c_str(), 1);
    const auto screen = DesktopLoader().makeScreenCapture(workers);
    EXPECT_TRUE(screen->preflightAccess());
    const auto displays = loop.complete(screen->displays());
    ASSERT_EQ(displays.size(), 1U);
    EXPECT_EQ(displays.front().frame, (DisplayRect{0, 0, 640, 480}));

    // Where no compositor answers, X11 would show black pictures.
    ::setenv("WAYLAND_DISPLAY", "nobody", 1);
    EXPECT_FALSE(DesktopLoader().makeScreenCapture(workers)->preflightAccess());
    ::unsetenv("WAYLAND_DISPLAY");
}

}  // namespace
}  // namespace ovrin
