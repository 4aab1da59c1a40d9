// The services of a desktop taken away in turn, of an X11 and of a Wayland one: the action that needs one says so, and
// nothing else is lost.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "desktop/desktop_test.h"
#include "desktop/notification_recorder.h"
#include "desktop/wayland_desktop_test.h"
#include "fakes/name_hiding_socket.h"
#include "practice/page_text.h"

namespace ovrin {
namespace {

using Accessibility = PrivateDesktop::Accessibility;
using Sign = Assistant::Setup::Sign;
using Line = SampleDialogue::Line;

const std::string sentence = "A ticket to the small island costs three coins.";

// Test: what the user of the desktop does.
template <typename Test>
struct MissingService {
    const char* name;
    std::string hidden{};  // what the display server offers by this name, from the assistant
    std::vector<std::string> environment{};
    // Does what needs the service and sees what the user is told; does what does not need it.
    std::function<void(Test&)> miss;
    std::function<void(Test&)> work;
    // Of an X11 desktop.
    PrivateDesktop::Setup desktop{.accessibility = Accessibility::on};
    Sign sign = Sign::both;

    friend std::ostream& operator<<(std::ostream& stream, const MissingService& service) {
        return stream << service.name;
    }
};

template <typename Test>
void captures(Test& test) {
    const Line line = test.capturesLine("capture-ocr");
    test.waitForWords(line.text);
}

template <typename Test>
void translates(Test& test) {
    test.copyText(sentence);
    test.perform("clipboard-translate");
    test.waitForWords(*pageTranslation(sentence, "zh-Hans"));
}

template <typename Test>
void saysAfter(Test& test, const std::string& action, const std::string& words) {
    EXPECT_EQ(test.perform(action), EXIT_SUCCESS);
    test.waitForWords(words);
}

// What every desktop may lack.
template <typename Test>
std::vector<MissingService<Test>> servicesOfEveryDesktop() {
    return {{.name = "SessionBus",
             .environment = {"DBUS_SESSION_BUS_ADDRESS="},
             .miss =
                 [](Test& t) {
                     EXPECT_EQ(t.perform("history"), EXIT_FAILURE);
                     EXPECT_THAT(t.log(), testing::HasSubstr("ovrin: no session bus: 'ovrin do' cannot reach"));
                     EXPECT_THAT(t.log(), testing::HasSubstr("the running assistant cannot be reached"));
                 },
             .work = [](Test& t) { t.worksWithoutBus(); },
             .sign = Sign::icon},
            {.name = "Tray",
             .miss =
                 [](Test& t) {
                     const NotificationRecorder recorder(t.desktop->busAddress());
                     const auto isTold = [&] {
                         return std::ranges::any_of(recorder.notifications(), [](const auto& notification) {
                             return notification.title == "Ovrin 已启动" &&
                                    notification.body == Test::noticeWithoutTray;
                         });
                     };
                     waitFor("the notification", isTold);
                 },
             .work = translates<Test>,
             .desktop = {.tray = PrivateDesktop::Tray::none, .accessibility = Accessibility::on},
             .sign = Sign::name},
            {.name = "Notifications",
             .miss =
                 [](Test& t) {
                     t.copied = t.capturesLine("silent-capture-ocr").text;
                     t.waitForWords("识别结果已复制");
                 },
             .work = [](Test& t) { t.waitForCopied(t.copied); }},
            {.name = "Keyring",
             .miss = [](Test& t) { saysAfter(t, "settings service", "密钥环不可用，密钥保存在仅您可读的文件中。"); },
             .work = translates<Test>},
            {.name = "Speech",
             .environment = {"PATH=/nowhere"},
             .miss =
                 [](Test& t) {
                     translates(t);
                     t.reader->press(t.reader->waitForName("ovrin", "朗读"));
                 },
             .work = [](Test& t) { t.waitForWords("没有可用的朗读语音。"); }}};
}

template <typename Test>
std::vector<MissingService<Test>> with(std::vector<MissingService<Test>> services) {
    auto all = servicesOfEveryDesktop<Test>();
    std::ranges::move(services, std::back_inserter(all));
    return all;
}

struct MissingServiceTest : DesktopTest, testing::WithParamInterface<MissingService<MissingServiceTest>> {
    using DesktopTest::assistant, DesktopTest::desktop, DesktopTest::reader, DesktopTest::user,
        DesktopTest::waitForWords;

    static constexpr auto noticeWithoutTray = "当前桌面没有系统托盘，请使用快捷键或命令“ovrin do”。";

    int perform(const std::string& action) const { return assistant->run({"do", action}); }
    std::string log() const { return assistant->log(); }
    void copyText(const std::string& text) { openPage().copyText(text); }
    void waitForCopied(const std::string& text) { user->waitForClipboard(text); }
    Line capturesLine(const std::string& action) {
        Line line = openPage().lines()[0];
        perform(action);
        assistant->waitForOverlays();
        user->drag(line.area.topLeft(), line.area.bottomRight());
        return line;
    }
    void worksWithoutBus() {
        copyText(sentence);
        press(Action::clipboardTranslate);
        EXPECT_EQ(lastMessage(waitForExchange(0)), sentence);
    }
    void lacksClipboard(const std::string& sentence) {
        for (const char* const action : {"clipboard-ocr", "clipboard-translate", "replace-selection"}) {
            perform(action);
            expectToast(sentence);
        }
        capturesLine("silent-capture-ocr");
        expectToast(sentence);
    }
    void survivesWithoutWindowManager() {
        saysAfter(*this, "clipboard-ocr", "剪贴板中没有可识别的图片。");
        press(Action::captureOCR);
        assistant->waitForOverlays();
        waitFor("the end of the overlay", [&] {
            user->pressKeys("Escape");  // it has the keyboard a little later
            return assistant->overlays().empty();
        });
    }

