// The main job in a session without X11, used as its user would: a pointer, a keyboard, and programs that speak
// Wayland.
#include <algorithm>
#include <cstdlib>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/picture.h"
#include "desktop/screen_reader.h"
#include "desktop/wait.h"
#include "desktop/wayland_desktop.h"
#include "desktop/wayland_user.h"
#include "practice/page_text.h"
#include "practice/practice_service.h"

namespace ovrin {
namespace {

using Kind = SampleDialogue::Kind;
using Selection = WaylandDesktop::Selection;

const std::string sentence = "A ticket to the small island costs three coins.";
const std::string ownText = "the user's own";

using Compositor = WaylandDesktop::Compositor;

class WaylandMainJobTest : public testing::TestWithParam<Compositor> {
protected:
    void SetUp() override {
        if (GetParam() == Compositor::sway && WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "needs sway";
        if (GetParam() == Compositor::kwin && KWinTestCompositor::mayBeSkipped()) GTEST_SKIP() << "needs kwin-wayland";
        desktop = std::make_unique<WaylandDesktop>(
            WaylandDesktop::Setup{.compositor = GetParam(), .program = OVRIN_BINARY_DIR "/ovrin"});
        user = std::make_unique<WaylandUser>(desktop->display());
        reader = std::make_unique<ScreenReader>(desktop->bus());
        assistant = std::make_unique<WaylandAssistant>(*desktop, WaylandAssistant::Setup{
                                                                     .program = OVRIN_BINARY_DIR "/ovrin",
                                                                     .serviceURL = service.baseURL(),
                                                                 });
    }
    void TearDown() override {
        if (!HasFailure() || !desktop) return;
        std::cerr << "The assistant wrote: " << desktop->log() << '\n';
        const std::filesystem::path folder(OVRIN_BINARY_DIR "/desktop-failures");
        std::filesystem::create_directories(folder);
        std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
        std::ranges::replace(name, '/', '-');
        desktop->picture().save(QString::fromStdString((folder / (name + ".png")).string()));
    }

    void open(Kind kind) {
        program = std::make_unique<WaylandSampleProgram>(*desktop, OVRIN_BINARY_DIR "/ovrin_sample_program", kind);
    }
    // An editor in which the text is selected, and something of the user's on the clipboard.
    void openEditorWith(const std::string& text) {
        desktop->copyText(ownText);
        open(Kind::editor);
        program->selectText(text);
        user->click(program->area().center());
        user->pressKeys("Control_L+a");
        waitForSelected(text, Selection::primary);
    }
    void waitForOverlay(double brightnessBefore) const {
        constexpr double dimmest = 0.75;
        waitFor("a dimmed output", [&] { return brightness(desktop->picture()) < dimmest * brightnessBefore; });
    }
    void waitForSelected(const std::string& text, Selection selection = Selection::clipboard) const {
        waitFor("the text to be selected: " + text, [&] { return desktop->selectedText(selection) == text; });
    }
    void waitForKeyboardIn(const std::string& name) const {
        waitFor("the keyboard in a window of " + name, [&] {
            return std::ranges::any_of(reader->windows(name), [](const ScreenReader::Element& window) {
                return window.is(ScreenReader::State::active);
            });
        });
    }
    void waitForKeyboardInPalette() const {
        reader->waitForName("ovrin", "命令面板");
        waitForKeyboardIn("ovrin");
    }
    void waitForWords(const std::string& words) const { reader->waitForWords("ovrin", words); }
    PracticeService::Exchange waitForExchange(std::size_t number) const {
        return *waitFor("an answer of the service", [&]() -> std::optional<PracticeService::Exchange> {
            const auto exchanges = service.exchanges();
            if (exchanges.size() <= number) return std::nullopt;
            const auto& exchange = exchanges[number];
            return exchange.state == PracticeService::Exchange::State::running ? std::nullopt : std::optional(exchange);
        });
    }

    PracticeService service{std::chrono::milliseconds(1)};
    std::unique_ptr<WaylandDesktop> desktop;
    std::unique_ptr<WaylandUser> user;
    std::unique_ptr<ScreenReader> reader;
    std::unique_ptr<WaylandAssistant> assistant;
    std::unique_ptr<WaylandSampleProgram> program;
};

TEST_P(WaylandMainJobTest, TextInARectangleIsCopiedAndTranslatedAsTheUserWatches) {
    open(Kind::page);
    const auto line = program->lines()[5];
    const double bright = brightness(desktop->picture());
    const std::string translation = *pageTranslation(line.text, "zh-Hans");
    service.planNext({.trouble = PracticeService::Plan::Trouble::hold, .pieces = 1});

    ASSERT_EQ(assistant->perform("capture-translate"), 0);
    waitForOverlay(bright);
    user->drag(line.area.topLeft(), line.area.bottomRight());
    waitForSelected(line.text);
    waitForWords("识别结果已复制");
    waitFor("the beginning of the translation", [&] {
        const auto exchanges = service.exchanges();
        return !exchanges.empty() && !exchanges[0].answer.empty() && reader->shows("ovrin", exchanges[0].answer);
    });
    EXPECT_FALSE(reader->shows("ovrin", translation));
    service.release();
    waitForWords(translation);
    waitForKeyboardIn("ovrin");
    EXPECT_EQ(desktop->selectedText(), line.text);
    user->pressKeys("Control_L+w");
    waitFor("the end of the panel", [&] { return reader->windows("ovrin").empty(); });
    waitForKeyboardIn("ovrin_sample_program");
}

TEST_P(WaylandMainJobTest, EscapeEndsTheSelectionOfARectangleAndNothingIsChanged) {
    open(Kind::page);
    desktop->copyText(ownText);
    const double bright = brightness(desktop->picture());
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitForOverlay(bright);
    user->pressKeys("Escape");
    waitFor("a bright output", [&] { return brightness(desktop->picture()) > bright - 1; });
    EXPECT_EQ(desktop->selectedText(), ownText);
    waitForKeyboardIn("ovrin_sample_program");
}

TEST_P(WaylandMainJobTest, TheEndOfTheCompositorDuringASelectionEndsTheAssistantWithOneLine) {
    open(Kind::page);
    const double bright = brightness(desktop->picture());
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitForOverlay(bright);
    desktop->stopCompositor();
    EXPECT_EQ(assistant->process().waitForEnd(), EXIT_FAILURE);
    EXPECT_THAT(desktop->log(),
                testing::HasSubstr("\novrin: the display server has ended the connection; the assistant ends\n"));
}

TEST_P(WaylandMainJobTest, WhatIsSelectedIsTranslatedInACardAndThenReplaced) {
    openEditorWith(sentence);
    ASSERT_EQ(assistant->perform("silent-selection"), 0);
    waitForExchange(0);
    waitForWords(*pageTranslation(sentence, "zh-Hans"));
    waitForKeyboardIn("ovrin_sample_program");
    waitForSelected(ownText);

    // Where it is something can be selected, too.
    const auto card = [this] { return desktop->picture().copy(820, 600, 200, 100); };
    const double bright = brightness(card());
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitFor("the overlay above the card", [&] { return brightness(card()) < 0.75 * bright; });
    waitFor("the end of the overlay", [&] {
        user->pressKeys("Escape");  // it has the keyboard a little later
        return brightness(card()) > bright - 1;
    });

    ASSERT_EQ(assistant->perform("replace-selection"), 0);
    const std::string translation = waitForExchange(1).answer;
    waitFor("the translation in the editor", [&] { return program->text() == translation; });
    waitForWords("已替换为译文");
    waitForSelected(ownText);
    waitForSelected(sentence, Selection::primary);
    waitForKeyboardIn("ovrin_sample_program");
}

TEST_P(WaylandMainJobTest, TheCommandsOfThePaletteActOnWhatWasSelected) {
    openEditorWith(sentence);
    ASSERT_EQ(assistant->perform("command-palette"), 0);
    waitForKeyboardInPalette();
    for (int row = 0; row < 7; ++row) user->pressKeys("Down");  // "替换为译文"
    user->pressKeys("Return");
    const std::string translation = waitForExchange(0).answer;
    waitFor("the translation in the editor", [&] { return program->text() == translation; });

    ASSERT_EQ(assistant->perform("command-palette"), 0);
    waitForKeyboardInPalette();
    user->click({.x = 40, .y = 960});
    waitFor("the end of the palette", [&] { return reader->windows("ovrin").empty(); });
}

INSTANTIATE_TEST_SUITE_P(On, WaylandMainJobTest, testing::Values(Compositor::sway, Compositor::kwin),
                         [](const auto& test) { return test.param == Compositor::sway ? "Sway" : "KWin"; });

}  // namespace
}  // namespace ovrin
