// How long it takes to get the picture of a whole screen, beside the same picture through the plain protocol, which
// sends every pixel over the socket. On a private X server.
#include <cstdlib>
#include <memory>

#include <benchmark/benchmark.h>
#include <xcb/xcb.h>

#include "fakes/x_test_server.h"
#include "platform/linux/x11/x11_connection.h"
#include "platform/linux/x11/x11_screenshot.h"

namespace ovrin {
namespace {

constexpr int width = 1920;
constexpr int height = 1080;

const XTestServer& server() {
    static const XTestServer server("1920x1080x24");
    return server;
}

void sharedMemory(benchmark::State& state) {
    ::setenv("DISPLAY", server().display(), 1);
    X11Screenshot screenshot;
    for (auto _ : state) benchmark::DoNotOptimize(screenshot.take({0, 0, width, height}));
}
BENCHMARK(sharedMemory)->Unit(benchmark::kMillisecond);

void overTheSocket(benchmark::State& state) {
    const X11Connection connection = connectToX11(server().display());
    for (auto _ : state) {
        const X11Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
            connection.get(),
            xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, server().root(), 0, 0, width, height, ~0U),
            nullptr));
        benchmark::DoNotOptimize(xcb_get_image_data(reply.get()));
    }
}
BENCHMARK(overTheSocket)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ovrin
