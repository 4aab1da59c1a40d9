#include "desktop/wayland_desktop_test.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>

#include "desktop/picture.h"
#include "desktop/wait.h"

namespace ovrin {

bool WaylandDesktopTest::mayBeSkipped(Compositor compositor) {
    return compositor == Compositor::sway ? WaylandTestCompositor::mayBeSkipped() : KWinTestCompositor::mayBeSkipped();
}

void WaylandDesktopTest::begin(const WaylandDesktop::Setup& setup) {
    desktop = std::make_unique<WaylandDesktop>(setup);
    user = std::make_unique<WaylandUser>(desktop->display());
    reader = std::make_unique<ScreenReader>(desktop->bus());
}

void WaylandDesktopTest::startAssistant(const std::vector<std::string>& environment) {
    assistant =
        std::make_unique<WaylandAssistant>(*desktop, WaylandAssistant::Setup{.program = OVRIN_BINARY_DIR "/ovrin",
                                                                             .serviceURL = service.baseURL(),
                                                                             .environment = environment});
}

void WaylandDesktopTest::TearDown() {
    if (!HasFailure() || !desktop) return;
    std::cerr << "The assistant wrote: " << desktop->log() << '\n';
    const std::filesystem::path folder(OVRIN_BINARY_DIR "/desktop-failures");
    std::filesystem::create_directories(folder);
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::ranges::replace(name, '/', '-');
    desktop->picture().save(QString::fromStdString((folder / (name + ".png")).string()));
}

void WaylandDesktopTest::open(Kind kind) {
    program.reset();  // whose window would have a part of the output until then
    program = std::make_unique<WaylandSampleProgram>(*desktop, OVRIN_BINARY_DIR "/ovrin_sample_program", kind);
}

void WaylandDesktopTest::waitForOverlay(double brightnessBefore, std::size_t output) const {
    constexpr double dimmest = 0.75;
    waitFor("a dimmed output", [&] { return brightness(desktop->picture(output)) < dimmest * brightnessBefore; });
}

void WaylandDesktopTest::waitForSelected(const std::string& text, Selection selection) const {
    waitFor("the text to be selected: " + text, [&] { return desktop->selectedText(selection) == text; });
}

PracticeService::Exchange WaylandDesktopTest::waitForExchange(std::size_t number) const {
    return *waitFor("an answer of the service", [&]() -> std::optional<PracticeService::Exchange> {
        const auto exchanges = service.exchanges();
        if (exchanges.size() <= number) return std::nullopt;
        const auto& exchange = exchanges[number];
        return exchange.state == PracticeService::Exchange::State::running ? std::nullopt : std::optional(exchange);
    });
}

}  // namespace ovrin
