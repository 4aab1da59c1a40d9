// The program's own windows on a Wayland compositor without X11: each where it belongs, with the keyboard or without.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/picture.h"
#include "desktop/wait.h"
#include "desktop/wayland_desktop.h"
#include "desktop/wayland_user.h"
#include "practice/practice_service.h"

namespace ovrin {
namespace {

class WaylandWindowsTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "needs sway";
    }
    void begin(const std::vector<HeadlessOutput>& outputs = {HeadlessOutput()},
               const std::vector<std::string>& environment = {}) {
        desktop = std::make_unique<WaylandDesktop>(outputs);
        user = std::make_unique<WaylandUser>(desktop->compositor().display());
        user->moveTo(pointerPlace);
        assistant = std::make_unique<WaylandAssistant>(*desktop, WaylandAssistant::Setup{
                                                                     .program = OVRIN_BINARY_DIR "/ovrin",
                                                                     .serviceURL = service.baseURL(),
                                                                     .environment = environment,
                                                                 });
        empty = desktop->settledPicture();
    }
    void TearDown() override {
        if (!HasFailure() || !desktop) return;
        std::cerr << "The assistant wrote: " << desktop->log() << '\n';
        const std::filesystem::path folder(OVRIN_BINARY_DIR "/desktop-failures");
        std::filesystem::create_directories(folder);
        const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
        desktop->picture().save(QString::fromStdString((folder / (name + ".png")).string()));
    }

    // What is on the first output beside nothing at all.
    PixelArea shown() const { return WaylandDesktop::difference(empty, desktop->settledPicture()); }
    // The pointer is part of the pictures: it goes back to where it was.
    void click(PixelSpot spot, WaylandUser::Button button = WaylandUser::Button::left) const {
        user->click(spot, button);
        user->moveTo(pointerPlace);
    }
    void expectNothing() const {
        waitFor("an empty output", [this] { return desktop->picture() == empty; });
    }

    static constexpr PixelSpot pointerPlace{.x = 5, .y = 5};
    PracticeService service{std::chrono::milliseconds(1)};
    std::unique_ptr<WaylandDesktop> desktop;
    std::unique_ptr<WaylandUser> user;
    std::unique_ptr<WaylandAssistant> assistant;
    QImage empty;
};

TEST_F(WaylandWindowsTest, ThePaletteIsInTheMiddleTakesWhatIsTypedAndGoesWhenTheUserTurnsAway) {
    begin({HeadlessOutput()}, {"WAYLAND_DEBUG=1"});
    const PixelArea middle{.x = 380, .y = 130, .width = 520, .height = 460};
    for (const bool isClick : {false, true}) {
        ASSERT_EQ(assistant->perform("command-palette"), 0);
        waitFor("the palette", [&] { return shown() == middle; });
        const QImage before = desktop->settledPicture();
        user->type("ocr");
        waitFor("what is typed", [&] { return desktop->picture() != before; });
        if (isClick) {
            click({.x = 100, .y = 650});
        } else {
            user->pressKeys("Escape");
        }
        expectNothing();
    }
    // The name that the user's rules for the compositor go by.
    EXPECT_THAT(desktop->log(), testing::ContainsRegex(R"(get_layer_surface\([^)]*, "ovrin"\))"));
}

TEST_F(WaylandWindowsTest, TheBarOfTheChatBecomesAWindowAndABarAgain) {
    begin();
    const PixelArea bar{.x = 370, .y = 285, .width = 540, .height = 150};
    ASSERT_EQ(assistant->perform("direct-ai"), 0);
    waitFor("the bar", [&] { return shown() == bar; });
    EXPECT_THAT(desktop->windows(), testing::IsEmpty());
    user->type("hello");
    // Its menu goes beyond its edges.
    click({.x = 600, .y = 400}, WaylandUser::Button::right);
    waitFor("the menu", [&] { return shown().height > bar.height; });
    click({.x = 100, .y = 650});
    waitFor("the end of the menu", [&] { return shown() == bar; });

    user->pressKeys("Return");
    const auto window = desktop->waitForWindow("TalkBox");
    EXPECT_TRUE(window.isFloating);
    EXPECT_EQ(window.area, (PixelArea{.x = 350, .y = 80, .width = 580, .height = 560}));
    waitFor("the keyboard in the conversation", [&] { return desktop->waitForWindow("TalkBox").hasFocus; });
    desktop->settledPicture();
    click({.x = 845, .y = 105});  // a new conversation
    waitFor("the bar", [&] { return desktop->windows().empty() && shown() == bar; });
    click({.x = 100, .y = 650});
    expectNothing();
}

