// Seam between the history's controller and its window.
#pragma once

#include <functional>
#include <memory>

#include "windows/history_view_model.h"

namespace ovrin {

class HistoryWindow {
public:
    virtual ~HistoryWindow() = default;

    // In front, with the keyboard, whether it was closed, minimised or behind others.
    virtual void present() = 0;
};

// Makes the window, 800 x 550 points and at least 660 x 460, centred on the screen and not yet visible. Closing only
// hides it. It tells the view model whether it is visible. The view model outlives it.
using MakeHistoryWindow = std::function<std::unique_ptr<HistoryWindow>(HistoryViewModel& viewModel)>;

}  // namespace ovrin
