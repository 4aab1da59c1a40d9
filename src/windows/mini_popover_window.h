// Seam between the translation card's presenter and its window.
#pragma once

#include <functional>
#include <memory>

#include "base/geometry.h"
#include "windows/mini_popover_view_model.h"

namespace ovrin {

class MiniPopoverWindow {
public:
    virtual ~MiniPopoverWindow() = default;  // takes it off the screen

    // Puts the card's lower-left corner there (points in window space: origin at the primary display's lower-left
    // corner, y upwards), above all other windows, on every workspace and over full-screen programs. The keyboard stays
    // where it is.
    virtual void present(WindowPoint origin) = 0;
};

// Makes the card of miniPopoverSize, not yet visible. It calls start() of the view model, which outlives it, when its
// content first appears, and requestClose, from the event loop, when the user closes it; that may destroy the window.
using MakeMiniPopoverWindow = std::function<std::unique_ptr<MiniPopoverWindow>(MiniPopoverViewModel& viewModel,
                                                                               std::function<void()> requestClose)>;

}  // namespace ovrin