    std::string copied;
};

TEST_P(MissingServiceTest, IsSaidAndNothingElseIsLost) {
    const auto& service = GetParam();
    begin({.environment = service.environment,
           .hidden = service.hidden,
           .desktop = service.desktop,
           .sign = service.sign});
    service.miss(*this);
    service.work(*this);
    EXPECT_TRUE(assistant->process().isRunning());
}

INSTANTIATE_TEST_SUITE_P(Desktop, MissingServiceTest,
                         testing::ValuesIn(with<MissingServiceTest>(
                             {{.name = "XTest",
                               .hidden = "XTEST",
                               .miss =
                                   [](auto& t) {
                                       saysAfter(t, "replace-selection",
                                                 "需要辅助功能权限才能读取或替换其他应用中的选中文字。");
                                   },
                               .work = translates<MissingServiceTest>},
                              {.name = "XFixes",
                               .hidden = "XFIXES",
                               .miss = [](auto& t) { t.lacksClipboard("显示服务器缺少 XFixes 扩展，剪贴板不可用。"); },
                               .work = captures<MissingServiceTest>},
                              {.name = "SharedMemory",
                               .hidden = "MIT-SHM",
                               .miss = captures<MissingServiceTest>,  // merely slower
                               .work = [](auto& t) { t.waitForWords("识别结果已复制"); }},
                              {.name = "WindowManager",
                               .miss = [](auto& t) { t.survivesWithoutWindowManager(); },
                               .work = [](auto& t) { saysAfter(t, "command-palette", "命令面板"); },
                               .desktop = {.windowManager = PrivateDesktop::WindowManager::none,
                                           .tray = PrivateDesktop::Tray::none,
                                           .accessibility = Accessibility::on},
                               .sign = Sign::name}})),
                         [](const auto& info) { return info.param.name; });

struct MissingWaylandServiceTest : WaylandDesktopTest,
                                   testing::WithParamInterface<MissingService<MissingWaylandServiceTest>> {
    using WaylandDesktopTest::desktop, WaylandDesktopTest::reader, WaylandDesktopTest::waitForWords;

    static constexpr auto noticeWithoutTray = "当前桌面没有系统托盘，请使用命令“ovrin do”。";

    int perform(const std::string& action) const { return assistant->perform(action); }
    std::string log() const { return desktop->log(); }
    void copyText(const std::string& text) { desktop->copyText(text); }
    void waitForCopied(const std::string& text) { waitForSelected(text); }
    Line capturesLine(const std::string& action) {
        open(Kind::page);
        const double bright = brightness(desktop->picture());
        perform(action);
        waitForOverlay(bright);
        Line line = program->lines()[0];
        user->drag(line.area.topLeft(), line.area.bottomRight());
        return line;
    }
    void worksWithoutBus() const { EXPECT_TRUE(assistant->process().isRunning()); }
    void offersTheReplacement() {
        open(Kind::editor);
        program->selectText(sentence);
        user->click(program->area().center());
        user->pressKeys("Control_L+a");
        waitForSelected(sentence, Selection::primary);
        saysAfter(*this, "replace-selection", "按 Ctrl+V 粘贴");
        waitForSelected(*pageTranslation(sentence, "zh-Hans"));
    }

    std::string copied;
    std::optional<NameHidingSocket> server;
};

TEST_P(MissingWaylandServiceTest, IsSaidAndNothingElseIsLost) {
    if (mayBeSkipped(Compositor::sway)) GTEST_SKIP() << "needs sway";
    const auto& service = GetParam();
    begin({});
    std::vector<std::string> environment = service.environment;
    if (!service.hidden.empty()) {
        const std::string path = desktop->home() / "display";
        server.emplace(path, desktop->display(), service.hidden);
        environment.push_back("WAYLAND_DISPLAY=" + path);
    }
    startAssistant(environment);
    service.miss(*this);
    service.work(*this);
    EXPECT_TRUE(assistant->process().isRunning());
}

INSTANTIATE_TEST_SUITE_P(Desktop, MissingWaylandServiceTest,
                         testing::ValuesIn(with<MissingWaylandServiceTest>(
                             {{.name = "Screencopy",
                               .hidden = "zwlr_screencopy_manager_v1",
                               .miss = [](auto& t) { saysAfter(t, "capture-ocr", "无法截取屏幕：此桌面不支持。"); },
                               .work = translates<MissingWaylandServiceTest>},
                              {.name = "VirtualKeyboard",
                               .hidden = "zwp_virtual_keyboard_manager_v1",
                               .miss = [](auto& t) { t.offersTheReplacement(); },
                               .work = captures<MissingWaylandServiceTest>}})),
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
