// The icon in the tray with its menu, the command palette, and the program's life.
#include <chrono>
#include <csignal>
#include <fstream>
#include <string>
#include <vector>

#include <gio/gio.h>

#include "desktop/desktop_test.h"

namespace ovrin {
namespace {

struct TrayTest : DesktopTest {
    const std::string program = OVRIN_BINARY_DIR "/ovrin";
};

TEST_F(TrayTest, TheMenuOpensByEitherButtonAndStartsACapture) {
    begin();
    const auto line = openPage().lines()[0];
    DesktopWindow menu = openMenu(TestUser::Button::right);
    user->pressKeys("Escape");
    user->waitUntilGone(menu.id);

    menu = openMenu(TestUser::Button::left);  // there is no result to show yet
    user->pressKeys("Down");
    user->pressKeys("Return");
    assistant->waitForOverlays();
    user->drag(line.area.topLeft(), line.area.bottomRight());
    user->waitForClipboard(line.text);
}

TEST_F(TrayTest, AClickBringsTheLastTranslationBack) {
    begin();
    auto& page = openPage();
    page.copyText(page.lines()[3].text);
    press(Action::clipboardTranslate);
    DesktopWindow panel = assistant->waitForPanel();
    waitForHistory(1, Result::some);
    clickOn("关闭");
    user->waitUntilGone(panel.id);
    user->click(assistant->waitForTrayIcon().area.center());
    panel = assistant->waitForPanel();
    user->waitUntilActive(panel.id);
    openMenu(TestUser::Button::right);
}

TEST_F(TrayTest, WhileTheMenuIsOpenShortcutsBelongToIt) {
    begin();
    const std::string combination = "Super_L+Shift_L+o";
    EXPECT_TRUE(user->isTaken(combination));
    const DesktopWindow menu = openMenu(TestUser::Button::right);
    waitFor("the shortcuts to rest", [&] { return !user->isTaken(combination); });
    waitFor("the menu to have the keyboard and run it", [&] {
        press(Action::captureOCR);
        return !assistant->overlays().empty();
    });
    user->waitUntilGone(menu.id);
    waitFor("the shortcuts to come back", [&] { return user->isTaken(combination); });
}

TEST_F(TrayTest, IsAStatusNotifierItemWhereThePanelWantsOne) {
    begin({.desktop = {.tray = PrivateDesktop::Tray::lxqtPanel, .accessibility = PrivateDesktop::Accessibility::on}});
    EXPECT_FALSE(assistant->trayIcon());
    const PixelArea icon{.x = 1888, .y = 1048, .width = 32, .height = 32};
    user->waitForPicture("the icon", icon, [](const QImage& picture) { return contrast(picture) > 100; });
    user->click(icon.center(), TestUser::Button::left);
    const DesktopWindow menu = assistant->waitForMenu();
    EXPECT_LT(menu.area.y + menu.area.height, icon.y + icon.height);
    user->pressKeys("Escape");
    user->waitUntilGone(menu.id);

    // A right click opens a menu of the panel.
    const std::string combination = "Super_L+Shift_L+o";
    waitFor("the shortcuts", [&] { return user->isTaken(combination); });
    user->click(icon.center(), TestUser::Button::right);
    waitFor("the shortcuts to rest", [&] { return !user->isTaken(combination); });
    user->waitForWindow({.program = "lxqt-panel", .type = "_NET_WM_WINDOW_TYPE_POPUP_MENU"});
    user->pressKeys("Down");
    user->pressKeys("Return");
    assistant->waitForOverlays();
    EXPECT_TRUE(user->isTaken(combination));
}

TEST_F(TrayTest, QuitsByItsMenuAndEndsWhenTold) {
    begin();
    openMenu(TestUser::Button::right);
    user->pressKeys("Up");  // from nowhere to the last item
    user->pressKeys("Return");
    EXPECT_EQ(assistant->process().waitForEnd(), 0);

    begin();
    assistant->process().signal(SIGTERM);
    EXPECT_EQ(assistant->process().waitForEnd(), 0);

    // Windows that are open, or were, don't hold it.
    begin();
    auto& page = openPage();
    page.copyText(page.lines()[3].text);
    press(Action::clipboardTranslate);
    assistant->waitForPanel();
    press(Action::commandPalette);
    assistant->waitForPalette();
    EXPECT_EQ(assistant->run({"do", "quit"}), 0);
    EXPECT_EQ(assistant->process().waitForEnd(), 0);
}

TEST_F(TrayTest, QuitsAlthoughTheSecretServiceDoesNotAnswer) {
    begin({.preferences = {{"ovrin.apiKey", "sk-old"}}, .secretService = Scene::SecretService::mute});
    assistant->process().signal(SIGTERM);
    constexpr std::chrono::seconds lessThanOneAnswerMayTake{8};
    EXPECT_EQ(assistant->process().waitForEnd(lessThanOneAnswerMayTake), 0);
}

TEST_F(TrayTest, ASecondStartAndOtherProcessesReachTheRunningOne) {
    begin();
    EXPECT_EQ(assistant->run({"do", "capture-ocr"}), 0);
    assistant->waitForOverlays();
    waitFor("the end of the overlay", [&] {
        user->pressKeys("Escape");  // it has the keyboard a little later
        return assistant->overlays().empty();
    });
    // Without a window it shows the settings, else the window that was used last.
    EXPECT_EQ(assistant->run({}), 0);
    user->waitUntilActive(user->waitForWindow({.title = "Ovrin 设置", .program = "ovrin"}).id);
    EXPECT_EQ(assistant->run({"do", "input-translate"}), 0);
    const DesktopWindow used = user->waitForWindow({.title = "输入翻译 — Ovrin", .program = "ovrin"});
    user->waitUntilActive(used.id);
    openPage();
    EXPECT_EQ(assistant->run({"--autostart"}), 0);
    EXPECT_NE(user->view().activeWindow(), used.id) << "what starts with the session brings nothing up";
    EXPECT_EQ(assistant->run({}), 0);
    user->waitUntilActive(used.id);
    EXPECT_TRUE(assistant->process().isRunning());
    assistant->process().signal(SIGSTOP);
    EXPECT_EQ(assistant->run({}), 1);
}

TEST_F(TrayTest, CommandsStartTheAssistantWhereNoneRuns) {
    begin();
    auto& page = openPage();
    assistant->process().signal(SIGTERM);
    EXPECT_EQ(assistant->process().waitForEnd(), 0);
    for (const char* const command : {"quit", "reload"}) EXPECT_EQ(assistant->run({"do", command}), 1);
    EXPECT_EQ(desktop->start({.arguments = {program, "do", "history"}, .environment = {"DISPLAY="}})->waitForEnd(), 1);

    // Two at once start one, which has the key of their environment.
    page.copyText(page.lines()[3].text);
    service.acceptOnly("sk-handed");
    const std::vector<std::string> environment{"OVRIN_BASE_URL=" + service.baseURL(), "OVRIN_API_KEY=sk-handed",
                                               "OVRIN_API_STANDARD=openai-compatible"};
    const auto run = [&](const std::string& command) {
        return desktop->start({.arguments = {program, "do", command}, .environment = environment});
    };
    const auto translating = run("clipboard-translate");
    const auto showing = run("history");
    EXPECT_EQ(translating->waitForEnd(), 0);
    EXPECT_EQ(showing->waitForEnd(), 0);
    user->waitForWindow({.title = "历史记录 — Ovrin", .program = "ovrin"});
    EXPECT_EQ(waitForExchange(0).state, PracticeService::Exchange::State::complete);
    EXPECT_EQ(assistant->run({"do", "quit"}), 0);
    waitFor("its end", [&] { return !desktop->bus().hasOwner("com.quel.ovrin"); });
}

TEST_F(TrayTest, TheBusStartsTheAssistantForLaunchersAndCommands) {
    begin();
    assistant->process().signal(SIGTERM);
    EXPECT_EQ(assistant->process().waitForEnd(), 0);
    std::ofstream(desktop->servicesFolder() / "com.quel.ovrin.service")
        << "[D-BUS Service]\nName=com.quel.ovrin\nExec=" << program << " --bus-activated\n";
    const auto call = [&](const char* name, const char* path, const char* interface, const char* method,
                          GVariant* arguments) {
        EXPECT_NE(g_dbus_connection_call_sync(desktop->bus().connection(), name, path, interface, method, arguments,
                                              nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr),
                  nullptr)
            << method;
    };
    // As session managers do.
    GVariantBuilder variables;
    g_variant_builder_init(&variables, G_VARIANT_TYPE("a{ss}"));
    for (const std::string& variable : desktop->environment()) {
        const auto equals = variable.find('=');
        g_variant_builder_add(&variables, "{ss}", variable.substr(0, equals).c_str(),
                              variable.substr(equals + 1).c_str());
    }
    call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "UpdateActivationEnvironment",
         g_variant_new("(a{ss})", &variables));

