// What a Wayland session does to the program: it comes and goes, loses a display, and lets windows to the front.
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/json.h"
#include "desktop/bus_service.h"
#include "desktop/bus_view.h"
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
        // What programs are started with, in place of a browser.
        const std::filesystem::path opener = desktop->home() / "bin/xdg-open";
        std::filesystem::create_directory(opener.parent_path());
        std::ofstream(opener) << "#!/bin/sh\necho \"$1 $XDG_ACTIVATION_TOKEN\" > " << opened().string() << '\n';
        std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
        assistant = std::make_unique<WaylandAssistant>(
            *desktop,
            WaylandAssistant::Setup{.program = program,
                                    .serviceURL = service.baseURL(),
                                    .environment = {"PATH=" + opener.parent_path().string() + ":/usr/bin:/bin"}});
    }
    std::filesystem::path opened() const { return desktop->home() / "opened"; }
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

TEST_F(WaylandSessionTest, ACompositorThatCrashesAgainAndAgainIsNotFollowedForEver) {
    begin();
    std::size_t told = 0;
    for (int crash = 0; crash < 3; ++crash) {
        desktop->compositor().restart();
        waitFor("the assistant to be back", [&] {
            const std::size_t place = desktop->log().find("is back; the assistant starts anew\n", told);
            if (place == std::string::npos) return false;
            told = place + 1;
            return true;
        });
        waitFor("the assistant on the bus", [this] { return desktop->bus().hasOwner("com.quel.ovrin"); });
    }
    desktop->compositor().restart();
    EXPECT_EQ(assistant->process().waitForEnd(), EXIT_FAILURE);
    EXPECT_THAT(desktop->log(), testing::EndsWith("the assistant ends\n"));
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

TEST_F(WaylandSessionTest, ThePanelsMenuOpensAWindowInFrontByThePanelsToken) {
    begin();
    tell("focus_on_window_activation focus");
    std::promise<std::string> registered;
    const BusService panel(desktop->busAddress(),
                           {.name = "org.kde.StatusNotifierWatcher",
                            .path = "/StatusNotifierWatcher",
                            .description = "<node><interface name='org.kde.StatusNotifierWatcher'>"
                                           "<method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/>"
                                           "</method></interface></node>"},
                           [&](const std::string& /*method*/, GVariant* arguments) -> GVariant* {
                               const char* item = nullptr;
                               g_variant_get(arguments, "(&s)", &item);
                               registered.set_value(item);
                               return nullptr;
                           });
    const std::string item = registered.get_future().get();
    const std::string interface = "org.kde.StatusNotifierItem";
    const std::string itemPath = "/StatusNotifierItem";
    const Variant menu = desktop->bus().property({item, itemPath, interface, "Menu"});
    const auto callMenu = [&](const char* name, GVariant* arguments) {
        return desktop->bus().call({item, g_variant_get_string(menu.get(), nullptr), "com.canonical.dbusmenu", name},
                                   arguments);
    };
    const Variant layout = callMenu("GetLayout", g_variant_new_parsed("(0, -1, @as [])"));
    const std::unique_ptr<char, decltype(&g_free)> printed(g_variant_print(layout.get(), FALSE), &g_free);
    const std::string lines = printed.get();  // each as (number, {'label': <'…'>, …}, […])
    const std::size_t label = lines.find("'label': <'设置");
    ASSERT_NE(label, std::string::npos) << lines;
    const int settingsLine = std::stoi(lines.substr(lines.rfind('(', label) + 1));

    ASSERT_EQ(assistant->perform("settings"), 0);
    desktop->waitForWindow("Ovrin");
    tell("workspace other");
    ASSERT_FALSE(desktop->waitForWindow("Ovrin").hasFocus);
    desktop->bus().call({item, itemPath, interface, "ProvideXdgActivationToken"},
                        g_variant_new("(s)", activationToken().c_str()));
    callMenu("Event", g_variant_new("(isvu)", settingsLine, "clicked", g_variant_new_string(""), 0U));
    waitFor("the window to have the focus", [this] { return desktop->waitForWindow("Ovrin").hasFocus; });
}

TEST_F(WaylandSessionTest, AProgramThatIsStartedGetsATokenForItsWindow) {
    begin();
    ASSERT_EQ(assistant->perform("direct-ai"), 0);
    desktop->settledPicture();
    std::string words;
    for (int word = 0; word < 80; ++word) words += "there ";
    user->type("[" + words + "](https://example.org/there)");  // which the answer repeats
    user->pressKeys("Return");
    const PixelArea chat = desktop->waitForWindow("TalkBox").area;
    desktop->settledPicture();
    user->click({.x = chat.center().x, .y = chat.y + 360});
    waitFor("the browser", [this] { return std::filesystem::exists(opened()); });
    std::string address;
    std::string token;
    std::ifstream(opened()) >> address >> token;
    EXPECT_EQ(address, "https://example.org/there");
    EXPECT_NE(token, "");
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
