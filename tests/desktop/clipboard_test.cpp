// What is on the clipboard, read and translated.
#include "desktop/desktop_test.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

struct ClipboardTest : DesktopTest {};

TEST_F(ClipboardTest, ReadsThePictureThatAnotherProgramCopied) {
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

TEST_F(ClipboardTest, TranslatesTextAndPictures) {
    begin();
    auto& page = openPage();
    const auto lines = page.lines();
    page.copyText("  \n" + lines[5].text + "\n ");
    press(Action::clipboardTranslate);
    EXPECT_EQ(lastMessage(waitForExchange(0)), lines[5].text);
    EXPECT_EQ(json::string(waitForHistory(1, Result::some)[0], "recordType"), "clipboard-translation");
    waitForWords(*pageTranslation(lines[5].text, "zh-Hans"));

    page.copyPicture(4);
    press(Action::clipboardTranslate);
    EXPECT_EQ(lastMessage(waitForExchange(1)), lines[4].text);
    EXPECT_EQ(json::string(waitForHistory(2, Result::some)[0], "recordType"), "capture-translation");
    user->waitForClipboard(lines[4].text);
}

TEST_F(ClipboardTest, SaysWhatIsMissing) {
    begin();
    auto& page = openPage();
    page.clearClipboard();
    press(Action::clipboardTranslate);
    expectToast("剪贴板中没有可翻译的文本或图片。");
    page.copyText(" \n ");
    press(Action::clipboardTranslate);
    expectToast("剪贴板中没有可翻译的文本或图片。");
    press(Action::clipboardOCR);
    expectToast("剪贴板中没有可识别的图片。");
    EXPECT_FALSE(assistant->panel());
    EXPECT_TRUE(assistant->history().empty());
    EXPECT_TRUE(service.exchanges().empty());
}

}  // namespace
}  // namespace ovrin