    const auto activate = [&] {
        call("com.quel.ovrin", "/com/quel/ovrin", "org.freedesktop.Application", "Activate",
             g_variant_new("(@a{sv})", g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0)));
    };
    activate();
    assistant->waitForTrayIcon();
    EXPECT_TRUE(user->find({.title = "Ovrin 设置"}).empty()) << "it was started, not started again";
    activate();
    user->waitForWindow({.title = "Ovrin 设置", .program = "ovrin"});
    EXPECT_EQ(assistant->run({"do", "quit"}), 0);
    waitFor("its end", [&] { return !desktop->bus().hasOwner("com.quel.ovrin"); });
    EXPECT_EQ(assistant->run({"do", "history"}), 0);
    user->waitForWindow({.title = "历史记录 — Ovrin", .program = "ovrin"});
    EXPECT_EQ(assistant->run({"do", "quit"}), 0);
}

TEST_F(TrayTest, ACommandStartsTheAssistantWhereTheBusCannot) {
    begin();
    assistant->process().signal(SIGTERM);
    EXPECT_EQ(assistant->process().waitForEnd(), 0);
    std::ofstream(desktop->servicesFolder() / "com.quel.ovrin.service")
        << "[D-BUS Service]\nName=com.quel.ovrin\nExec=/bin/false\n";
    EXPECT_EQ(assistant->run({"do", "history"}), 0);
    user->waitForWindow({.title = "历史记录 — Ovrin", .program = "ovrin"});
    EXPECT_EQ(assistant->run({"do", "quit"}), 0);
}

