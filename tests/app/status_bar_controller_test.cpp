#include "app/status_bar_controller.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/tray_notice.h"
#include "base/virtual_loop.h"
#include "fakes/fake_application_actions.h"
#include "fakes/fake_assistant_actions.h"
#include "fakes/fake_presenters.h"
#include "fakes/fake_status_item.h"
#include "shortcuts/shortcut_fixture.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

class StatusBarControllerTest : public ShortcutTest {
protected:
    StatusBarControllerTest() {
        for (const auto& shortcut : allOvShortcutNames()) registry.add(shortcut);
        registry.onKeyDown(name(OvShortcut::captureTranslate), add("shortcut"));
        journal.take();
    }

    // "title [keys] >" of each line, those that can't be chosen in brackets, submenus indented.
    static std::vector<std::string> lines(const Menu& menu, const std::string& indentation = "") {
        std::vector<std::string> result;
        for (const MenuItem& item : menu) {
            std::string line = item.isSeparator() ? "---" : item.title;
            if (!item.keyEquivalent.empty()) line += " " + item.keyEquivalent;
            if (!item.isEnabled) line = "(" + line + ")";
            result.push_back(indentation + line);
            for (const auto& inner : lines(item.submenu, indentation + "  ")) result.push_back(inner);
        }
        return result;
    }

    // What each item does, in the order of the menu.
    void chooseAll(const Menu& menu) {
        for (const MenuItem& item : menu) {
            if (item.action) item.action();
            chooseAll(item.submenu);
        }
    }

    bool hasLine(const std::string& line) { return std::ranges::count(lines(controller->makeMenu()), line) == 1; }

    VirtualLoop loop;
    FakeStatusItem statusItem{journal};
    FakeNotificationCenter notifications{journal};
    FakeAssistantActions actions{journal};
    FakeApplicationActions application{journal};
    Published<bool> isCapturing;
    Published<std::optional<std::string>> activityText;
    bool isModelReady = true;
    bool hasTranslation = false;
    std::unique_ptr<StatusBarController> controller =
        std::make_unique<StatusBarController>(StatusBarController::Surroundings{
            .loop = loop,
            .statusItem = statusItem,
            .actions = actions,
            .application = application,
            .registry = registry,
            .isCapturing = isCapturing,
            .activityText = activityText,
            .isModelReady = [this] { return isModelReady; },
            .hasTranslationResult = [this] { return hasTranslation; },
        });
};

TEST_F(StatusBarControllerTest, TheMenuHoldsEverythingInOrder) {
    registry.setShortcut(std::nullopt, name(OvShortcut::askWhatIsThis));
    EXPECT_EQ(lines(controller->makeMenu()), (std::vector<std::string>{"截图 OCR",     "截图翻译 Super+Shift+T",
                                                                       "截图问 AI",    "TalkBox Super+Shift+W",
                                                                       "输入翻译",     "命令面板",
                                                                       "---",          "划词与静默操作",
                                                                       "  划词翻译",   "  静默划词翻译",
                                                                       "  替换为译文", "  静默截图 OCR",
                                                                       "剪贴板",       "  剪贴板 OCR",
                                                                       "  剪贴板翻译", "显示上次结果",
                                                                       "历史记录",     "---",
                                                                       "检查更新…",    "设置… Ctrl+,",
                                                                       "---",          "退出 Ovrin Ctrl+Q"}));
}

TEST_F(StatusBarControllerTest, EveryItemDoesWhatItSays) {
    const Menu menu = controller->makeMenu();
    controller.reset();  // a menu that is still open keeps working
    chooseAll(menu);
    EXPECT_EQ(journal.take(),
              (Events{"captureOCR", "captureTranslate", "captureWhatIsThis", "showDirectAI", "showInputTranslate",
                      "showCommandPalette", "selectionTranslate", "silentSelectionTranslate", "replaceSelection",
                      "silentCaptureOCR", "clipboardOCR", "clipboardTranslate", "toast 还没有识别或翻译结果 clock",
                      "showHistory", "checkForUpdates", "showSettings", "quit"}));
}

TEST_F(StatusBarControllerTest, TheStatusRowTellsWhatRunsOrWhatIsMissing) {
    isModelReady = false;
    activityText.set("正在识别文字");
    EXPECT_TRUE(hasLine("(正在识别文字)"));
    EXPECT_FALSE(hasLine("(请配置模型服务)"));
    activityText.set(std::nullopt);
    EXPECT_TRUE(hasLine("(请配置模型服务)"));
    isModelReady = true;
    EXPECT_FALSE(hasLine("(请配置模型服务)"));
}

