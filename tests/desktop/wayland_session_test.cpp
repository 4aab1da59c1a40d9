// What a Wayland session does to the program: it comes and goes, loses a display, and lets windows to the front.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/json.h"
#include "desktop/picture.h"
#include "desktop/wait.h"
#include "desktop/wayland_desktop.h"
#include "desktop/wayland_user.h"
#include "platform/linux/wayland/wayland_connection.h"
#include "practice/practice_service.h"
#include "xdg-activation-v1-client.h"

namespace ovrin {
namespace {

const std::string program = OVRIN_BINARY_DIR "/ovrin";

struct WaylandSessionTest : testing::Test {
    void SetUp() override {
        if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "needs sway";
    }
    void begin(const std::vector<HeadlessOutput>& outputs = {HeadlessOutput()}) {
        desktop = std::make_unique<WaylandDesktop>(outputs);
        user = std::make_unique<WaylandUser>(desktop->compositor().display());
        empty = desktop->settledPicture();
        assistant = std::make_unique<WaylandAssistant>(
            *desktop, WaylandAssistant::Setup{.program = program, .serviceURL = service.baseURL()});
    }
    void tell(const std::string& command) const {
        const auto message = desktop->start(
            {.arguments = {"swaymsg", "--socket", desktop->compositor().controlSocket().string(), command}});
        ASSERT_EQ(message->waitForEnd(), 0) << command;
    }

    PracticeService service{std::chrono::milliseconds(1)};
    std::unique_ptr<WaylandDesktop> desktop;
    std::unique_ptr<WaylandUser> user;
    std::unique_ptr<WaylandAssistant> assistant;
    QImage empty;
};

TEST_F(WaylandSessionTest, TheEndOfTheCompositorEndsTheAssistantWithOneLine) {
    begin();
    ASSERT_EQ(assistant->perform("settings"), 0);
    desktop->waitForWindow("Ovrin");
    desktop->compositor().stop();
    EXPECT_EQ(assistant->process().waitForEnd(), EXIT_FAILURE);
    EXPECT_THAT(desktop->log(),
                testing::EndsWith("\novrin: the display server has ended the connection; the assistant ends\n"));
}

TEST_F(WaylandSessionTest, ASelectionGoesOnOnTheDisplaysThatAreLeft) {
    begin({{.width = 640, .height = 480}, {.width = 640, .height = 480, .x = 640}});
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    const auto isDimmed = [this] { return desktop->picture() != empty; };
    waitFor("the overlay", isDimmed);
    tell("output HEADLESS-2 disable");
    ASSERT_NE(desktop->settledPicture(), empty);
    waitFor("the end of the selection", [&] {
        user->pressKeys("Escape");  // it has the keyboard a little later
        return !isDimmed();
    });
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitFor("the next overlay", isDimmed);
}

// As a program that the user works with gets it.
std::string activationToken() {
    WaylandConnection connection;
    auto* const activation = connection.bind<xdg_activation_v1>(xdg_activation_v1_interface, 1);
    auto* const request = xdg_activation_v1_get_activation_token(activation);
    std::string token;
    static constexpr xdg_activation_token_v1_listener listener = {
        [](void* given, xdg_activation_token_v1* /*request*/, const char* text) {
            *static_cast<std::string*>(given) = text;
        }};
    xdg_activation_token_v1_add_listener(request, &listener, &token);
    xdg_activation_token_v1_commit(request);
    connection.roundTrip();
    xdg_activation_token_v1_destroy(request);
    xdg_activation_v1_destroy(activation);
    return token;
}

TEST_F(WaylandSessionTest, AWindowComesToTheFrontByTheTokenOfWhoAsksForIt) {
    begin();
    tell("focus_on_window_activation focus");
    ASSERT_EQ(assistant->perform("settings"), 0);
    desktop->waitForWindow("Ovrin");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{program, "do", "settings"}, std::vector<std::string>{program}}) {
        tell("workspace other");
        ASSERT_FALSE(desktop->waitForWindow("Ovrin").hasFocus);
        desktop->start({.arguments = arguments, .environment = {"XDG_ACTIVATION_TOKEN=" + activationToken()}})
            ->waitForEnd();
        waitFor("the window to have the focus", [this] { return desktop->waitForWindow("Ovrin").hasFocus; });
    }
}

TEST_F(WaylandSessionTest, TheDoctorAsksForEachCapability) {
    desktop = std::make_unique<WaylandDesktop>();
    const auto doctor =
        desktop->start({.arguments = {program, "doctor", "--json"}, .output = ChildProcess::Output::lines});
    std::string text;
    for (std::string line = doctor->readLine(); !line.empty(); line = doctor->readLine()) text += line;
    EXPECT_EQ(doctor->waitForEnd(), EXIT_SUCCESS);
    std::map<std::string, std::string> mechanisms;
    for (const json::Value& entry : json::parseOrThrow(text)) {
        mechanisms[json::string(entry, "name").value_or("")] = json::string(entry, "mechanism").value_or("no");
    }
    const std::map<std::string, std::string> expected{{"session", "Wayland"},
                                                      {"compositor", "sway"},
                                                      {"capture", "screencopy"},
                                                      {"shortcuts", "no"},
                                                      {"clipboard", "data-control"},
                                                      {"replacement", "virtual keyboard"},
                                                      {"card", "layer-shell"},
                                                      {"palette", "layer-shell, keyboard on demand"},
                                                      {"stays-on-top", "no"},
                                                      {"activation", "xdg-activation"},
                                                      {"tray", "no"},
                                                      {"models", "PP-OCRv6 in ONNX Runtime"}};
    for (const auto& [name, mechanism] : expected) EXPECT_EQ(mechanisms[name], mechanism) << name;
}

}  // namespace
}  // namespace ovrin
