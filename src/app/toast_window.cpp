#include "app/toast_window.h"

#include <chrono>
#include <utility>

#include "base/suspension.h"

namespace ovrin {

namespace {
constexpr std::chrono::milliseconds timeOnScreen{1800};
}

ToastWindow::ToastWindow(EventLoop& loop, ShowPanel showPanel) : showPanel_(std::move(showPanel)), dismissal_(loop) {}

void ToastWindow::show(std::string message, std::string symbol) {
    panel_.reset();
    panel_ = showPanel_(message, OVIcon(symbol));
    dismissal_.replace(dismissLater());
}

Task<void> ToastWindow::dismissLater() {
    co_await sleepFor(timeOnScreen);
    panel_.reset();
}

}  // namespace ovrin
