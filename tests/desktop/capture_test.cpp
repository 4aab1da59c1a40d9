// Reading the screen: the four shortcuts that begin with dragging a rectangle.
#include <string>

#include "desktop/desktop_test.h"
#include "desktop/notification_recorder.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

using testing::HasSubstr;

struct CaptureTest : DesktopTest {
    // The lines of the page from the first number to the last.
    static PixelArea across(const std::vector<SampleProgram::Line>& lines, std::size_t first, std::size_t last) {
        PixelArea area = lines[first].area;
        for (std::size_t index = first; index <= last; ++index) {
            area.width = std::max(area.width, lines[index].area.width);
            area.height = lines[index].area.y + lines[index].area.height - area.y;
        }
        return area;
    }
};

TEST_F(CaptureTest, ReadsTheTextCopiesItAndShowsItInThePanel) {
    begin();
    const auto line = openPage().lines()[0];
    capture(Action::captureOCR, line.area);
    expectToast("识别结果已复制");
    user->waitForClipboard(line.text);
    user->waitUntilActive(assistant->waitForPanel().id);
    waitForWords(line.text);
    const json::Value history = waitForHistory(1);
    EXPECT_EQ(json::string(history[0], "recordType"), "capture-ocr");
    EXPECT_EQ(json::string(history[0], "sourceText"), line.text);
    EXPECT_TRUE(service.exchanges().empty());
    EXPECT_TRUE(assistant->overlays().empty());
}

struct EitherStandard : CaptureTest, testing::WithParamInterface<std::string> {};

TEST_P(EitherStandard, TranslatesWhatItRead) {
    begin({.standard = GetParam()});
    const auto lines = openPage().lines();
    capture(Action::captureTranslate, across(lines, 3, 5));
    const auto exchange = waitForExchange(0);
    const std::string source = lines[3].text + "\n" + lines[4].text + "\n" + lines[5].text;
    EXPECT_EQ(lastMessage(exchange), source);
    EXPECT_THAT(systemPrompt(exchange), HasSubstr("(BCP-47: zh-Hans)"));
    const json::Value history = waitForHistory(1, Result::some);
    EXPECT_EQ(json::string(history[0], "recordType"), "capture-translation");
    EXPECT_EQ(json::string(history[0], "sourceText"), source);
    EXPECT_EQ(json::string(history[0], "resultText"), exchange.answer);
    waitForWords(*pageTranslation(lines[4].text, "zh-Hans"));
    EXPECT_EQ(user->clipboardText(), source) << "the translation is not copied by itself";
}

INSTANTIATE_TEST_SUITE_P(Both, EitherStandard, testing::Values("openai-compatible", "anthropic"),
                         [](const auto& test) { return test.param == "anthropic" ? "Anthropic" : "OpenAI"; });

TEST_F(CaptureTest, AsksAboutWhatItReadAndGoesOnAsking) {
    begin();
    const auto line = openPage().lines()[6];
    capture(Action::askWhatIsThis, line.area);
    const auto first = waitForExchange(0);
    EXPECT_EQ(lastMessage(first), "OCR content (the default subject of this conversation):\n" + line.text +
                                      "\n\nQuestion about the OCR content:\n这是什么？");
    EXPECT_EQ(json::string(waitForHistory(1, Result::some)[0], "recordType"), "capture-ai");

    user->waitUntilActive(assistant->waitForPanel().id);
    user->type("Where is it?\n");  // the composer has the keyboard
    const auto second = waitForExchange(1);
    ASSERT_EQ(second.request.messages.size(), 4U);
    EXPECT_EQ(second.request.messages[2].content, first.answer);
    EXPECT_EQ(lastMessage(second),
              "Follow-up question about the OCR content unless explicitly stated otherwise:\nWhere is it?");
    waitFor("the conversation in the history", [&] {
        const auto result = json::string(assistant->history()[0], "resultText").value_or("");
        return result == "这是什么？\n" + first.answer + "\n\nWhere is it?\n" + second.answer;
    });
}

TEST_F(CaptureTest, SilentlyCopiesAndNotifiesAndSurvivesADaemonThatDies) {
    begin();
    auto recorder = std::make_unique<NotificationRecorder>(desktop->busAddress());
    const auto lines = openPage().lines();
    capture(Action::silentCaptureOCR, across(lines, 0, 2));
    user->waitForClipboard(lines[0].text + "\n" + lines[1].text + "\n" + lines[2].text);
    waitFor("a notification", [&] { return !recorder->notifications().empty(); });
    EXPECT_EQ(recorder->notifications()[0].title, "截图 OCR 完成");
    EXPECT_EQ(recorder->notifications()[0].body, "已识别 3 段文字并复制到剪贴板。");
    EXPECT_FALSE(assistant->panel());

    recorder.reset();
    capture(Action::silentCaptureOCR, lines[3].area);
    user->waitForClipboard(lines[3].text);
    expectToast("识别结果已复制");

    recorder = std::make_unique<NotificationRecorder>(desktop->busAddress());
    capture(Action::silentCaptureOCR, lines[4].area);
    waitFor("a notification", [&] { return !recorder->notifications().empty(); });
    EXPECT_EQ(recorder->notifications()[0].body, "已识别 1 段文字并复制到剪贴板。");
}

