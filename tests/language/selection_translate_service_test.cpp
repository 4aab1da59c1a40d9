#include "language/selection_translate_service.h"

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/running_task.h"
#include "base/virtual_loop.h"
#include "fakes/fake_clipboard_service.h"
#include "fakes/fake_synthetic_keyboard.h"
#include "fakes/journal.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Events = std::vector<std::string>;

std::vector<std::byte> bytes(std::size_t count) {
    return std::vector<std::byte>(count, std::byte{7});
}

class SelectionTranslateServiceTest : public testing::Test {
protected:
    SelectionTranslateServiceTest() {
        clipboard.items = usersItems;
        clipboard.string = "the user's own";
        keyboard.onPaste = [this] { ++clipboard.reads; };
    }

    void readSelection(SelectionUse use = SelectionUse::reading) { run(keepText(use)); }
    void replaceSelection(std::string text) { run(keepEnd(std::move(text))); }
    void run(Task<void> task) {
        running = std::make_unique<RunningTask>(loop, std::move(task), stop.get_token());
        running->start();
        loop.runPosted();
    }

    // The program in front puts this on the clipboard, some time after it got the keys.
    void answerCopyAfter(EventLoop::Duration delay, const std::optional<std::string>& text) {
        keyboard.onCopy = [this, delay, text] {
            loop.postAfter(delay, [this, text] {
                ++clipboard.changes;
                clipboard.items = {{{.type = "text/plain", .data = bytes(1)}}};
                clipboard.string = text;
            });
        };
    }

    Task<void> keepText(SelectionUse use) {
        try {
            SelectedText selected = co_await service.selectedText(use);
            text = std::move(selected.text);
            window = selected.window;
        } catch (const Error& error) {
            failure = error.errorDescription();
        }
        // What the caller does next finds the clipboard as it was.
        journal.add(clipboard.items == usersItems ? "end" : "end with a borrowed clipboard");
    }
    Task<void> keepEnd(std::string replacement) {
        const Replacement outcome = co_await service.replaceSelection(std::move(replacement), window);
        journal.add(outcome == Replacement::pasted    ? "end"
                    : outcome == Replacement::offered ? "end: offered"
                                                      : "end: refused");
    }

    const std::vector<ClipboardItem> usersItems{
        {{.type = "text/html", .data = bytes(3)}, {.type = "text/plain", .data = bytes(2)}},
        {{.type = "image/png", .data = bytes(100)}}};
    VirtualLoop loop;
    Journal journal;
    FakeClipboardService clipboard{journal};
    FakeSyntheticKeyboard keyboard{journal};
    SelectionTranslateService service{clipboard, keyboard};
    std::optional<std::string> text;
    SimulateKeyboard::Window window = keyboard.front;
    std::optional<std::string> failure;
    std::stop_source stop;
    std::unique_ptr<RunningTask> running;
};

TEST_F(SelectionTranslateServiceTest, ReadsTheSelectionAndPutsTheClipboardBack) {
    answerCopyAfter(100ms, "  the selection\n");
    readSelection();
    EXPECT_EQ(journal.take(), Events{"copy"});
    loop.advance(135ms - 1ns);
    EXPECT_EQ(text, std::nullopt);
    loop.advance(1ns);
    EXPECT_EQ(text, "the selection");
    EXPECT_EQ(journal.take(), (Events{"clipboard: 2 items", "end"}));
}

TEST_F(SelectionTranslateServiceTest, WaitsForTheKeyboardToGoBackToTheOtherProgramButNotForEver) {
    answerCopyAfter(1ms, "selection");
    keyboard.checksUntilFocus = 5;
    readSelection();
    loop.advance(30ms);
    EXPECT_EQ(journal.take(), Events{});
    loop.advance(60ms);
    EXPECT_EQ(text, "selection");
    journal.take();

    keyboard.checksUntilFocus = 1000;
    replaceSelection("replacement");
    loop.advance(300ms - 1ns);
    EXPECT_EQ(journal.take(), Events{});
    loop.advance(240ms + 1ns);
    EXPECT_EQ(journal.take(), (Events{"clipboard: replacement", "paste", "clipboard: 2 items", "end"}));
}

