// The speed of the whole program on private Wayland desktops of 1920x1080, beside its limits and other programs:
//
//   build/bench/bench/measure_wayland sway|kwin
//
// Run it on an idle machine. Every figure is the median of some runs. When a window is there, the compositor itself
// says, who answers its first picture once that has been drawn: looking at the screen would hold up KWin, which draws
// by software here and draws everything anew for each look.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <malloc.h>

#include "base/error.h"
#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "desktop/bus_view.h"
#include "desktop/wayland_desktop.h"
#include "desktop/wayland_user.h"
#include "measuring.h"
#include "platform/image_encoder.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/recognition/linux_image_decoder.h"
#include "platform/linux/recognition/onnx_text_recognizer.h"
#include "platform/linux/wayland/kwin_screen_capture.h"
#include "platform/linux/wayland/wayland_clipboard.h"
#include "platform/linux/wayland/wayland_screen_capture.h"
#include "practice/practice_service.h"
#include "wake_ups.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Compositor = WaylandDesktop::Compositor;

constexpr const char* assistantProgram = OVRIN_BINARY_DIR "/ovrin";

// What is watched is never converted.
class NoEncoder final : public ImageEncoder {
    bool canEncode(const std::string& /*type*/) const override { return false; }
    std::vector<std::byte> encode(std::span<const std::byte> /*picture*/, const std::string& /*type*/) const override {
        return {};
    }
};

class Bench {
public:
    explicit Bench(Compositor compositor)
        : compositor_(compositor),
          desktop_({.compositor = compositor, .width = width, .height = height, .program = assistantProgram}) {
        if (compositor == Compositor::sway) {
            capture_ = std::make_unique<WaylandScreenCapture>(workers_);
        } else {
            capture_ = std::make_unique<KWinScreenCapture>(workers_);
        }
        display_ = loop_.complete(capture_->displays()).at(0);
    }

    void run() {
        user_.moveTo({.x = 600, .y = 400});
        std::this_thread::sleep_for(6s);  // until it has stopped to wait for a tray
        report("wake-ups of all threads in 10 idle seconds",
               static_cast<double>(countWakeUps(assistant_.process().id(), 10s)), "", 0);
        comparePictures();
        dimmingTime([this] { activate(); });
        report("event in the process to first dimmed frame",
               medianOf(9, [this] { return dimmingTime([this] { activate(); }); }), "ms", 60);
        report("exec ovrin do to first dimmed frame",
               medianOf(9,
                        [this] {
                            std::unique_ptr<ChildProcess> command;
                            return dimmingTime([&] {
                                command = desktop_.start({.arguments = {assistantProgram, "do", "silent-capture-ocr"}});
                            });
                        }),
               "ms", 110);
        OnnxTextRecognizer recognizer(RecognitionFiles::ofThisProgram());
        report("mouse-up to text on the clipboard, beyond 140 ms and reading", measureCapture(recognizer), "ms", 40);
        std::this_thread::sleep_for(35s);  // the toolkit clears its memory of pictures half a minute after it has drawn
        report("wake-ups of all threads in 10 idle seconds after it",
               static_cast<double>(countWakeUps(assistant_.process().id(), 10s)), "", 0);
    }

private:
    Image take(const LocalRect& part, int pictureWidth, int pictureHeight) {
        return loop_.complete(capture_->screenshot(
            {.display = display_.id, .sourceRect = part, .width = pictureWidth, .height = pictureHeight}));
    }
    int paperBrightness() {
        const PixelSpot corner = page_.area().topLeft();
        const Image pixel = take({corner.x + 8.0, corner.y + 8.0, 1, 1}, 1, 1);
        return static_cast<int>(pixel.data()[0]);
    }

    // The other program is started for each, which belongs to its way of working.
    void comparePictures() {
        const double ours = medianOf(15, [this] {
            const auto begin = Clock::now();
            take({0, 0, width, height}, width, height);
            return millisecondsSince(begin);
        });
        const std::string file = (desktop_.home() / (compositor_ == Compositor::kwin ? "picture.png" : "picture.ppm"));
        std::vector<std::string> command{"grim", "-t", "ppm", file};
        if (compositor_ == Compositor::kwin) {
            command = {"spectacle", "--background", "--nonotify", "--fullscreen", "--output", file};
        }
        if (!ChildProcess::isInstalled(command.front())) return;
        const double theirs = medianOf(5, [&] {
            const auto begin = Clock::now();
            desktop_.start({.arguments = command, .environment = {"QT_QPA_PLATFORM=wayland"}})->waitForEnd();
            return millisecondsSince(begin);
        });
        if (!std::filesystem::exists(file)) throw Error(command.front() + " takes no picture: " + desktop_.log());
        report(("1920x1080 picture, beside " + command.front()).c_str(), ours, "ms", 1.2 * theirs);
    }

    void activate() {
        desktop_.bus().call({.destination = applicationId,
                             .path = applicationObjectPath,
                             .interface = applicationInterface,
                             .name = "ActivateAction"},
                            g_variant_new_parsed("('silent-capture-ocr', @av [], @a{sv} {})"));
    }

