// The services of an X11 desktop taken away in turn: the action that needs one says so, and nothing else is lost.
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "desktop/desktop_test.h"
#include "desktop/notification_recorder.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

using Accessibility = PrivateDesktop::Accessibility;
using Sign = Assistant::Setup::Sign;

struct MissingServiceTest;

struct MissingService {
    const char* name;
    PrivateDesktop::Setup desktop{};
    std::vector<std::string> environment{};
    Sign sign = Sign::both;
    // Does what needs the service and sees what the user is told; does what does not need it.
    std::function<void(MissingServiceTest&)> miss;
    std::function<void(MissingServiceTest&)> work;

    friend std::ostream& operator<<(std::ostream& stream, const MissingService& service) {
        return stream << service.name;
    }
};

struct MissingServiceTest : DesktopTest, testing::WithParamInterface<MissingService> {
    using DesktopTest::Action, DesktopTest::assistant, DesktopTest::capture, DesktopTest::clickOn, DesktopTest::desktop,
        DesktopTest::expectToast, DesktopTest::openPage, DesktopTest::press, DesktopTest::programName,
        DesktopTest::programs, DesktopTest::reader, DesktopTest::user, DesktopTest::waitForWords;

    int perform(const std::string& action) const { return assistant->run({"do", action}); }
    void saysAfter(const std::string& action, const std::string& sentence) const {
        EXPECT_EQ(perform(action), EXIT_SUCCESS);
        expectToast(sentence);
    }

    // A capture by shortcut and pointer into the history and the panel.
    void captures() {
        const auto line = openPage().lines()[0];
        capture(Action::captureOCR, line.area);
        EXPECT_EQ(json::string(waitForHistory(1)[0], "sourceText"), line.text);
        assistant->waitForPanel();
    }
    void copiesACapture() {
        captures();
        user->waitForClipboard(programs.back()->lines()[0].text);
    }
    // What is on the clipboard, asked of the model service.
    void translatesAfter(const std::function<void()>& start) {
        auto& page = openPage();
        page.copyText(page.lines()[5].text);
        start();
        EXPECT_EQ(lastMessage(waitForExchange(0)), page.lines()[5].text);
        waitForHistory(1, Result::some);
    }
    void translates() {
        translatesAfter([this] { perform("clipboard-translate"); });
    }
};

// XFixes is not among them: the server for tests itself crashes without.
std::vector<MissingService> missingServices() {
    using Test = MissingServiceTest;
    return {
        {.name = "XTest",
         .desktop = {.missingExtensions = {"XTEST"}},
         .miss =
             [](Test& t) { t.saysAfter("replace-selection", "需要辅助功能权限才能读取或替换其他应用中的选中文字。"); },
         .work = [](Test& t) { t.translates(); }},
        {.name = "SharedMemory",
         .desktop = {.missingExtensions = {"MIT-SHM"}},
         .miss = [](Test& t) { t.copiesACapture(); },  // merely slower
         .work = [](Test& t) { t.expectToast("识别结果已复制"); }},
        {.name = "SessionBus",
         .environment = {"DBUS_SESSION_BUS_ADDRESS="},
         .sign = Sign::icon,
         .miss =
             [](Test& t) {
                 EXPECT_EQ(t.perform("history"), EXIT_FAILURE);
                 EXPECT_THAT(t.assistant->log(), testing::HasSubstr("ovrin: no session bus: 'ovrin do' cannot reach"));
                 EXPECT_THAT(t.assistant->log(), testing::HasSubstr("the running assistant cannot be reached"));
             },
         .work = [](Test& t) { t.translatesAfter([&t] { t.press(Test::Action::clipboardTranslate); }); }},
        {.name = "Tray",
         .desktop = {.tray = PrivateDesktop::Tray::none},
         .sign = Sign::name,
         .miss =
             [](Test& t) {
                 const NotificationRecorder recorder(t.desktop->busAddress());
                 waitFor("a notification", [&] { return !recorder.notifications().empty(); });
                 EXPECT_EQ(recorder.notifications()[0].title, "Ovrin 已启动");
                 EXPECT_EQ(recorder.notifications()[0].body, "当前桌面没有系统托盘，请使用快捷键或命令“ovrin do”。");
             },
         .work = [](Test& t) { t.translates(); }},
        {.name = "Notifications",
         .miss =
             [](Test& t) {
                 t.capture(Test::Action::silentCaptureOCR, t.openPage().lines()[3].area);
                 t.expectToast("识别结果已复制");
             },
         .work = [](Test& t) { t.user->waitForClipboard(t.programs.back()->lines()[3].text); }},
        {.name = "Keyring",
         .miss =
             [](Test& t) {
                 t.assistant->run({"do", "settings", "service"});
                 t.waitForWords("密钥环不可用，密钥保存在仅您可读的文件中。");
             },
         .work = [](Test& t) { t.translates(); }},
        {.name = "Speech",
         .environment = {"PATH=/nowhere"},
         .miss =
             [](Test& t) {
                 t.translates();
                 t.assistant->waitForPanel();
                 t.clickOn("朗读");
             },
         .work = [](Test& t) { t.expectToast("没有可用的朗读语音。"); }},
        {.name = "WindowManager",
         .desktop = {.windowManager = PrivateDesktop::WindowManager::none, .tray = PrivateDesktop::Tray::none},
         .sign = Sign::name,
         .miss =
             [](Test& t) {
                 t.saysAfter("clipboard-ocr", "剪贴板中没有可识别的图片。");
                 t.press(Test::Action::captureOCR);
                 t.assistant->waitForOverlays();
                 waitFor("the end of the overlay", [&] {
                     t.user->pressKeys("Escape");  // it has the keyboard a little later
                     return t.assistant->overlays().empty();
                 });
             },
         .work =
             [](Test& t) {
                 t.perform("command-palette");
                 t.reader->waitForName(Test::programName, "命令面板");
             }}};
}

TEST_P(MissingServiceTest, IsSaidAndNothingElseIsLost) {
    const MissingService& service = GetParam();
    Scene scene{.environment = service.environment, .desktop = service.desktop, .sign = service.sign};
    scene.desktop.accessibility = Accessibility::on;
    begin(scene);
    service.miss(*this);
    service.work(*this);
    EXPECT_TRUE(assistant->process().isRunning());
}

INSTANTIATE_TEST_SUITE_P(Desktop, MissingServiceTest, testing::ValuesIn(missingServices()),
                         [](const auto& info) { return info.param.name; });

// Another process holds the history when the display server goes away.
struct LostDisplayTest : DesktopTest {};

TEST_F(LostDisplayTest, EndsTheAssistantWithOneLineAndLosesNothing) {
    begin();
    auto& page = openPage();
    const std::string text = page.lines()[5].text;
    const std::filesystem::path history = desktop->dataFolder() / "Ovrin/history.json";
    std::filesystem::create_directories(history.parent_path());
    const int lock = ::open((history.parent_path() / ".history.json.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    page.copyText(text);
    press(Action::clipboardTranslate);
    assistant->waitForPanel();
    EXPECT_TRUE(assistant->history().empty());
    desktop->killServer();
    ::close(lock);
    EXPECT_EQ(assistant->process().waitForEnd(), EXIT_FAILURE);
    EXPECT_EQ(json::string(waitForHistory(1)[0], "sourceText"), text);
    EXPECT_EQ(assistant->log(), "ovrin: the display server has ended the connection; the assistant ends\n");
}

}  // namespace
}  // namespace ovrin