TEST_F(SelectionTranslateServiceTest, WhereCopyWouldInterruptItReadsWhatIsShownAndTouchesNothing) {
    keyboard.way = SimulateKeyboard::Selection::shown;
    clipboard.selected = " ls -l\n";
    readSelection();
    EXPECT_EQ(text, "ls -l");
    text.reset();
    clipboard.selected = " ";
    readSelection();
    EXPECT_TRUE(failure);
    failure.reset();
    keyboard.way = SimulateKeyboard::Selection::absent;
    clipboard.selected = "of another program";
    readSelection();
    EXPECT_EQ(failure, "没有读取到选中的文字，请先选中文字后再试。");
    EXPECT_EQ(text, std::nullopt);
    EXPECT_EQ(journal.take(), (Events{"end", "end", "end"}));
}

TEST_F(SelectionTranslateServiceTest, WhatIsShownIsReadAtOnceButOnlyWhatIsCopiedIsReplaced) {
    keyboard.way = SimulateKeyboard::Selection::either;
    clipboard.selected = "shown";
    answerCopyAfter(1ms, "copied");
    readSelection();
    EXPECT_EQ(text, "shown");
    EXPECT_EQ(journal.take(), Events{"end"});

    readSelection(SelectionUse::replacing);
    loop.advance(45ms - 1ns);
    EXPECT_TRUE(keyboard.isHeld);
    loop.advance(1ns);
    EXPECT_FALSE(keyboard.isHeld);
    EXPECT_EQ(text, "copied");
    keyboard.onCopy = [] {};
    readSelection(SelectionUse::replacing);
    loop.advance(360ms);
    EXPECT_EQ(failure, "没有读取到选中的文字，请先选中文字后再试。");

    failure.reset();
    clipboard.selected = " ";
    answerCopyAfter(1ms, "copied after all");
    readSelection();
    loop.advance(45ms);
    EXPECT_EQ(text, "copied after all");
    clipboard.failure = Error("the owner is silent");
    readSelection();
    EXPECT_EQ(failure, "the owner is silent");
}

TEST_F(SelectionTranslateServiceTest, WhereNoKeysCanBePressedWhatIsShownIsReadAndTheReplacementOffered) {
    keyboard.isPermitted = false;
    keyboard.way = SimulateKeyboard::Selection::shown;
    clipboard.selected = "shown";
    readSelection(SelectionUse::replacing);
    EXPECT_EQ(text, "shown");
    replaceSelection("le texte");
    EXPECT_EQ(journal.take(), (Events{"end", "trust requested", "clipboard: le texte", "end: offered"}));
}

TEST_F(SelectionTranslateServiceTest, OfAPictureOneEncodingIsSavedBeforeAllElseAndAllAreOfferedAgain) {
    clipboard.items = {{{.type = "text/html", .data = bytes(3)},
                        {.type = "image/jpeg", .data = bytes(4)},
                        {.type = "image/png"},  // promised in vain
                        {.type = "image/svg+xml", .data = bytes(5)},
                        {.type = "image/bmp", .data = bytes(6)},
                        {.type = "text/plain", .data = bytes(7)},
                        {.type = "text/rtf", .data = bytes(8)}}};
    clipboard.delays = {{"image/bmp", 200ms}, {"text/plain", 200ms}};
    answerCopyAfter(1ms, "selection");
    readSelection();
    loop.advance(300ms - 1ns);
    EXPECT_EQ(journal.take(), Events{});
    loop.advance(1ns);
    EXPECT_EQ(journal.take(), Events{"copy"});
    loop.advance(45ms);
    EXPECT_EQ(text, "selection");
    EXPECT_EQ(clipboard.read, (Events{"image/png", "image/bmp", "text/html", "image/svg+xml", "text/plain"}));
    const std::vector<ClipboardItem> restored{{{.type = "text/html", .data = bytes(3)},
                                               {.type = "image/jpeg", .encodedFrom = "image/bmp"},
                                               {.type = "image/png", .encodedFrom = "image/bmp"},
                                               {.type = "image/svg+xml", .data = bytes(5)},
                                               {.type = "image/bmp", .data = bytes(6)}}};
    EXPECT_EQ(clipboard.items, restored);
}

TEST_F(SelectionTranslateServiceTest, APictureThatDoesNotComeInTimeIsNotPutAtRisk) {
    clipboard.delays = {{"image/png", 301ms}};
    readSelection();
    loop.advance(1s);
    EXPECT_EQ(failure, "剪贴板中的图片过大，未读取选中文字。");
    EXPECT_EQ(journal.take(), Events{"end"});

    replaceSelection("le texte");
    loop.advance(1s);
    EXPECT_EQ(journal.take(), (Events{"clipboard: le texte", "end: offered"}));
}

