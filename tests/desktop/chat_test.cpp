// The free chat: a bar in the middle of the screen that becomes a conversation.
#include <chrono>
#include <thread>

#include "desktop/desktop_test.h"

namespace ovrin {
namespace {

using Plan = PracticeService::Plan;
using State = PracticeService::Exchange::State;

struct ChatTest : DesktopTest {
    static constexpr PixelSpot barSize{.x = 540, .y = 150};
    static constexpr PixelSpot conversationSize{.x = 580, .y = 560};

    DesktopWindow waitForChat(PixelSpot size) const {
        return user->waitForWindow({.program = programName, .width = size.x, .height = size.y});
    }
    // Waits for the keyboard.
    DesktopWindow openBar() const {
        press(Action::directAskAI);
        DesktopWindow bar = waitForChat(barSize);
        user->waitUntilActive(bar.id);
        return bar;
    }
    // The conversation, once it has its size.
    DesktopWindow ask(const std::string& question) const {
        user->type(question + "\n");
        return waitForChat(conversationSize);
    }
    void turnTo(SampleProgram& page) const {
        const DesktopWindow window = page.window();
        user->click({.x = window.area.x + 20, .y = window.area.y + 20});
        user->waitUntilActive(window.id);
    }
};

TEST_F(ChatTest, GrowsAroundItsCentreWithTheFirstQuestionAndShrinksBackForANewOne) {
    begin();
    const DesktopWindow bar = openBar();
    EXPECT_NEAR(bar.area.center().x, 960, 2);
    waitForWords("阁下今天有什么困惑？");
    const DesktopWindow conversation = ask("What is a compass?");
    EXPECT_EQ(conversation.id, bar.id);
    EXPECT_EQ(conversation.area.center(), bar.area.center());
    const auto first = waitForExchange(0);
    EXPECT_EQ(lastMessage(first), "What is a compass?");
    const json::Value record = waitForHistory(1, Result::some)[0];
    EXPECT_EQ(json::string(record, "recordType"), "direct-ai");
    EXPECT_EQ(json::string(record, "sourceText"), "What is a compass?");
    EXPECT_EQ(json::string(record, "resultText"), first.answer);
    waitForWords("What is a compass?");
    waitForWords("【练习服务】");

    user->type("And a map?\n");  // the next field has the keyboard
    const auto second = waitForExchange(1);
    ASSERT_EQ(second.request.messages.size(), 4U);
    EXPECT_EQ(second.request.messages[1].content, "What is a compass?");
    EXPECT_EQ(second.request.messages[2].content, first.answer);
    EXPECT_EQ(lastMessage(second), "And a map?");
    EXPECT_EQ(waitForHistory(2).size(), 2U);

    clickOn("新对话");
    EXPECT_EQ(waitForChat(barSize).area, bar.area);
    ask("Which day is it?");
    EXPECT_EQ(waitForExchange(2).request.messages.size(), 2U);
}

TEST_F(ChatTest, TheBarGoesWithTheKeyboardAndTheConversationStays) {
    begin();
    auto& page = openPage();
    const DesktopWindow bar = openBar();
    turnTo(page);
    user->waitUntilGone(bar.id);

    const DesktopWindow chat = openBar();
    ask("What is a compass?");
    turnTo(page);
    waitForHistory(1, Result::some);
    ASSERT_TRUE(user->view().window(chat.id));
    EXPECT_TRUE(user->view().window(chat.id)->hasState("_NET_WM_STATE_ABOVE"));
    EXPECT_EQ(user->view().numbers(chat.id, "_NET_WM_DESKTOP"), std::vector<std::uint32_t>{0xFFFFFFFF});
    press(Action::directAskAI);
    user->waitUntilActive(chat.id);

    clickOn("新对话");
    waitForChat(barSize);
    turnTo(page);
    user->waitUntilGone(chat.id);
}

TEST_F(ChatTest, AKeyOfAnotherProgramLeavesTheDraftAndThePaletteOpen) {
    constexpr std::chrono::milliseconds pressed{400};  // the toolkit calls the window inactive after 100
    const std::string combination = "Control_L+space";
    begin();
    user->takeKeys(combination);
    const auto holdFor = [&](std::chrono::milliseconds time) {
        user->holdKeys(combination);
        std::this_thread::sleep_for(time);
        user->releaseKeys(combination);
    };
    DesktopWindow bar = openBar();
    user->type("What is");
    holdFor(pressed);
    user->type(" a compass?");
    waitForWords("What is a compass?");
    user->holdKeys(combination);
    std::this_thread::sleep_for(pressed);
    const xcb_window_t other = openPage().window().id;
    xcb_set_input_focus(user->view().connection(), XCB_INPUT_FOCUS_PARENT, other, XCB_CURRENT_TIME);
    user->waitUntilGone(bar.id);
    user->releaseKeys(combination);

    press(Action::commandPalette);
    const DesktopWindow palette = assistant->waitForPalette();
    user->waitUntilActive(palette.id);
    holdFor(pressed);
    EXPECT_TRUE(user->view().window(palette.id));
}

TEST_F(ChatTest, ClosingItEndsTheRequestAndForgetsTheConversation) {
    begin();
    for (const char* const way : {"Escape", "Control_L+w", "关闭"}) {
        service.planNext({.trouble = Plan::Trouble::hold, .pieces = 2});
        const std::size_t number = service.exchanges().size();
        const DesktopWindow chat = openBar();
        ask("What is a compass?");
        waitForWords("【练习");
        user->pressKeys("Control_L+Shift_L+w");  // is something else
        user->type("A draft");
        waitForWords("A draft");
        ASSERT_TRUE(user->view().window(chat.id));
        if (std::string(way) == "关闭") {
            clickOn(way);
        } else {
            user->pressKeys(way);
        }
        user->waitUntilGone(chat.id);
        EXPECT_EQ(waitForExchange(number).state, State::abandoned);
    }
    EXPECT_TRUE(assistant->history().empty());
    openBar();
    EXPECT_FALSE(reader->shows(programName, "What is a compass?"));
    EXPECT_FALSE(reader->shows(programName, "A draft"));
}

TEST_F(ChatTest, TroubleIsToldBelowTheConversationAndWhatArrivedStays) {
    begin();
    service.planNext({.trouble = Plan::Trouble::breakOff, .pieces = 3});
    openBar();
    ask("What is a compass?");
    EXPECT_EQ(waitForExchange(0).state, State::failed);
    waitForWords("连接被中断。");
    waitForWords(waitForExchange(0).answer);
    EXPECT_TRUE(assistant->history().empty());
    user->type("And now?\n");
    const auto second = waitForExchange(1);
    EXPECT_EQ(second.request.messages.size(), 4U);
    waitForHistory(1, Result::some);
    EXPECT_FALSE(reader->shows(programName, "连接被中断。"));
}

TEST_F(ChatTest, IsReachedFromThePaletteTheMenuAndOtherProcesses) {
    begin();
    EXPECT_EQ(assistant->run({"do", "direct-ai"}), 0);
    DesktopWindow bar = waitForChat(barSize);
    user->waitUntilActive(bar.id);
    press(Action::commandPalette);
    user->waitUntilGone(bar.id);  // the palette has the keyboard
    user->waitUntilActive(assistant->waitForPalette().id);
    user->type("talkbox\n");
    bar = waitForChat(barSize);
    user->waitUntilActive(bar.id);
    user->pressKeys("Escape");
    user->waitUntilGone(bar.id);
    openMenu(TestUser::Button::right);
    for (int item = 0; item < 4; ++item) user->pressKeys("Down");
    user->pressKeys("Return");
    user->waitUntilActive(waitForChat(barSize).id);
}

}  // namespace
}  // namespace ovrin