TEST_F(CaptureTest, EscapeEndsTheSelectionSilentlyEvenInTheMiddleOfADrag) {
    begin();
    const auto line = openPage().lines()[1];
    press(Action::captureOCR);
    assistant->waitForOverlays();
    // The overlay has the keyboard a little after the keys of the shortcut are up: a user who is quicker presses again.
    const auto isEndedByEscape = [&] {
        user->pressKeys("Escape");
        return assistant->overlays().empty();
    };
    waitFor("the end of the overlay", isEndedByEscape);

    press(Action::captureOCR);
    assistant->waitForOverlays();
    user->beginDrag(line.area.topLeft(), line.area.bottomRight());
    waitFor("the end of the overlay in the middle of a drag", isEndedByEscape);
    user->release();
    EXPECT_FALSE(isToastShown());

    // The next one works as ever, and is the first that leaves a trace.
    capture(Action::captureOCR, line.area);
    user->waitForClipboard(line.text);
    waitForHistory(1);
}

TEST_F(CaptureTest, TheRightButtonEndsTheSelectionToo) {
    begin();
    press(Action::captureOCR);
    user->click(assistant->waitForOverlays().front().area.center(), TestUser::Button::right);
    waitFor("the end of the overlay", [&] { return assistant->overlays().empty(); });
}

TEST_F(CaptureTest, EscapeWorksOnceTheKeysOfTheShortcutAreUp) {
    begin();
    user->holdKeys("Super_L+Shift_L+o");
    assistant->waitForOverlays();
    user->pressKeys("Escape");
    user->releaseKeys("Super_L+Shift_L+o");
    waitFor("the end of the overlay", [&] {
        user->pressKeys("Escape");
        return assistant->overlays().empty();
    });
}

TEST_F(CaptureTest, ATinyDragIsNoneAndBackwardsIsAsGoodAsForwards) {
    begin();
    const auto line = openPage().lines()[2];
    press(Action::captureOCR);
    const auto overlay = assistant->waitForOverlays().front();
    user->drag(line.area.topLeft(), {.x = line.area.x + 4, .y = line.area.y + 30});
    user->click(line.area.center());
    EXPECT_EQ(assistant->waitForOverlays().front().id, overlay.id);
    user->drag(line.area.bottomRight(), line.area.topLeft());
    user->waitForClipboard(line.text);
    waitForHistory(1);
}

TEST_F(CaptureTest, TheScreenIsDimmedButForTheSelectionWithAndWithoutACompositor) {
    for (const auto compositor : {PrivateDesktop::Compositor::picom, PrivateDesktop::Compositor::none}) {
        begin({.desktop = {.compositor = compositor, .accessibility = PrivateDesktop::Accessibility::on}});
        const auto lines = openPage().lines();
        const PixelArea selection = lines[0].area.grownBy(8);
        const PixelArea inside{.x = selection.x + 20, .y = selection.y + 2, .width = 100, .height = 3};
        const PixelArea outside{.x = selection.x + selection.width + 40, .y = selection.y, .width = 20, .height = 20};
        const double paper = brightness(user->picture(inside));
        press(Action::captureOCR);
        assistant->waitForOverlays();
        user->beginDrag(selection.topLeft(), selection.bottomRight());
        user->waitForPicture("a clear selection", inside,
                             [&](const QImage& picture) { return brightness(picture) > paper - 2; });
        user->waitForPicture("a dim screen", outside, [&](const QImage& picture) {
            return brightness(picture) < paper * 0.72 && brightness(picture) > paper * 0.6;
        });
        user->release();
        user->waitForClipboard(lines[0].text);
    }
}

TEST_F(CaptureTest, EveryScriptOfThePageIsReadAsItIsWritten) {
    begin();
    const auto lines = openPage().lines();
    capture(Action::captureOCR, across(lines, 0, lines.size() - 1).grownBy(4));
    std::string all;
    for (const auto& line : lines) all += (all.empty() ? "" : "\n") + line.text;
    user->waitForClipboard(all);
}

TEST_F(CaptureTest, APictureThatAnotherProgramCopiedIsReadLikeOneOfTheScreen) {
    begin();
    auto& page = openPage();
    const auto line = page.lines()[8];
    page.copyPicture(8);
    press(Action::clipboardOCR);
    expectToast("识别结果已复制");
    user->waitForClipboard(line.text);
    assistant->waitForPanel();
    EXPECT_EQ(json::string(waitForHistory(1)[0], "recordType"), "capture-ocr");
}

}  // namespace
}  // namespace ovrin