TEST_F(TrayTest, TakesOverWhatIsConfiguredWhileItRuns) {
    begin();
    constexpr int keyJ = 38;
    const std::string moved = Assistant::shortcut(keyJ, {Assistant::Modifier::super, Assistant::Modifier::shift});
    EXPECT_EQ(assistant->run({"config", "set", "KeyboardShortcuts_ovrin.commandPalette", moved}), 0);
    user->pressKeys("Super_L+Shift_L+j");
    assistant->waitForPalette();
    EXPECT_FALSE(user->isTaken("Super_L+Shift_L+p"));
}

TEST_F(TrayTest, EndsInOrderWhereTheBusItWasToldOfIsDead) {
    begin();
    assistant->process().signal(SIGTERM);
    EXPECT_EQ(assistant->process().waitForEnd(), 0);
    const auto other = desktop->start(
        {.arguments = {OVRIN_BINARY_DIR "/ovrin"}, .environment = {"DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent"}});
    assistant->waitForTrayIcon();
    other->signal(SIGTERM);
    EXPECT_EQ(other->waitForEnd(), 0);
}

TEST_F(TrayTest, OutlivesItsTrayAndItsCompositor) {
    begin();
    desktop->restartTray();
    openMenu(TestUser::Button::right);
    user->pressKeys("Escape");

    desktop->killCompositor();
    const auto line = openPage().lines()[0];
    capture(Action::captureOCR, line.area);
    user->waitForClipboard(line.text);
}

struct PaletteTest : DesktopTest {};

TEST_F(PaletteTest, FindsACommandAndRunsIt) {
    begin();
    press(Action::commandPalette);
    DesktopWindow palette = assistant->waitForPalette();
    user->waitUntilActive(palette.id);
    EXPECT_NEAR(palette.area.center().x, 960, 2);
    EXPECT_EQ(user->view().numbers(palette.id, "_NET_WM_DESKTOP"), std::vector<std::uint32_t>{0xFFFFFFFF});
    user->type("ocr");
    user->pressKeys("Down");
    user->pressKeys("Down");
    user->pressKeys("Return");  // the third with these letters reads the clipboard
    user->waitUntilGone(palette.id);
    expectToast("剪贴板中没有可识别的图片。");

    press(Action::commandPalette);
    palette = assistant->waitForPalette();
    user->waitUntilActive(palette.id);
    user->pressKeys("Tab");  // to its button, which leaves the list to the keyboard
    user->type("ocr");
    user->pressKeys("Return");
    assistant->waitForOverlays();
}

TEST_F(PaletteTest, ClosesByEscapeByItsShortcutAndWhenTheUserTurnsAway) {
    begin();
    auto& page = openPage();
    const auto open = [&] {
        press(Action::commandPalette);
        const DesktopWindow palette = assistant->waitForPalette();
        user->waitUntilActive(palette.id);
        return palette.id;
    };
    xcb_window_t palette = open();
    user->pressKeys("Escape");
    user->waitUntilGone(palette);
    palette = open();
    press(Action::commandPalette);
    user->waitUntilGone(palette);
    palette = open();
    user->click({.x = page.window().area.x + 10, .y = page.window().area.y + 10});
    user->waitUntilGone(palette);
    EXPECT_EQ(user->view().activeWindow(), page.window().id);
}

}  // namespace
}  // namespace ovrin
