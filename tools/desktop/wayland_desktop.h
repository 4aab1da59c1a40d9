// A Wayland desktop of one's own on a machine without a display: a headless compositor, a session bus and an empty
// home. Programs on it speak Wayland only. One at a time in a process, whose WAYLAND_DISPLAY and
// DBUS_SESSION_BUS_ADDRESS it sets. It ends with its scope, and also when its process crashes.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/pixel_area.h"
#include "desktop/sample_program.h"
#include "fakes/child_process.h"
#include "fakes/kwin_test_compositor.h"
#include "fakes/private_bus.h"
#include "fakes/temporary_directory.h"
#include "fakes/wayland_test_compositor.h"

class QImage;

namespace ovrin {

class BusView;
class ScreenCapture;
class WorkerExecutor;

class WaylandDesktop {
public:
    explicit WaylandDesktop(const std::vector<HeadlessOutput>& outputs = {HeadlessOutput()});
    // Outputs of this size in pixels beside each other, and windows that a screen reader can read. KWin takes the
    // program at this path, and this process, for installed.
    enum class Compositor : std::uint8_t { sway, kwin };
    struct Setup {
        Compositor compositor = Compositor::sway;
        int width = 1600;
        int height = 1000;
        std::string program;
        int outputs = 1;
        double scale = 1;  // pixels per point
    };
    explicit WaylandDesktop(const Setup& setup);
    ~WaylandDesktop();
    WaylandDesktop(const WaylandDesktop&) = delete;
    WaylandDesktop& operator=(const WaylandDesktop&) = delete;

    WaylandTestCompositor& compositor() { return *sway_; }
    std::string display() const { return sway_ ? sway_->display() : kwin_->display(); }
    // As if it had crashed and come up again.
    void restartCompositor() { sway_ ? sway_->restart() : kwin_->restart(); }
    const BusView& bus() const { return *busView_; }
    const std::string& busAddress() const { return bus_.address(); }
    std::filesystem::path home() const { return home_.path(); }

    // The whole environment of the programs that run on it.
    std::vector<std::string> environment() const;
    struct Program {
        std::vector<std::string> arguments;                       // the program first
        std::vector<std::string> environment{};                   // in place of the desktop's, or beside them
        ChildProcess::Input input = ChildProcess::Input::ends;    // of its standard input
        ChildProcess::Output output = ChildProcess::Output::log;  // which is the file "log" at home
    };
    std::unique_ptr<ChildProcess> start(const Program& program) const;
    std::string log() const;

    // What is on the clipboard, or in the PRIMARY selection, as another program gets it; empty where no text is.
    enum class Selection : std::uint8_t { clipboard, primary };
    std::string selectedText(Selection selection = Selection::clipboard) const;
    // From then on some program offers the text, until another one copies something.
    void copyText(const std::string& text, Selection selection = Selection::clipboard);

    // Windows that sway manages as such; what is there through the layer shell is none.
    struct Window {
        std::string title;
        PixelArea area;  // points of the layout, the frame without its shadow
        bool isFloating = false;
        bool hasFocus = false;
    };
    std::vector<Window> windows() const;
    Window waitForWindow(const std::string& titleBeginning) const;

    // What is on the output, counted from 0, in its pixels.
    QImage picture(std::size_t output = 0) const;
    // Around all pixels that are different; empty when none is. The pictures have the same size.
    static PixelArea difference(const QImage& before, const QImage& after);
    // Returns once the output has not changed for a moment, with what is on it then.
    QImage settledPicture(std::size_t output = 0) const;

private:
    void begin();
    void install(const std::string& name, const std::filesystem::path& program) const;
    std::unique_ptr<ScreenCapture> makeCapture(WorkerExecutor& workers) const;

    TemporaryDirectory home_;
    PrivateBus bus_;
    std::unique_ptr<BusView> busView_;
    std::optional<WaylandTestCompositor> sway_;
    std::optional<KWinTestCompositor> kwin_;  // instead
    std::unique_ptr<ChildProcess> accessibility_;
    std::array<std::unique_ptr<ChildProcess>, 2> copiers_;  // by selection
};

// The other program on it.
class WaylandSampleProgram : public SampleDialogue {
public:
    // program: the path of ovrin_sample_program. Returns when its window is drawn and still. Nothing else changes on
    // the output meanwhile.
    WaylandSampleProgram(const WaylandDesktop& desktop, const std::string& program, Kind kind);

    // Where its window is in the layout, and the lines in it.
    const PixelArea& area() const { return area_; }
    std::vector<Line> lines() { return SampleDialogue::lines(area_.topLeft()); }

private:
    PixelArea area_;
};

// The assistant on it: the built program, after its welcome.
class WaylandAssistant {
public:
    struct Setup {
        std::string program;                     // path of ovrin
        std::string serviceURL;                  // of the model service
        std::vector<std::string> environment{};  // in place of the desktop's, or beside them
    };
    // Returns when it obeys, or has said that there is no bus by which it could.
    WaylandAssistant(const WaylandDesktop& desktop, Setup setup);

    ChildProcess& process() { return *process_; }
    // Runs "ovrin do ACTION" there and returns its exit status.
    int perform(const std::string& action) const;

private:
    const WaylandDesktop& desktop_;
    Setup setup_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace ovrin
