// Seam between the result panel's presenter and its window.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "windows/result_panel_view_model.h"

namespace ovrin {

class ResultPanelWindow {
public:
    enum class Level : std::uint8_t { normal, floating };  // floating stays above the windows of other programs
    enum class Entrance : std::uint8_t { atOnce, fadesIn };

    virtual ~ResultPanelWindow() = default;  // takes it off the screen

    // Replaces the content by one for the view model, which the window keeps for as long as there is a view of it: a
    // replaced view goes after the present event, which may be its own. Position and size stay.
    virtual void setContent(std::shared_ptr<ResultPanelViewModel> viewModel, Entrance entrance) = 0;
    virtual void setLevel(Level level) = 0;
    virtual bool isVisible() const = 0;
    // In front, with the keyboard.
    virtual void present() = 0;
};

// Makes the window, 460 x 460 points, centred on the screen and not yet visible. requestClose is called, from the
// event loop, when the user closes it; it may destroy the window.
using MakeResultPanelWindow = std::function<std::unique_ptr<ResultPanelWindow>(std::function<void()> requestClose)>;

}  // namespace ovrin
