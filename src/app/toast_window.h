// The program's one transient message: a small capsule at the top of the main screen for 1.8 seconds, over every other
// window and never in the way of the keyboard. A new toast replaces the one on screen.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "base/running_task.h"
#include "base/task.h"
#include "platform/toast_presenter.h"
#include "theme/ov_icon.h"

namespace ovrin {

class ToastWindow final : public ToastPresenter {
public:
    // What is on screen; destroying it takes it away at once.
    class Panel {
    public:
        virtual ~Panel() = default;
    };
    // Puts a panel on screen without activating the program.
    using ShowPanel = std::function<std::unique_ptr<Panel>(const std::string& message, OVIcon icon)>;

    ToastWindow(EventLoop& loop, ShowPanel showPanel);

    void show(std::string message, std::string symbol) override;

private:
    Task<void> dismissLater();

    ShowPanel showPanel_;
    std::unique_ptr<Panel> panel_;
    TaskSlot dismissal_;
};

}  // namespace ovrin
