// What the settings window controller needs of its window. The view implements it.
#pragma once

#include <functional>
#include <memory>

namespace ovrin {

class SettingsViewModel;

// Main thread. Made hidden. Closing only hides it; it is kept for the rest of the process.
class SettingsWindow {
public:
    virtual ~SettingsWindow() = default;

    // Shows it if it is hidden, brings it to the front and gives it the keyboard.
    virtual void present() = 0;

    virtual bool isVisible() const = 0;
};

// The view model outlives the window.
using MakeSettingsWindow = std::function<std::unique_ptr<SettingsWindow>(SettingsViewModel& viewModel)>;

}  // namespace ovrin
