#include "platform/linux/qt/desktop_loader.h"

#include <QByteArray>
#include <functional>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "base/run_loop.h"
#include "base/worker_executor.h"
#include "fakes/two_seat_compositor.h"
#include "fakes/wayland_test_compositor.h"
#include "platform/linux/qt/qt_image_encoder.h"
#include "platform/linux/qt/window_system.h"
#include "platform/linux/recognition/linux_image_decoder.h"

namespace ovrin {
namespace {

// A variable of the process while it lives.
class Variable {
public:
    Variable(const char* name, const std::string& value) : name_(name), before_(qgetenv(name)) {
        value.empty() ? qunsetenv(name) : qputenv(name, value.c_str());
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { before_.isEmpty() ? qunsetenv(name_) : qputenv(name_, before_); }

private:
    const char* name_;
    QByteArray before_;
};

std::string failure(const std::function<void()>& act) {
    try {
        act();
    } catch (const Error& error) {
        return error.errorDescription();
    }
    return "";
}

struct DesktopLoaderTest : testing::Test {
    std::unique_ptr<ClipboardService> clipboard() { return DesktopLoader().makeClipboard(decoder, encoder, workers); }
    std::string captureFailure() {
        return failure([this] {
            const auto loader = std::make_unique<DesktopLoader>();
            loop.complete(loader->makeScreenCapture(workers)->requestAccess());
        });
    }
    std::string hotKeyFailure() {
        std::string failure;
        const auto hotKeys = DesktopLoader().makeHotKeys(loop);
        hotKeys->setEvents({.keyDown = {},
                            .keyUp = {},
                            .described = {},
                            .failed = [&](const std::string& /*name*/, const std::string& reason) { failure = reason; },
                            .keyboardChanged = {}});
        hotKeys->setHotKeys({{.name = "captureOCR",
                              .title = "截图 OCR",
                              .command = "capture-ocr",
                              .shortcut = {KeyboardShortcuts::Key::c, {}}}});
        return failure;
    }

    LinuxImageDecoder decoder;
    QtImageEncoder encoder;
    RunLoop loop;
    WorkerExecutor workers{1};
    Variable noDisplay{"DISPLAY", ""};
};

TEST_F(DesktopLoaderTest, PicturesOfAWaylandSessionComeFromItsCompositor) {
    if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "needs sway";
    const WaylandTestCompositor compositor({{.width = 640, .height = 480}});
    const Variable display("WAYLAND_DISPLAY", compositor.display());
    const auto screen = DesktopLoader().makeScreenCapture(workers);
    EXPECT_TRUE(screen->preflightAccess());
    const auto displays = loop.complete(screen->displays());
    ASSERT_EQ(displays.size(), 1U);
    EXPECT_EQ(displays.front().frame, (DisplayRect{0, 0, 640, 480}));
}

TEST_F(DesktopLoaderTest, WhatASessionLacksIsSaidAndTheRestIsThere) {
    constexpr const char* noPictures = "无法截取屏幕：此桌面不支持。";
    constexpr const char* noHotKeys =
        "此桌面不支持全局快捷键。请在系统设置中把快捷键绑定到命令“ovrin do capture-ocr”。";
    {
        const TwoSeatCompositor compositor;
        const Variable display("WAYLAND_DISPLAY", compositor.display());
        EXPECT_EQ(captureFailure(), noPictures);
        EXPECT_EQ(hotKeyFailure(), noHotKeys);
        EXPECT_FALSE(DesktopLoader().makeKeyboard()->isTrusted());
        EXPECT_EQ(clipboard()->problem(), std::nullopt);
        // Neither do X11's windows come up there.
        const Variable platform("QT_QPA_PLATFORM", "");
        EXPECT_EQ(
            failure(chooseWindowSystem),
            "此桌面（Wayland）没有同时提供 layer-shell 和 data-control，也没有 XWayland：请安装软件包 xwayland。");
    }
    const Variable display("WAYLAND_DISPLAY", "nobody");
    EXPECT_EQ(captureFailure(), noPictures);
    EXPECT_EQ(hotKeyFailure(), noHotKeys);
    EXPECT_FALSE(DesktopLoader().makeKeyboard()->isTrusted());
    const auto none = clipboard();
    EXPECT_EQ(none->problem(), "没有可用的 X11 显示服务器。");
    EXPECT_EQ(failure([&] { loop.complete(none->readString()); }), "没有可用的 X11 显示服务器。");
    const Variable platform("QT_QPA_PLATFORM", "");
    EXPECT_EQ(failure(chooseWindowSystem), "无法连接到桌面（Wayland）。");
}

}  // namespace
}  // namespace ovrin
