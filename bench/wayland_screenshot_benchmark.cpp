// How long it takes to get the picture of a whole screen from a Wayland compositor, connecting included, beside grim, a
// program whose whole work it is. Both on the same private compositor; medians of 15.
#include <cstdlib>
#include <string>

#include <benchmark/benchmark.h>

#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "fakes/child_process.h"
#include "fakes/wayland_test_compositor.h"
#include "platform/linux/wayland/wayland_screen_capture.h"

namespace ovrin {
namespace {

constexpr int width = 1920;
constexpr int height = 1080;
constexpr int repetitions = 15;

const WaylandTestCompositor& compositor() {
    static const WaylandTestCompositor compositor({{.width = width, .height = height}});
    return compositor;
}

void screencopy(benchmark::State& state) {
    ::setenv("WAYLAND_DISPLAY", compositor().display().c_str(), 1);
    RunLoop loop;
    WorkerExecutor workers(1);
    WaylandScreenCapture capture(workers);
    const CapturableDisplay display = loop.complete(capture.displays()).at(0);
    const ScreenshotRequest request{.display = display.id,
                                    .sourceRect = toLocalSpace(display.frame, display.frame),
                                    .width = width,
                                    .height = height};
    for (auto _ : state) benchmark::DoNotOptimize(loop.complete(capture.screenshot(request)));
}
BENCHMARK(screencopy)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1)->Repetitions(repetitions);

// Without encoding the picture.
void grim(benchmark::State& state) {
    const ChildProcess::Setup setup{
        .arguments = {"grim", "-t", "ppm", "/dev/null"},
        .environment = {"PATH=" + std::string(std::getenv("PATH")), "WAYLAND_DISPLAY=" + compositor().display(),
                        "XDG_RUNTIME_DIR=" + compositor().runtimeFolder().string()}};
    if (!ChildProcess::isInstalled("grim")) return state.SkipWithError("grim is not installed");
    for (auto _ : state) ChildProcess(setup).waitForEnd();
}
BENCHMARK(grim)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1)->Repetitions(repetitions);

}  // namespace
}  // namespace ovrin
