#include "recognition/screen_capture_service.h"

#include <gtest/gtest.h>

#include "base/run_loop.h"
#include "fakes/fake_screen_capture.h"
#include "fakes/journal.h"
#include "recognition/ocr_engine_error.h"

namespace ovrin {
namespace {

class ScreenCaptureServiceTest : public testing::Test {
protected:
    ScreenCaptureServiceTest() {
        screen_.listed = {{.id = DisplayId{7}, .frame = {0, 0, 1000, 800}, .scaleFactor = 1},
                          {.id = DisplayId{9}, .frame = {-500, -100, 500, 400}, .scaleFactor = 2}};
    }

    ScreenshotRequest requestFor(DisplayRect rect) {
        screen_.picture.succeed(Image(1, 1, {0, 0, 0, 255}));
        loop_.complete(service_.capture(rect));
        return screen_.lastRequest;
    }

    void refuses(DisplayRect rect) {
        try {
            loop_.complete(service_.capture(rect));
            FAIL() << "expected an error";
        } catch (const OCREngineError& error) {
            EXPECT_EQ(error.errorDescription(), "无法读取截图图像。");
        }
        EXPECT_TRUE(journal_.events().empty());
    }

    RunLoop loop_;
    Journal journal_;
    FakeScreenCapture screen_{journal_};
    ScreenCaptureService service_{screen_};
};

TEST_F(ScreenCaptureServiceTest, CapturesInTheDisplaysOwnSpaceAndPixels) {
    const auto request = requestFor({-490, -90, 100.75, 50});
    EXPECT_EQ(request.display, DisplayId{9});
    EXPECT_EQ(request.sourceRect, (LocalRect{10, 10, 100.75, 50}));
    EXPECT_EQ(request.width, 201);
    EXPECT_EQ(request.height, 100);
}

TEST_F(ScreenCaptureServiceTest, CapturesOnlyThePartOnTheFirstListedDisplayItTouches) {
    auto request = requestFor({-100, 50, 300, 900});
    EXPECT_EQ(request.display, DisplayId{7});
    EXPECT_EQ(request.sourceRect, (LocalRect{0, 50, 200, 750}));

    // Touching an edge is not enough; a sliver still gives a picture.
    request = requestFor({-100, 50, 100, 10});
    EXPECT_EQ(request.display, DisplayId{9});
    request = requestFor({-100, 50, 100.5, 10});
    EXPECT_EQ(request.display, DisplayId{7});
    EXPECT_EQ(request.width, 2);
}

TEST_F(ScreenCaptureServiceTest, RefusesWhatIsTooSmallOrOnNoDisplay) {
    refuses({10, 10, 1.9, 50});
    refuses({10, 10, 50, 1.9});
    refuses({2000, 10, 50, 50});
    screen_.listed.clear();
    refuses({10, 10, 50, 50});
}

}  // namespace
}  // namespace ovrin
