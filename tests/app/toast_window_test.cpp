#include "app/toast_window.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/virtual_loop.h"

namespace ovrin {
namespace {

using namespace std::chrono_literals;

struct ToastWindowTest : ::testing::Test {
    struct Panel final : ToastWindow::Panel {
        Panel(std::vector<std::string>& list, std::string text) : shown(list), message(std::move(text)) {
            shown.push_back(message);
        }
        Panel(const Panel&) = delete;
        Panel& operator=(const Panel&) = delete;
        ~Panel() override { std::erase(shown, message); }
        std::vector<std::string>& shown;
        std::string message;
    };

    VirtualLoop loop;
    std::vector<std::string> onScreen;
    std::vector<OVIcon::Case> icons;
    ToastWindow toasts{loop, [this](const std::string& message, OVIcon icon) {
                           icons.push_back(icon);
                           return std::make_unique<Panel>(onScreen, message);
                       }};
};

TEST_F(ToastWindowTest, LeavesAfterItsTime) {
    toasts.show("识别结果已复制", "checkmark");
    loop.advance(1799ms);
    EXPECT_EQ(onScreen, (std::vector<std::string>{"识别结果已复制"}));
    loop.advance(1ms);
    EXPECT_TRUE(onScreen.empty());
    EXPECT_EQ(icons, (std::vector<OVIcon::Case>{OVIcon::check}));
}

TEST_F(ToastWindowTest, ANewToastReplacesTheOldOneAndHasItsFullTime) {
    toasts.show("first", "clock");
    loop.advance(1s);
    toasts.show("second", "exclamationmark.triangle");
    EXPECT_EQ(onScreen, (std::vector<std::string>{"second"}));
    loop.advance(1799ms);
    EXPECT_EQ(onScreen, (std::vector<std::string>{"second"})) << "the first one's timer must not close it";
    loop.advance(1ms);
    EXPECT_TRUE(onScreen.empty());
}

}  // namespace
}  // namespace ovrin