TEST_F(WaylandWindowsTest, SettingsFloatWithTheirShadowAndAreMovedByTheirBar) {
    begin();
    ASSERT_EQ(assistant->perform("settings"), 0);
    const PixelArea first = desktop->waitForWindow("Ovrin 设置").area;
    EXPECT_EQ(first, (PixelArea{.x = 230, .y = 30, .width = 820, .height = 660}));
    EXPECT_TRUE(desktop->waitForWindow("Ovrin 设置").isFloating);
    const PixelArea drawn = shown();
    EXPECT_GT(drawn.width, first.width);
    EXPECT_LE(drawn.width, first.width + 60);
    // To fill the screen the compositor lets no floating window: it stays as it is.
    click({.x = first.x + 764, .y = first.y + 22});
    EXPECT_EQ(shown(), drawn);
    EXPECT_EQ(desktop->waitForWindow("Ovrin 设置").area, first);
    dragUntil(*user, {.x = first.x + 400, .y = first.y + 20}, "the window to be moved",
              [&] { return desktop->waitForWindow("Ovrin 设置").area.x > first.x; });
    const PixelArea moved = desktop->waitForWindow("Ovrin 设置").area;
    EXPECT_EQ(moved.width, first.width);
    const PixelSpot corner = moved.bottomRight();
    dragUntil(*user, {.x = corner.x - 4, .y = corner.y - 4}, "the window to be larger",
              [&] { return desktop->waitForWindow("Ovrin 设置").area.width > moved.width; });
}

TEST_F(WaylandWindowsTest, OnTwoOutputsEachIsWhereItIsUsed) {
    begin({{.width = 1280, .height = 720}, {.width = 1000, .height = 700, .scale = 1.25, .x = 1280}});
    const QImage emptySecond = desktop->picture(1);
    const double first = brightness(empty);
    const double second = brightness(emptySecond);
    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitFor("dimmed outputs", [&] {
        return brightness(desktop->picture(0)) < 0.75 * first && brightness(desktop->picture(1)) < 0.75 * second;
    });
    user->pressKeys("Escape");
    waitFor("bright outputs", [&] { return desktop->picture(0) == empty && desktop->picture(1) == emptySecond; });

    ASSERT_EQ(assistant->perform("capture-ocr"), 0);
    waitFor("a dimmed output", [&] { return brightness(desktop->settledPicture(0)) < 0.75 * first; });
    user->drag({.x = 100, .y = 400}, {.x = 400, .y = 600});  // where nothing is written
    user->moveTo(pointerPlace);
    EXPECT_EQ(waitFor("the toast",
                      [&]() -> std::optional<PixelArea> {
                          const PixelArea area = WaylandDesktop::difference(empty, desktop->picture());
                          return area.height == 40 ? std::optional(area) : std::nullopt;
                      }),
              (PixelArea{.x = 510, .y = 28, .width = 260, .height = 40}));

    user->moveTo({.x = 1500, .y = 20});
    const QImage withPointer = desktop->settledPicture(1);
    ASSERT_EQ(assistant->perform("command-palette"), 0);
    waitFor("the palette where the pointer is", [&] {
        return WaylandDesktop::difference(withPointer, desktop->picture(1)).width == 650;  // 520 points
    });
}

}  // namespace
}  // namespace ovrin
