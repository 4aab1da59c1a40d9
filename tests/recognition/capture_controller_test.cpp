#include "recognition/capture_controller.h"

#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/virtual_loop.h"
#include "fakes/fake_screen_capture.h"
#include "fakes/journal.h"
#include "recognition/capture_geometry.h"

namespace ovrin {
namespace {

TEST(CaptureGeometry, ASelectionIsTheSameWhicheverWayItIsDragged) {
    const LocalRect expected{10, 20, 30, 40};
    EXPECT_EQ(capture::selectionBetween({10, 20}, {40, 60}), expected);
    EXPECT_EQ(capture::selectionBetween({40, 60}, {10, 20}), expected);
    EXPECT_EQ(capture::selectionBetween({40, 20}, {10, 60}), expected);
    EXPECT_TRUE(capture::isSelection({0, 0, 5, 5}));
    EXPECT_FALSE(capture::isSelection({0, 0, 4, 40}));
}

TEST(CaptureGeometry, TheSizeLabelStaysInsideTheScreen) {
    const LocalRect bounds{0, 0, 1920, 1080};
    const Size text{59.4, 13};
    EXPECT_EQ(capture::sizeLabelText({0, 0, 640.9, 480.2}), "640 × 480");
    EXPECT_EQ(capture::sizeLabelFrame({300, 400, 200, 100}, bounds, text), (LocalRect{300, 508, 76, 22}));
    // Less than 42 points of room below: above the selection, and below the top edge of the screen.
    EXPECT_EQ(capture::sizeLabelFrame({300, 938, 200, 100}, bounds, text).y, 1046);
    EXPECT_EQ(capture::sizeLabelFrame({300, 939, 200, 100}, bounds, text).y, 909);
    EXPECT_EQ(capture::sizeLabelFrame({300, 0, 200, 1080}, bounds, text).y, 12);
    EXPECT_EQ(capture::sizeLabelFrame({0, 400, 50, 50}, bounds, text).x, 12);
    EXPECT_EQ(capture::sizeLabelFrame({1900, 400, 20, 50}, bounds, text).x, 1832);
}

TEST(CaptureGeometry, TheHintHangsUnderTheTopEdge) {
    const auto layout = capture::hintLayout({0, 0, 1000, 600}, {75.2, 15}, {16.5, 13});
    EXPECT_EQ(layout.pill, (LocalRect{425, 24, 150, 36}));
    EXPECT_EQ(layout.hintOrigin, (LocalPoint{439, 34.5}));
    EXPECT_EQ(layout.keyBox, (LocalRect{535, 32, 30, 20}));
}

class FakeOverlays final : public CaptureOverlays {
public:
    struct Window final : CaptureOverlayWindow {
        explicit Window(int& shown) : count(shown) { ++count; }
        Window(const Window&) = delete;
        Window& operator=(const Window&) = delete;
        ~Window() override { --count; }
        int& count;
    };

    std::vector<DisplayRect> screenFrames() override { return frames; }
    bool needBackdrops() override { return areOpaque; }
    std::unique_ptr<CaptureOverlayWindow> show(const DisplayRect& /*screenFrame*/, std::optional<Image> backdrop,
                                               Callbacks given) override {
        backdropWidths.push_back(backdrop ? backdrop->width() : 0);
        callbacks.push_back(std::move(given));
        return std::make_unique<Window>(onScreen);
    }
    void activateApplication() override {}

    std::vector<DisplayRect> frames{{0, 0, 1920, 1080}, {-1280, -20, 1280, 800}};
    bool areOpaque = false;
    std::vector<Callbacks> callbacks;
    std::vector<int> backdropWidths;  // 0 for none
    int onScreen = 0;
};

struct CaptureControllerTest : ::testing::Test {
    RegionSelector::Completion completion() {
        return [this](RegionSelector::Result result) {
            EXPECT_EQ(overlays.onScreen, 0) << "nothing of the overlays may be on screen any more";
            results.push_back(std::move(result));
        };
    }

    VirtualLoop loop;
    Journal journal;
    FakeScreenCapture screen{journal};
    FakeOverlays overlays;
    int settingsHidden = 0;
    std::vector<RegionSelector::Result> results;
    CaptureController controller{loop, overlays, screen, [this] { ++settingsHidden; }};
};

TEST_F(CaptureControllerTest, TheFirstOverlayToReportEndsTheSelectionOnAllDisplays) {
    controller.begin(completion());
    EXPECT_EQ(settingsHidden, 1);
    EXPECT_EQ(overlays.onScreen, 2);
    overlays.callbacks[1].onSelection({-1270, 710, 100, 50});
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(std::get<DisplayRect>(results[0]), (DisplayRect{-1270, 710, 100, 50}));
    EXPECT_FALSE(controller.isSelecting());
}

TEST_F(CaptureControllerTest, EscapeIsACancellation) {
    controller.begin(completion());
    overlays.callbacks[0].onCancel();
    ASSERT_EQ(results.size(), 1U);
    EXPECT_THROW(std::rethrow_exception(std::get<std::exception_ptr>(results[0])), CancellationError);
}

TEST_F(CaptureControllerTest, ANewSelectionDropsTheOldCompletionUncalled) {
    int calls = 0;
    controller.begin([&calls](const RegionSelector::Result& /*result*/) { ++calls; });
    controller.begin(completion());
    EXPECT_EQ(overlays.onScreen, 2);
    overlays.callbacks[2].onSelection({0, 0, 10, 10});
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(results.size(), 1U);
}

TEST_F(CaptureControllerTest, WhenADisplayIsUnpluggedTheUserGoesOnWithTheOthers) {
    controller.begin(completion());
    overlays.frames = {{0, 0, 1280, 800}};
    overlays.callbacks[0].onScreensChanged();
    EXPECT_EQ(overlays.onScreen, 1);
    overlays.callbacks.back().onSelection({0, 0, 10, 10});
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(std::get<DisplayRect>(results[0]), (DisplayRect{0, 0, 10, 10}));
}

TEST_F(CaptureControllerTest, WhereOverlaysAreOpaqueAllPicturesAreTakenBeforeTheFirstComesUp) {
    overlays.areOpaque = true;
    screen.listed.push_back({.id = DisplayId{2}, .frame = overlays.frames[1], .scaleFactor = 1});
    controller.begin(completion());
    screen.picture.succeed(Image(1, 1, {0, 0, 0, 255}));
    loop.runPosted();
    EXPECT_EQ(overlays.onScreen, 0);
    EXPECT_TRUE(controller.isSelecting());
    screen.picture.fail(Error("no picture"));
    loop.runPosted();
    EXPECT_EQ(overlays.backdropWidths, (std::vector<int>{1, 0}));

    controller.begin(completion());
    screen.picture.fail(CancellationError());
    loop.runPosted();
    EXPECT_EQ(results.size(), 1U);
    EXPECT_FALSE(controller.isSelecting());
}

TEST_F(CaptureControllerTest, WithoutAnyDisplayTheSelectionEnds) {
    controller.begin(completion());
    overlays.frames.clear();
    overlays.callbacks[1].onScreensChanged();
    ASSERT_EQ(results.size(), 1U);
    EXPECT_TRUE(std::holds_alternative<std::exception_ptr>(results[0]));
}

}  // namespace
}  // namespace ovrin