TEST_F(SelectionTranslateServiceTest, NothingIsPressedWhereTheUserHasGoneDuringTheCopyOfTheClipboard) {
    clipboard.delays = {{"text/html", 100ms}};
    readSelection();
    keyboard.front = SimulateKeyboard::Window{8};
    loop.advance(1s);
    EXPECT_TRUE(failure);
    EXPECT_EQ(journal.take(), Events{"end"});
}

TEST_F(SelectionTranslateServiceTest, AnEmptyClipboardIsEmptyAgain) {
    clipboard.items.clear();
    clipboard.string.reset();
    answerCopyAfter(1ms, "selection");
    readSelection();
    loop.advance(45ms);
    EXPECT_EQ(text, "selection");
    EXPECT_TRUE(clipboard.items.empty());
    EXPECT_EQ(clipboard.string, std::nullopt);
}

TEST_F(SelectionTranslateServiceTest, GivesUpAfterEightChecks) {
    readSelection();
    loop.advance(360ms - 1ns);
    EXPECT_EQ(journal.take(), Events{"copy"});
    loop.advance(1ns);
    EXPECT_EQ(failure, "没有读取到选中的文字，请先选中文字后再试。");
    // Nobody touched the clipboard, so it still has its owner.
    EXPECT_EQ(journal.take(), Events{"end"});
    EXPECT_EQ(clipboard.string, "the user's own");
}

TEST_F(SelectionTranslateServiceTest, AnythingButATextIsNoSelectionUntilATextComes) {
    answerCopyAfter(10ms, std::nullopt);
    readSelection();
    loop.advance(100ms);
    ++clipboard.changes;
    clipboard.string = " \n";
    loop.advance(260ms);
    EXPECT_TRUE(failure);
    EXPECT_EQ(journal.take(), (Events{"copy", "clipboard: 2 items", "end"}));

    failure.reset();
    readSelection();
    loop.advance(100ms);
    ++clipboard.changes;
    clipboard.string = "at last";
    loop.advance(35ms);
    EXPECT_EQ(text, "at last");
    EXPECT_EQ(failure, std::nullopt);
}

TEST_F(SelectionTranslateServiceTest, PastesTheReplacementAndPutsTheClipboardBack) {
    for (const std::string replacement : {"le texte", ""}) {
        replaceSelection(replacement);
        loop.advance(60ms - 1ns);
        EXPECT_EQ(journal.take(), Events{"clipboard: " + replacement});
        loop.advance(1ns);
        EXPECT_EQ(journal.take(), Events{"paste"});
        EXPECT_EQ(clipboard.string, replacement);
        loop.advance(45ms - 1ns);
        EXPECT_TRUE(keyboard.isHeld);
        loop.advance(135ms);
        EXPECT_FALSE(keyboard.isHeld);
        EXPECT_EQ(journal.take(), Events{});
        loop.advance(1ns);
        EXPECT_EQ(journal.take(), (Events{"clipboard: 2 items", "end"}));
        EXPECT_EQ(clipboard.items, usersItems);
    }
}

TEST_F(SelectionTranslateServiceTest, ABusyProgramGetsTheTimeToReadTheReplacementButNotForEver) {
    keyboard.onPaste = [this] { loop.postAfter(700ms, [this] { ++clipboard.reads; }); };
    replaceSelection("le texte");
    ++clipboard.reads;  // a clipboard manager's, before the keys
    loop.advance(760ms - 1ns);
    EXPECT_EQ(journal.take(), (Events{"clipboard: le texte", "paste"}));
    loop.advance(45ms);
    EXPECT_EQ(journal.take(), (Events{"clipboard: 2 items", "end"}));

    keyboard.onPaste = [] {};
    replaceSelection("le texte");
    loop.advance(1050ms - 1ns);
    EXPECT_EQ(journal.take(), (Events{"clipboard: le texte", "paste"}));
    loop.advance(1ns);
    EXPECT_EQ(journal.take(), (Events{"clipboard: 2 items", "end"}));
}

