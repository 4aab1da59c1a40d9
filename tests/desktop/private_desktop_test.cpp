// The private desktop and its user themselves: what the scenarios rely on.
#include "desktop/private_desktop.h"

#include <filesystem>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "desktop/notification_recorder.h"
#include "desktop/sample_program.h"
#include "desktop/screen_reader.h"
#include "desktop/test_user.h"

namespace ovrin {
namespace {

const std::string sampleProgram = OVRIN_BINARY_DIR "/ovrin_sample_program";

bool hasInk(const QImage& image) {
    for (int x = 0; x < image.width(); ++x) {
        if (qGray(image.pixel(x, image.height() / 2)) < 100) return true;
    }
    return false;
}

TEST(PrivateDesktopTest, TheUserTypesSelectsAndCopiesInAnotherProgram) {
    const PrivateDesktop desktop({.tray = PrivateDesktop::Tray::none});
    TestUser user(desktop.display());
    SampleProgram editor(desktop, user, sampleProgram, SampleProgram::Kind::editor);
    user.click(editor.window().area.center());
    user.type("Hello, World! (1)\n");
    waitFor("the text", [&] { return editor.text() == "Hello, World! (1)\n"; });

    user.pressKeys("Control_L+a");
    user.pressKeys("Control_L+c");
    user.waitForClipboard("Hello, World! (1)\n");
    const int changes = user.clipboardChanges();
    editor.copyText("中文");
    user.waitForClipboard("中文");
    EXPECT_EQ(user.clipboardChanges(), changes + 1);
    editor.clearClipboard();
    user.waitForClipboard("");

    // Dragging over the text selects it.
    editor.selectText("drag over these words");
    const PixelArea area = editor.window().area;
    user.click({.x = area.x + 300, .y = area.y + 200});
    user.drag({.x = area.x + 6, .y = area.y + 16}, {.x = area.x + 500, .y = area.y + 16});
    user.pressKeys("Control_L+c");
    user.waitForClipboard("drag over these words");
}

TEST(PrivateDesktopTest, ThePageIsWhereItSaysAndIsSeen) {
    const PrivateDesktop desktop({});
    TestUser user(desktop.display());
    SampleProgram page(desktop, user, sampleProgram, SampleProgram::Kind::page);
    const auto lines = page.lines();
    ASSERT_GE(lines.size(), 10U);
    for (const auto& line : lines) user.waitForPicture("ink in " + line.text, line.area, hasInk);
    user.savePicture(page.window().area.grownBy(40), std::filesystem::path(OVRIN_BINARY_DIR) / "desktop/page.png");
}

TEST(PrivateDesktopTest, WhatWindowsSayCanBeRead) {
    const PrivateDesktop desktop(
        {.tray = PrivateDesktop::Tray::none, .accessibility = PrivateDesktop::Accessibility::on});
    const TestUser user(desktop.display());
    SampleProgram editor(desktop, user, sampleProgram, SampleProgram::Kind::editor);
    editor.selectText("read me");
    const ScreenReader reader(desktop.bus());
    const auto element = reader.waitForWords("ovrin_sample_program", "read me");
    EXPECT_EQ(element.text, "read me");
    EXPECT_TRUE(editor.window().area.contains(element.area.center()));
    EXPECT_FALSE(reader.shows("ovrin_sample_program", "read you"));
}

TEST(PrivateDesktopTest, NotificationsAreRecordedUntilTheRecorderEnds) {
    const PrivateDesktop desktop({.compositor = PrivateDesktop::Compositor::none, .tray = PrivateDesktop::Tray::none});
    auto recorder = std::make_unique<NotificationRecorder>(desktop.busAddress());
    const auto notify = [&] {
        desktop.bus().call({.destination = "org.freedesktop.Notifications",
                            .path = "/org/freedesktop/Notifications",
                            .interface = "org.freedesktop.Notifications",
                            .name = "Notify"},
                           g_variant_new("(susss@as@a{sv}i)", "program", 0U, "", "title", "body",
                                         g_variant_new_array(G_VARIANT_TYPE_STRING, nullptr, 0),
                                         g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0), -1));
    };
    notify();
    ASSERT_EQ(recorder->notifications().size(), 1U);
    EXPECT_EQ(recorder->notifications()[0].title, "title");
    EXPECT_EQ(recorder->notifications()[0].body, "body");
    EXPECT_THROW(NotificationRecorder(desktop.busAddress()), Error);
    recorder.reset();
    EXPECT_THROW(notify(), Error);
}

TEST(PrivateDesktopTest, EveryPartOfItComesUp) {
    const PrivateDesktop desktop({.width = 1600,
                                  .height = 900,
                                  .monitors = {{"LEFT", {0, 0, 800, 900}}, {"RIGHT", {800, 0, 800, 900}}},
                                  .tray = PrivateDesktop::Tray::lxqtPanel,
                                  .notifications = PrivateDesktop::Notifications::dunst,
                                  .accessibility = PrivateDesktop::Accessibility::on});
    const TestUser user(desktop.display());
    EXPECT_NE(user.view().selectionOwner("_NET_WM_CM_S0"), static_cast<xcb_window_t>(XCB_WINDOW_NONE));
    EXPECT_THAT(desktop.bus().names(), testing::IsSupersetOf({"org.kde.StatusNotifierWatcher", "org.a11y.Bus",
                                                              "org.freedesktop.Notifications"}));
}

}  // namespace
}  // namespace ovrin
