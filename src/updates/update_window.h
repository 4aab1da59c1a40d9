// Seam between the update controller and the updater's window.
#pragma once

#include <functional>
#include <memory>

#include "updates/update_view_model.h"

namespace ovrin {

class UpdateWindow {
public:
    virtual ~UpdateWindow() = default;  // takes it off the screen

    // In front, with the keyboard: the user has asked for it.
    virtual void present() = 0;
};

// Makes the window, not yet visible. requestClose is called, from the event loop, when the user closes it; the window
// stays until the loop comes round again. The view model outlives it.
using MakeUpdateWindow =
    std::function<std::unique_ptr<UpdateWindow>(UpdateViewModel& viewModel, std::function<void()> requestClose)>;

}  // namespace ovrin