TEST_F(SelectionTranslateServiceTest, WhereTheKeysMayPasteWhatIsSelectedThatIsBorrowedToo) {
    clipboard.pasted.push_back(ClipboardSource::primary);
    const std::vector<ClipboardItem> selected{{{.type = "text/plain", .data = bytes(4)}}};
    clipboard.selectedItems = selected;
    replaceSelection("le texte");
    EXPECT_EQ(journal.take(), (Events{"clipboard: le texte", "selection: le texte"}));
    loop.advance(240ms);
    EXPECT_EQ(journal.take(), (Events{"paste", "clipboard: 2 items", "selection: 1 items", "end"}));
    EXPECT_EQ(clipboard.selectedItems, selected);

    // What is left on the clipboard is not left in the other place.
    replaceSelection("le texte");
    keyboard.front = SimulateKeyboard::Window{8};
    loop.advance(60ms);
    EXPECT_EQ(journal.take(),
              (Events{"clipboard: le texte", "selection: le texte", "selection: 1 items", "end: offered"}));
}

TEST_F(SelectionTranslateServiceTest, WithoutPermissionNothingIsTouched) {
    keyboard.isPermitted = false;
    readSelection();
    EXPECT_EQ(failure, "需要辅助功能权限才能读取或替换其他应用中的选中文字。");
    EXPECT_EQ(journal.take(), (Events{"trust requested", "end"}));

    keyboard.answerToRequest = true;
    readSelection();
    EXPECT_EQ(journal.take(), (Events{"trust requested", "copy"}));
}

TEST_F(SelectionTranslateServiceTest, WhatCannotBePastedStaysOnTheClipboardAndNothingIsPressed) {
    using Window = SimulateKeyboard::Window;
    keyboard.isPermitted = false;
    replaceSelection("one");
    keyboard.isPermitted = true;
    for (const Window other : {Window{8}, Window::nowhere}) {
        keyboard.front = other;
        replaceSelection("two");
    }
    keyboard.front = window;
    keyboard.way = SimulateKeyboard::Selection::shown;
    replaceSelection("three");
    EXPECT_EQ(journal.take(),
              (Events{"trust requested", "clipboard: one", "end: offered", "clipboard: two", "end: offered",
                      "clipboard: two", "end: offered", "clipboard: three", "end: refused"}));

    // The user goes elsewhere at the last moment.
    keyboard.way = SimulateKeyboard::Selection::copied;
    replaceSelection("four");
    loop.advance(30ms);
    keyboard.front = Window{8};
    loop.advance(30ms);
    EXPECT_EQ(journal.take(), (Events{"clipboard: four", "end: offered"}));
    EXPECT_EQ(clipboard.string, "four");
}

TEST_F(SelectionTranslateServiceTest, AnInterruptedReplacementIsStillPastedAndPutBackAtOnce) {
    replaceSelection("le texte");
    loop.advance(20ms);
    stop.request_stop();
    loop.runPosted();
    EXPECT_EQ(journal.take(), (Events{"clipboard: le texte", "paste", "clipboard: 2 items", "end"}));
}

TEST_F(SelectionTranslateServiceTest, AnInterruptedReadLooksOnceMore) {
    answerCopyAfter(10ms, "selection");
    readSelection();
    loop.advance(20ms);
    stop.request_stop();
    loop.runPosted();
    EXPECT_EQ(text, "selection");
    EXPECT_EQ(journal.take(), (Events{"copy", "clipboard: 2 items", "end"}));

    text.reset();
    keyboard.onCopy = [] {};
    stop = std::stop_source();
    readSelection();
    stop.request_stop();
    loop.runPosted();
    EXPECT_TRUE(failure);
    EXPECT_EQ(journal.take(), (Events{"copy", "end"}));
}

TEST_F(SelectionTranslateServiceTest, DestroyedWhereItWaitsItPutsTheClipboardBack) {
    answerCopyAfter(10ms, " ");
    readSelection();
    loop.advance(50ms);
    running.reset();
    EXPECT_EQ(journal.take(), (Events{"copy", "clipboard: 2 items"}));

    replaceSelection("le texte");
    loop.advance(20ms);
    running.reset();
    EXPECT_EQ(journal.take(), (Events{"clipboard: le texte", "clipboard: 2 items"}));
    EXPECT_EQ(clipboard.items, usersItems);
    loop.advance(1s);
    EXPECT_EQ(journal.take(), Events{});
}

}  // namespace
}  // namespace ovrin