TEST_F(StatusBarControllerTest, UpdatesCannotBeLookedForWhereTheBuildKnowsNoFeed) {
    application.knowsUpdates = false;
    EXPECT_TRUE(hasLine("(检查更新…)"));
}

TEST_F(StatusBarControllerTest, OnlyKeysOfItsOwnBelongToAnItem) {
    using namespace KeyboardShortcuts;
    constexpr Key comma{43};
    EXPECT_EQ(controller->itemUsing(Shortcut(comma, Modifiers::control), layout), "设置…");
    EXPECT_EQ(controller->itemUsing(Shortcut(comma, Modifiers::command), layout), std::nullopt);
    EXPECT_EQ(controller->itemUsing(commandShiftT, layout), std::nullopt);
}

TEST_F(StatusBarControllerTest, ALeftClickBringsTheTranslationBackAndARightClickAlwaysOpensTheMenu) {
    statusItem.events.leftClicked();
    EXPECT_EQ(journal.take(), Events{"menu"});
    hasTranslation = actions.hasLatestResult = true;
    statusItem.events.leftClicked();
    EXPECT_EQ(journal.take(), Events{"showLatestResult"});
    statusItem.events.rightClicked();
    EXPECT_EQ(journal.take(), Events{"menu"});
}

TEST_F(StatusBarControllerTest, TheIconIsDimWhileACaptureRuns) {
    EXPECT_EQ(statusItem.toolTip, "Ovrin · 左键显示翻译结果，右键打开菜单");
    EXPECT_EQ(statusItem.alpha, 1);
    isCapturing.set(true);
    EXPECT_EQ(statusItem.alpha, 0.58);
    isCapturing.set(false);
    EXPECT_EQ(statusItem.alpha, 1);
}

TEST_F(StatusBarControllerTest, ShortcutsBelongToTheMenuWhileItIsOpen) {
    statusItem.events.menuWillOpen();
    EXPECT_FALSE(hotKeys.press(commandShiftT));
    loop.advance(1h);
    EXPECT_FALSE(hotKeys.press(commandShiftT));
    statusItem.events.menuDidClose();
    EXPECT_TRUE(hotKeys.press(commandShiftT));

    statusItem.events.menuWillOpen();
    controller.reset();
    EXPECT_TRUE(hotKeys.press(commandShiftT));
    EXPECT_FALSE(statusItem.events.leftClicked);
}

TEST_F(StatusBarControllerTest, AHostThatNeverTellsOfItsMenusEndKeepsTheShortcutsForHalfAMinute) {
    statusItem.events.hostMenuDidOpen();
    loop.advance(20s);
    statusItem.events.hostMenuWillOpen();
    loop.advance(29s);
    EXPECT_FALSE(hotKeys.press(commandShiftT));
    loop.advance(1s);
    EXPECT_TRUE(hotKeys.press(commandShiftT));
    EXPECT_EQ(lines(statusItem.events.makeMenu()), lines(controller->makeMenu()));

    // One that only asks for the lines does not keep them for so long.
    statusItem.events.hostMenuWillOpen();
    EXPECT_FALSE(hotKeys.press(commandShiftT));
    loop.advance(3s);
    EXPECT_TRUE(hotKeys.press(commandShiftT));

    // A limit that is over is none of the next menu.
    statusItem.events.hostMenuDidOpen();
    statusItem.events.menuDidClose();
    statusItem.events.menuWillOpen();
    loop.advance(30s);
    EXPECT_FALSE(hotKeys.press(commandShiftT));
}

TEST_F(StatusBarControllerTest, TheToolTipPromisesNoClickThatNobodyHearsOf) {
    statusItem.clicking.set(StatusItem::LeftClick::opensHostMenu);
    EXPECT_EQ(statusItem.toolTip, "Ovrin");
}

TEST_F(StatusBarControllerTest, AMissingTrayIsToldOnceAndNotBeforeTheDesktopHasSaidSo) {
    using Visibility = StatusItem::Visibility;
    const auto told = [&](Visibility atFirst, Visibility later) {
        statusItem.isVisible.set(atFirst);
        TrayNotice notice({.loop = loop, .statusItem = statusItem, .hotKeys = hotKeys, .notifications = notifications});
        notice.start();
        loop.advance(5s);
        statusItem.isVisible.set(later);
        statusItem.isVisible.set(Visibility::shown);
        statusItem.isVisible.set(Visibility::nowhere);
        return journal.take().size();
    };
    EXPECT_EQ(told(Visibility::unknown, Visibility::unknown), 0);
    EXPECT_EQ(told(Visibility::unknown, Visibility::nowhere), 1);
    EXPECT_EQ(told(Visibility::nowhere, Visibility::nowhere), 1);
}

}  // namespace
}  // namespace ovrin
