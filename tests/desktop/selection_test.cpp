// What is selected in another program: translated in the panel, in a card beside the pointer, or in its place.
#include "desktop/desktop_test.h"
#include "desktop/heard_texts.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

const std::string sentence = "A ticket to the small island costs three coins.";

struct SelectionTest : DesktopTest {
    // An editor in which the text is selected, and something of the user's on the clipboard.
    SampleProgram& editorWith(const std::string& text) {
        auto& editor = openEditor();
        user->waitUntilActive(editor.window().id);
        editor.copyText("the user's own");
        editor.selectText(text);
        return editor;
    }
};

TEST_F(SelectionTest, IsTranslatedInThePanelAndTheClipboardComesBack) {
    begin();
    editorWith(sentence + "\n");
    press(Action::selectionTranslate);
    EXPECT_EQ(lastMessage(waitForExchange(0)), sentence);
    assistant->waitForPanel();
    const json::Value history = waitForHistory(1, Result::some);
    EXPECT_EQ(json::string(history[0], "recordType"), "selection-translation");
    waitForWords(*pageTranslation(sentence, "zh-Hans"));
    user->waitForClipboard("the user's own");
}

TEST_F(SelectionTest, IsTranslatedInACardThatLeavesTheKeyboardAlone) {
    begin();
    auto& editor = editorWith(sentence);
    user->moveTo({.x = 1500, .y = 700});
    press(Action::silentSelectionTranslate);
    const DesktopWindow card = user->waitForWindow({.program = programName, .width = 350, .height = 225});
    EXPECT_EQ(card.area.x, 1512);
    EXPECT_NEAR(card.area.y, 737, 1);
    waitForExchange(0);
    waitForWords(*pageTranslation(sentence, "zh-Hans"));
    EXPECT_EQ(user->view().activeWindow(), editor.window().id);
    user->pressKeys("End");
    user->type("!");
    waitFor("the editor to have the keyboard", [&] { return editor.text() == sentence + "!"; });
    EXPECT_TRUE(assistant->history().empty());

    clickOn("关闭");
    user->waitUntilGone(card.id);
    EXPECT_EQ(user->view().activeWindow(), editor.window().id);
    user->waitForClipboard("the user's own");
}

TEST_F(SelectionTest, TheTranslationIsHeardAsItGrows) {
    begin();
    HeardTexts heard(*reader);
    editorWith(sentence);
    service.planNext({.trouble = PracticeService::Plan::Trouble::hold, .pieces = 1});
    press(Action::silentSelectionTranslate);
    waitFor("its beginning", [&] {
        const auto exchanges = service.exchanges();
        return !exchanges.empty() && !exchanges[0].answer.empty() &&
               reader->waitForControl(programName, "译文").text == exchanges[0].answer;
    });
    const ScreenReader::Element beginning = reader->waitForControl(programName, "译文");
    heard.begin(beginning);
    const auto heardWords = [&] { return heard.text(beginning.reference).words; };
    EXPECT_NE(heardWords(), *pageTranslation(sentence, "zh-Hans"));
    service.release();
    waitFor("all of it to be heard", [&] { return heardWords() == *pageTranslation(sentence, "zh-Hans"); });
    EXPECT_GE(heard.text(beginning.reference).insertions, 1);
    EXPECT_EQ(reader->waitForControl(programName, "译文").text, heardWords());
    reader->waitForName(programName, "即时翻译");
    EXPECT_EQ(reader->windows(programName).front().name, "即时翻译");
}

TEST_F(SelectionTest, IsReplacedByItsTranslation) {
    begin();
    auto& editor = editorWith(sentence);
    press(Action::replaceSelection);
    const auto exchange = waitForExchange(0);
    waitFor("the translation in the editor", [&] { return editor.text() == exchange.answer; });
    EXPECT_FALSE(exchange.request.isStreamed);
    expectToast("已替换为译文");
    const json::Value history = waitForHistory(1, Result::some);
    EXPECT_EQ(json::string(history[0], "recordType"), "selection-replace");
    EXPECT_EQ(json::string(history[0], "resultText"), exchange.answer);
    user->waitForClipboard("the user's own");
    EXPECT_EQ(user->view().activeWindow(), editor.window().id);
}

TEST_F(SelectionTest, IsStillThereForACommandOfThePalette) {
    begin();
    auto& editor = editorWith(sentence);
    press(Action::commandPalette);
    user->waitUntilActive(assistant->waitForPalette().id);
    for (int row = 0; row < 7; ++row) user->pressKeys("Down");  // "替换为译文"
    user->pressKeys("Return");
    const auto exchange = waitForExchange(0);
    waitFor("the translation in the editor", [&] { return editor.text() == exchange.answer; });
}

TEST_F(SelectionTest, IsReadWhileTheUserStillHoldsTheShortcut) {
    begin();
    auto& editor = editorWith(sentence);
    user->holdKeys("Super_L+Shift_L+d");
    EXPECT_EQ(lastMessage(waitForExchange(0)), sentence);
    user->releaseKeys("Super_L+Shift_L+d");
    waitForHistory(1, Result::some);
    // No key is stuck afterwards.
    user->click({.x = editor.window().area.x + 20, .y = editor.window().area.y + 20});  // beside the panel
    user->type("abc");
    waitFor("plain letters", [&] { return editor.text().find("abc") != std::string::npos; });
}

TEST_F(SelectionTest, NothingSelectedIsSaidAndTheClipboardStays) {
    begin();
    auto& editor = editorWith("");
    for (const Action action :
         {Action::selectionTranslate, Action::silentSelectionTranslate, Action::replaceSelection}) {
        press(action);
        expectToast("没有读取到选中的文字，请先选中文字后再试。");
    }
    user->waitForClipboard("the user's own");
    EXPECT_EQ(editor.text(), "");
    EXPECT_TRUE(service.exchanges().empty());
}

}  // namespace
}  // namespace ovrin