    double dimmingTime(const std::function<void()>& begin) {
        const int bright = paperBrightness();
        std::this_thread::sleep_for(200ms);  // until nobody is busy with that picture
        const std::size_t logged = desktop_.log().size();
        const std::uint32_t start = logClock();
        begin();
        std::this_thread::sleep_for(500ms);  // until it has faded in and holds the keyboard
        if (paperBrightness() == bright) throw Error("the overlay does not show");
        user_.pressKeys("Escape");
        spinUntil("the end of the overlay", [&] { return paperBrightness() == bright; });
        std::this_thread::sleep_for(300ms);
        return (firstFrameAfter(logged) - start) / 1000.0;
    }

    // Microseconds, as in the log of a Wayland connection.
    static std::uint32_t logClock() {
        return static_cast<std::uint32_t>(
            std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch()).count());
    }
    // When the compositor answered the first picture of the window that came up since then.
    std::uint32_t firstFrameAfter(std::size_t logged) const {
        const auto wordFrom = [](const std::string& line, std::string_view beginning) {
            const std::size_t found = line.find(beginning);
            return found == std::string::npos ? "" : line.substr(found, line.find_first_of(".,)", found) - found);
        };
        std::istringstream log(desktop_.log().substr(logged));
        std::string surface;
        std::string answer;
        for (std::string line; std::getline(log, line);) {
            if (surface.empty()) {
                if (line.find(".get_layer_surface(") != std::string::npos) surface = wordFrom(line, "wl_surface@");
            } else if (answer.empty()) {
                if (line.find(surface + ".frame(") != std::string::npos) answer = wordFrom(line, "wl_callback@");
            } else if (line.find("] " + answer + ".done(") != std::string::npos) {
                return static_cast<std::uint32_t>(std::stod(line.substr(1)) * 1000);  // "[ milliseconds] ..."
            }
        }
        throw Error("no overlay came up");
    }

    double measureCapture(OnnxTextRecognizer& recognizer) {
        const PixelArea area = page_.lines().at(5).area;
        const LocalRect part{static_cast<double>(area.x), static_cast<double>(area.y), static_cast<double>(area.width),
                             static_cast<double>(area.height)};
        const Image picture = take(part, area.width, area.height);
        captureTime(area);
        recognitionTime(recognizer, picture);
        std::vector<double> rests;
        for (int run = 0; run < 5; ++run) {
            const double way = captureTime(area);
            recognitionTime(recognizer, picture);
            std::this_thread::sleep_for(2s);  // as long after the one before as in the assistant
            rests.push_back(way - 140 - recognitionTime(recognizer, picture));
        }
        return median(rests);
    }

    double captureTime(const PixelArea& area) {
        activate();
        std::this_thread::sleep_for(500ms);
        user_.moveTo(area.topLeft());
        user_.press();
        user_.moveTo(area.center());
        user_.moveTo(area.bottomRight());
        std::this_thread::sleep_for(100ms);  // a hand rests before it lets go
        const auto changes = clipboard_.changeCount(ClipboardSource::clipboard);
        const auto begin = Clock::now();
        user_.release();
        spinUntil(
            "the text", [&] { return clipboard_.changeCount(ClipboardSource::clipboard) != changes; }, 1ms);
        const double time = millisecondsSince(begin);
        user_.moveTo({.x = 4, .y = 4});
        std::this_thread::sleep_for(2s);  // until the toast has gone
        return time;
    }

    static constexpr int width = 1920;
    static constexpr int height = 1080;

    const Compositor compositor_;
    PracticeService service_{0ms};
    WaylandDesktop desktop_;
    WaylandUser user_{desktop_.display()};
    WaylandSampleProgram page_{desktop_, OVRIN_BINARY_DIR "/ovrin_sample_program", SampleDialogue::Kind::page};
    WaylandAssistant assistant_{
        desktop_, {.program = assistantProgram, .serviceURL = service_.baseURL(), .environment = {"WAYLAND_DEBUG=1"}}};
    RunLoop loop_;
    WorkerExecutor workers_{1};
    LinuxImageDecoder decoder_;
    NoEncoder encoder_;
    WaylandClipboard clipboard_{nullptr, decoder_, encoder_, workers_};
    std::unique_ptr<ScreenCapture> capture_;
    CapturableDisplay display_;
};

}  // namespace
}  // namespace ovrin

int main(int argc, char** argv) {
    const std::string_view name = argc == 2 ? argv[1] : "";
    if (name != "sway" && name != "kwin") {
        std::fputs("measure_wayland sway|kwin\n", stderr);
        return 2;
    }
    mallopt(M_ARENA_MAX, 2);  // as in the assistant
    try {
        using Compositor = ovrin::WaylandDesktop::Compositor;
        ovrin::Bench(name == "sway" ? Compositor::sway : Compositor::kwin).run();
        return 0;
    } catch (const ovrin::Error& error) {
        std::fprintf(stderr, "measure_wayland: %s\n", error.errorDescription().c_str());
        return 1;
    }
}
