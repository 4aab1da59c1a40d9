// The main job in a session without X11, used as its user would: a pointer, a keyboard, and programs that speak
// Wayland.
#include <algorithm>
#include <cstdlib>
#include <string>

#include <gmock/gmock.h>

#include "desktop/picture.h"
#include "desktop/wait.h"
#include "desktop/wayland_desktop_test.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

const std::string sentence = "A ticket to the small island costs three coins.";
const std::string ownText = "the user's own";

class WaylandMainJobTest : public WaylandDesktopTest, public testing::WithParamInterface<WaylandDesktop::Compositor> {
protected:
    void SetUp() override {
        if (mayBeSkipped(GetParam())) GTEST_SKIP() << "needs sway and kwin-wayland";
        begin({.compositor = GetParam(), .program = OVRIN_BINARY_DIR "/ovrin"});
        startAssistant();
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
    user->pressKeys("Escape");
    waitFor("the end of the panel", [&] { return reader->windows("ovrin").empty(); });
    waitForKeyboardIn("ovrin_sample_program");
}

TEST_P(WaylandMainJobTest, EscapeEndsTheSelectionOfARectangleAndNothingIsChanged) {
    open(Kind::page);
    desktop->copyText(ownText);
    const double bright = brightness(desktop->picture());
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitForOverlay(bright);
    const double dark = brightness(desktop->settledPicture());
    user->pressKeys("Escape");
    waitFor("a bright output", [&] {
        const double now = brightness(desktop->picture());
        EXPECT_TRUE(now < dark + 1 || now > bright - 1)
            << "a fading overlay would be in the picture that is taken next";
        return now > bright - 1;
    });
    EXPECT_EQ(desktop->selectedText(), ownText);
    waitForKeyboardIn("ovrin_sample_program");
}

TEST_P(WaylandMainJobTest, AfterACrashOfTheCompositorDuringASelectionTheAssistantIsBack) {
    open(Kind::page);
    const double bright = brightness(desktop->picture());
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitForOverlay(bright);
    desktop->restartCompositor();
    waitFor("the new start", [this] {
        return testing::Value(
            desktop->log(),
            testing::HasSubstr(
                "\novrin: the display server had ended the connection and is back; the assistant starts anew\n"));
    });
    waitFor("the assistant on the bus", [this] { return desktop->bus().hasOwner("com.quel.ovrin"); });
    open(Kind::page);
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitForOverlay(bright);
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

// For sway WaylandWindowsTest looks at two outputs.
struct KWinOutputsTest : WaylandDesktopTest {};

TEST_F(KWinOutputsTest, TheSecondIsReadAtItsScale) {
    if (mayBeSkipped(Compositor::kwin)) GTEST_SKIP() << "needs kwin-wayland";
    begin({.compositor = Compositor::kwin,
           .width = 1920,
           .height = 1350,
           .program = OVRIN_BINARY_DIR "/ovrin",
           .outputs = 2,
           .scale = 1.5});
    startAssistant();
    user->moveTo({.x = 1700, .y = 300});  // where windows come up
    const auto page =
        desktop->start({.arguments = SampleDialogue::command(OVRIN_BINARY_DIR "/ovrin_sample_program", Kind::page),
                        .environment = {"QT_QPA_PLATFORM=wayland", "QT_WAYLAND_DISABLE_WINDOWDECORATION=1"},
                        .input = ChildProcess::Input::staysOpen});
    constexpr double brightnessWithPage = 100;
    waitFor("the page", [&] { return brightness(desktop->picture(1)) > brightnessWithPage; });
    const double bright = brightness(desktop->picture(1));
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitForOverlay(bright, 1);
    user->drag({.x = 1300, .y = 100}, {.x = 2500, .y = 500});
    waitForWords("识别结果已复制");
    EXPECT_THAT(desktop->selectedText(),
                testing::HasSubstr("\nNobody repairs it, because the ferry is always on time."));
}

INSTANTIATE_TEST_SUITE_P(On, WaylandMainJobTest,
                         testing::Values(WaylandDesktop::Compositor::sway, WaylandDesktop::Compositor::kwin),
                         [](const auto& test) {
                             return test.param == WaylandDesktop::Compositor::sway ? "Sway" : "KWin";
                         });

}  // namespace
}  // namespace ovrin
