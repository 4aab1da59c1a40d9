#include "platform/linux/wayland/kwin_screen_capture.h"

#include <QDBusUnixFileDescriptor>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "base/error.h"
#include "base/running_task.h"
#include "base/worker_executor.h"
#include "fakes/wayland_test_compositor.h"
#include "platform/linux/qt/qt_main_loop.h"
#include "qt_session.h"

namespace ovrin {
namespace {

constexpr std::uint32_t red = 0xFFCC2010, blue = 0xFF1020CC;

// sway says where the outputs are, and the test plays KWin on the bus.
class KWinScreenCaptureTest : public testing::Test {
protected:
    void SetUp() override {
        if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "sway is not installed (Debian package sway)";
        compositor.emplace(std::vector<HeadlessOutput>{{.width = 64, .height = 48},
                                                       {.width = 60, .height = 40, .scale = 1.5, .x = 64}});
        qputenv("WAYLAND_DISPLAY", compositor->display().c_str());
        run([](KWinScreenCapture& from, std::vector<CapturableDisplay>& into) -> Task<void> {
            into = co_await from.displays();
        }(capture, displays));
        ASSERT_EQ(displays.size(), 2U);
    }
    void TearDown() override { qunsetenv("WAYLAND_DISPLAY"); }

    void run(Task<void> task) {
        bool isDone = false;
        TaskGroup tasks(loop);
        const auto finish = [](Task<void> work, bool& done) -> Task<void> {
            co_await std::move(work);
            done = true;
        };
        tasks.start(finish(std::move(task), isDone));
        waitUntil([&] { return isDone; });
    }
    // The pixels of the picture; none, and the failure's words, where there is none.
    std::vector<std::uint32_t> take(std::size_t display, const LocalRect& part, int width, int height) {
        std::vector<std::uint32_t> pixels;
        run(read({.display = displays.at(display).id, .sourceRect = part, .width = width, .height = height}, pixels));
        return pixels;
    }
    Task<void> read(ScreenshotRequest request, std::vector<std::uint32_t>& pixels) {
        try {
            const Image image = co_await capture.screenshot(request);
            pixels.resize(static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()));
            std::memcpy(pixels.data(), image.data(), pixels.size() * sizeof pixels[0]);
        } catch (const Error& error) {
            failure = error.errorDescription();
        }
    }

    // Answers a call with a picture of these pixels in rows of `width`.
    static QDBusMessage answer(const QDBusMessage& call, const std::vector<std::uint32_t>& pixels, uint width,
                               uint height, uint format) {
        const auto pipe = qdbus_cast<QDBusUnixFileDescriptor>(call.arguments().last());
        const std::size_t size = pixels.size() * sizeof pixels[0];
        EXPECT_EQ(write(pipe.fileDescriptor(), pixels.data(), size), static_cast<ssize_t>(size));
        return call.createReply(QVariantMap{
            {"type", "raw"}, {"width", width}, {"height", height}, {"stride", width * 4}, {"format", format}});
    }

    QtSession& session = QtSession::ofProcess();
    std::optional<WaylandTestCompositor> compositor;
    QtMainLoop loop;
    WorkerExecutor workers{1};
    KWinScreenCapture capture{workers};
    std::vector<CapturableDisplay> displays;
    std::string failure;
};

TEST_F(KWinScreenCaptureTest, IsAskedForAccessWhereKWinIsOnTheBus) {
    const auto ask = [this]() -> Task<void> {
        try {
            co_await capture.requestAccess();
        } catch (const Error& error) {
            failure = error.errorDescription();
        }
    };
    run(ask());
    EXPECT_EQ(failure, "无法截取屏幕：此桌面不支持。");
    EXPECT_FALSE(capture.preflightAccess());
    failure.clear();
    const FakeService kwin("org.kde.KWin", "/org/kde/KWin/ScreenShot2", [](const QDBusMessage& call) { return call; });
    run(ask());
    EXPECT_EQ(failure, "");
    EXPECT_TRUE(capture.preflightAccess());
}

TEST_F(KWinScreenCaptureTest, AsksForThePartInNativePixelsAndReadsThem) {
    QVariantList asked;
    std::vector<std::uint32_t> pixels{red, blue};
    uint width = 2;
    uint height = 1;
    uint format = 6;
    const FakeService kwin("org.kde.KWin", "/org/kde/KWin/ScreenShot2", [&](const QDBusMessage& call) {
        EXPECT_EQ(call.interface() + "." + call.member(), "org.kde.KWin.ScreenShot2.CaptureArea");
        EXPECT_EQ(call.signature(), "iiuua{sv}h");
        asked = call.arguments();
        return answer(call, pixels, width, height, format);
    });
    EXPECT_TRUE(KWinScreenCapture::isOffered());
    EXPECT_EQ(take(0, {10, 20, 2, 1}, 2, 1), (std::vector<std::uint32_t>{red, blue}));
    EXPECT_EQ(asked.mid(0, 4), (QVariantList{10, 20, 2U, 1U}));
    EXPECT_EQ(qdbus_cast<QVariantMap>(asked[4]), (QVariantMap{{"native-resolution", true}}));

    // Where a point is a pixel and a half, it comes out of the whole output.
    width = 60;
    height = 40;
    format = 17;
    pixels.assign(std::size_t{60} * 40, 0);
    pixels[std::size_t{60} * 15 + 30] = 0x001020CC;  // red, in the order of bytes that the format says
    EXPECT_EQ(take(1, {20, 10, 1, 1}, 1, 1), std::vector<std::uint32_t>{red});
    EXPECT_EQ(asked.mid(0, 4), (QVariantList{64, 0, 40U, 26U}));
}

TEST_F(KWinScreenCaptureTest, WhoeverIsTurnedAwayOrGetsTooLittleReadsWhy) {
    const auto failureWith = [this](const FakeService::Answer& handle) {
        const FakeService kwin("org.kde.KWin", "/org/kde/KWin/ScreenShot2", handle);
        EXPECT_TRUE(take(0, {0, 0, 2, 1}, 2, 1).empty());
        return failure;
    };
    EXPECT_EQ(failureWith([](const QDBusMessage& call) {
                  return call.createErrorReply("org.kde.KWin.ScreenShot2.Error.NoAuthorized", "not you");
              }),
              "无法截取屏幕：KDE 只允许已安装的程序截图，请先安装 Ovrin。");
    EXPECT_EQ(failureWith([](const QDBusMessage& call) { return answer(call, {red}, 2, 1, 6); }),
              "无法截取屏幕：桌面没有返回图像。");
    EXPECT_EQ(failureWith([](const QDBusMessage& call) { return answer(call, {red}, 2, 1, 24); }),
              "无法截取屏幕：不支持此显示器的像素格式。");
    EXPECT_FALSE(KWinScreenCapture::isOffered());
    EXPECT_TRUE(take(0, {0, 0, 2, 1}, 2, 1).empty());
    EXPECT_EQ(failure, "无法截取屏幕：桌面没有返回图像。");
}

}  // namespace
}  // namespace ovrin
