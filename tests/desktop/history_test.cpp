// The history window, from the menu that opens it on.
#include "base/text.h"
#include "desktop/desktop_test.h"
#include "storage/history_store.h"

namespace ovrin {
namespace {

struct HistoryTest : DesktopTest {
    // What another process, this one, does with the file.
    HistoryStore otherProcess() const {
        return {desktop->dataFolder() / "Ovrin/history.json", text::CaseRules::general,
                [] { return std::chrono::system_clock::now(); }};
    }
    DesktopWindow waitForWindow() const {
        DesktopWindow window = user->waitForWindow({.title = "历史记录 — Ovrin", .program = programName});
        user->waitUntilActive(window.id);
        return window;
    }
    void waitUntilGone(const std::string& words) const {
        waitFor("the end of " + words, [&] { return !reader->shows(programName, words); });
    }
};

TEST_F(HistoryTest, SearchesFiltersReopensCopiesAndDeletes) {
    begin();
    HistoryStore other = otherProcess();
    other.save({.sourceText = "A red lantern", .resultText = "一盏红灯笼", .recordType = "input-translation"});
    other.save({.sourceText = "Two boats", .resultText = "", .recordType = "direct-ai"});
    other.save({.sourceText = "Three coins", .resultText = {}, .recordType = "capture-ocr"});
    openMenu(TestUser::Button::right);
    for (int item = 0; item < 10; ++item) user->pressKeys("Down");
    user->pressKeys("Return");
    const DesktopWindow window = waitForWindow();
    EXPECT_EQ(window.area.width, 800);
    EXPECT_EQ(window.area.height, 550);
    waitForWords("Three coins");

    user->type("LANTERN");
    waitUntilGone("Two boats");
    EXPECT_TRUE(reader->shows(programName, "A red lantern"));
    user->type("s");
    waitForWords("没有匹配的记录");
    user->pressKeys("Escape");
    waitForWords("Two boats");
    clickOn("OCR");
    waitUntilGone("Two boats");
    EXPECT_TRUE(reader->shows(programName, "Three coins"));
    clickOn("全部");
    waitForWords("Two boats");

    // An empty result is none.
    user->pressKeys("Control_L+f");
    for (const char* const key : {"Down", "Down", "Control_L+c"}) user->pressKeys(key);
    user->waitForClipboard("Two boats");
    expectToast("内容已复制");
    user->pressKeys("Down");
    user->pressKeys("Return");
    assistant->waitForPanel();
    waitForWords("一盏红灯笼");
    clickOn("关闭");

    assistant->run({"do", "history"});
    waitForWindow();
    user->pressKeys("Up");
    user->pressKeys("Delete");
    waitForHistory(2);
    EXPECT_EQ(json::string(assistant->history()[1], "sourceText"), "A red lantern");
    waitUntilGone("Two boats");
}

TEST_F(HistoryTest, OtherProcessesAppearLiveAndAllIsClearedAfterAQuestion) {
    begin();
    assistant->run({"do", "history"});
    const DesktopWindow window = waitForWindow();
    waitForWords("还没有历史记录");
    HistoryStore other = otherProcess();
    other.save({.sourceText = "It came alone", .resultText = {}, .recordType = "capture-ocr"});
    waitForWords("It came alone");

    clickOn("清除全部");
    waitForWords("此操作无法撤销。");
    user->pressKeys("Escape");
    waitUntilGone("此操作无法撤销。");
    EXPECT_EQ(assistant->history().size(), 1U);
    clickOn("清除全部");
    clickOn("清除");
    waitForHistory(0);
    waitForWords("还没有历史记录");

    // Closing hides it; while it is hidden it follows nothing, and it comes back with what happened meanwhile.
    user->pressKeys("Control_L+w");
    user->waitUntilGone(window.id);
    other.save({.sourceText = "While nobody looked", .resultText = {}, .recordType = "capture-ocr"});
    assistant->run({"do", "history"});
    EXPECT_EQ(waitForWindow().id, window.id);
    waitForWords("While nobody looked");
}

}  // namespace
}  // namespace ovrin
