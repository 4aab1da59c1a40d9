// Seam: the one short message on the screen. Every window and flow says with it what succeeded, failed or is missing.
#pragma once

#include <string>

namespace ovrin {

class ToastPresenter {
public:
    virtual ~ToastPresenter() = default;

    // Shows the message (UTF-8, one line) beside the symbol in place of the toast on screen, and returns at once.
    // symbol: "checkmark" for success, "exclamationmark.triangle" for failure, "clock" for nothing to show yet.
    // Main thread.
    virtual void show(std::string message, std::string symbol) = 0;
};

}  // namespace ovrin
