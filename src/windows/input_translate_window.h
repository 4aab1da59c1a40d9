// Seam between the input translation's presenter and its window.
#pragma once

#include <functional>
#include <memory>

#include "windows/input_translate_view_model.h"

namespace ovrin {

class InputTranslateWindow {
public:
    virtual ~InputTranslateWindow() = default;  // takes it off the screen

    // In front, with the keyboard.
    virtual void present() = 0;
};

// Makes the window, 760 x 490 points and at least 620 x 400, centred on the screen and not yet visible: at the normal
// level, moved by its background, resizable. requestClose is called, from the event loop, when the user closes it; the
// window stays until the loop comes round again. The view model outlives it.
using MakeInputTranslateWindow = std::function<std::unique_ptr<InputTranslateWindow>(
    InputTranslateViewModel& viewModel, std::function<void()> requestClose)>;

}  // namespace ovrin
