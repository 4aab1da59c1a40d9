#include "desktop/desktop_test.h"

#include <algorithm>
#include <iostream>

#include "base/error.h"

namespace ovrin {
namespace {

const std::string sampleProgram = OVRIN_BINARY_DIR "/ovrin_sample_program";

// The names of the shortcuts that have no default, with the stored codes of their letters.
const std::map<std::string, int> shortcutKeys{
    {"captureOCR", 31},          {"inputTranslate", 34},  {"selectionTranslate", 2}, {"silentSelectionTranslate", 14},
    {"silentInputTranslate", 9}, {"silentCaptureOCR", 8}, {"clipboardOCR", 0},       {"clipboardTranslate", 40},
    {"showResultWindow", 15},    {"commandPalette", 35}};

}  // namespace

void DesktopTest::begin(const Scene& scene) {
    programs.clear();
    assistant.reset();
    reader.reset();
    user.reset();
    keyring.reset();
    desktop.reset();  // what an earlier scene has left
    desktop = std::make_unique<PrivateDesktop>(scene.desktop);
    monitorCount_ = std::max<std::size_t>(scene.desktop.monitors.size(), 1);
    user = std::make_unique<TestUser>(desktop->display());
    if (scene.desktop.accessibility == PrivateDesktop::Accessibility::on)
        reader = std::make_unique<ScreenReader>(desktop->bus());
    if (scene.secretService != Scene::SecretService::none) keyring = std::make_unique<Keyring>(*desktop);
    if (scene.secretService == Scene::SecretService::mute) keyring->freeze();
    Assistant::Setup setup{.program = scene.program,
                           .serviceURL = scene.modelService == Scene::ModelService::unknown ? "" : service.baseURL(),
                           .standard = scene.standard,
                           .preferences = scene.preferences,
                           .launch = scene.launch,
                           .environment = scene.environment,
                           .sign = scene.sign};
    for (const auto& [name, code] : shortcutKeys) {
        setup.preferences["KeyboardShortcuts_ovrin." + name] =
            Assistant::shortcut(code, {Assistant::Modifier::super, Assistant::Modifier::shift});
    }
    if (!scene.hidden.empty()) {
        // Displays are found by their numbers alone; no server of a test gets such a large one.
        const std::string folder = "/tmp/.X11-unix/X";
        const std::string number = desktop->display().substr(1);
        server_.emplace(folder + "1000" + number, folder + number, scene.hidden);
        setup.environment.push_back("DISPLAY=:1000" + number);
    }
    if (scene.beforeLaunch) scene.beforeLaunch();
    assistant = std::make_unique<Assistant>(*desktop, *user, setup);
}

void DesktopTest::TearDown() {
    if (!HasFailure() || !user) return;
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::filesystem::path picture =
        std::filesystem::path(OVRIN_BINARY_DIR) / "desktop-failures" / (name + ".png");
    const xcb_screen_t& screen = user->view().screen();
    user->savePicture({.width = screen.width_in_pixels, .height = screen.height_in_pixels}, picture);
    std::cerr << "The screen: " << picture.string() << '\n';
    if (reader) {
        for (const auto& element : reader->elements(programName))
            std::cerr << "  " << element.role << " [" << element.name << "] " << element.text << '\n';
    }
    if (assistant) std::cerr << "The assistant wrote: " << assistant->log() << '\n';
}

SampleProgram& DesktopTest::open(SampleProgram::Kind kind) {
    programs.push_back(std::make_unique<SampleProgram>(*desktop, *user, sampleProgram, kind));
    return *programs.back();
}

void DesktopTest::press(Action action) const {
    user->pressKeys("Super_L+Shift_L+" + std::string(1, static_cast<char>(action)));
}

void DesktopTest::capture(Action action, const PixelArea& area) const {
    press(action);
    assistant->waitForOverlays(monitorCount_);
    user->drag(area.topLeft(), area.bottomRight());
}

DesktopWindow DesktopTest::openMenu(TestUser::Button button) const {
    user->click(assistant->waitForTrayIcon().area.center(), button);
    return assistant->waitForMenu();
}

json::Value DesktopTest::waitForHistory(std::size_t records, Result result) const {
    json::Value history;
    waitFor("the history", [&] {
        history = assistant->history();
        return history.size() == records &&
               (result == Result::none || json::string(history.front(), "resultText").has_value());
    });
    return history;
}

PracticeService::Exchange DesktopTest::waitForExchange(std::size_t number) const {
    PracticeService::Exchange exchange;
    waitFor("an answer of the service", [&] {
        const auto exchanges = service.exchanges();
        if (exchanges.size() <= number) return false;
        exchange = exchanges[number];
        return exchange.state != PracticeService::Exchange::State::running;
    });
    return exchange;
}

std::string DesktopTest::lastMessage(const PracticeService::Exchange& exchange) {
    return exchange.request.messages.empty() ? "" : exchange.request.messages.back().content;
}

std::string DesktopTest::systemPrompt(const PracticeService::Exchange& exchange) {
    return exchange.request.messages.empty() ? "" : exchange.request.messages.front().content;
}

void DesktopTest::clickOn(const std::string& name) const {
    user->click(reader->waitForName(programName, name).area.center());
}

void DesktopTest::expectToast(const std::string& text) const {
    const DesktopWindow toast = assistant->waitForToast();
    waitForWords(text);
    user->waitUntilGone(toast.id);
}

}  // namespace ovrin
