// What is selected in another program of a Wayland desktop: read as the desktop shows it, and replaced by keys.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/json.h"
#include "desktop/wait.h"
#include "desktop/wayland_desktop.h"
#include "desktop/wayland_user.h"
#include "practice/page_text.h"
#include "practice/practice_service.h"

namespace ovrin {
namespace {

const std::string sentence = "A ticket to the small island costs three coins.";

struct WaylandSelectionTest : testing::Test {
    void SetUp() override {
        if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "needs sway";
        desktop = std::make_unique<WaylandDesktop>();
        user = std::make_unique<WaylandUser>(desktop->compositor().display());
        assistant = std::make_unique<WaylandAssistant>(
            *desktop, WaylandAssistant::Setup{.program = OVRIN_BINARY_DIR "/ovrin", .serviceURL = service.baseURL()});
        editor = desktop->start({.arguments = {OVRIN_BINARY_DIR "/ovrin_sample_program", "editor"},
                                 .input = ChildProcess::Input::staysOpen,
                                 .output = ChildProcess::Output::lines});
        waitFor("the editor to have the keyboard", [this] { return desktop->waitForWindow("Notes").hasFocus; });
    }

    json::Value ask(const json::Value& command) const {
        editor->write(json::encoded(command) + "\n");
        return json::parse(editor->readLine()).value_or(json::Value());
    }
    void waitForText(const std::string& text) const {
        waitFor("the editor's text", [&] { return json::string(ask({{"do", "text"}}), "text") == text; });
    }

    // A program in whose place another one copies or selects, and what others paste.
    std::unique_ptr<ChildProcess> copy(std::vector<std::string> options) const {
        options.insert(options.begin(), {"wl-copy", "--foreground"});
        return desktop->start({.arguments = std::move(options)});
    }
    void waitForPasted(const std::string& text, const std::vector<std::string>& options) const {
        std::vector<std::string> command{"wl-paste", "--no-newline"};
        command.insert(command.end(), options.begin(), options.end());
        waitFor(text, [&] {
            return desktop->start({.arguments = command, .output = ChildProcess::Output::lines})->readLine() == text;
        });
    }

    PracticeService service{std::chrono::milliseconds(1)};
    std::unique_ptr<WaylandDesktop> desktop;
    std::unique_ptr<WaylandUser> user;
    std::unique_ptr<WaylandAssistant> assistant;
    std::unique_ptr<ChildProcess> editor;
};

TEST_F(WaylandSelectionTest, IsReplacedAndClipboardAndPrimaryComeBack) {
    const auto clipboard = copy({"--type", "text/html", "<b>the user's own</b>"});
    const auto primary = copy({"--primary", "selected elsewhere"});
    waitForPasted("<b>the user's own</b>", {"--type", "text/html"});
    waitForPasted("selected elsewhere", {"--primary"});
    ask({{"do", "selectText"}, {"text", sentence}});
    ASSERT_EQ(assistant->perform("replace-selection"), 0);
    waitForText(*pageTranslation(sentence, "zh-Hans"));
    waitForPasted("<b>the user's own</b>", {"--type", "text/html"});
    waitForPasted("selected elsewhere", {"--primary"});
}

TEST_F(WaylandSelectionTest, IsReadWithoutTheClipboardWhereTheDesktopShowsIt) {
    ask({{"do", "selectText"}, {"text", sentence}});
    user->pressKeys("End");
    user->pressKeys("Shift_L+Home");
    waitForPasted(sentence, {"--primary"});
    const auto first = copy({"first"});
    const auto watch = desktop->start(
        {.arguments = {"wl-paste", "--watch", "sh", "-c", "cat; echo"}, .output = ChildProcess::Output::lines});
    ASSERT_EQ(watch->readLine(), "first");
    ASSERT_EQ(assistant->perform("silent-selection"), 0);
    waitFor("the service to be asked", [this] { return !service.exchanges().empty(); });
    const auto last = copy({"last"});
    EXPECT_EQ(watch->readLine(), "last");
}

}  // namespace
}  // namespace ovrin
