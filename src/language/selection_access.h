// The text that the user has selected in whatever program is in front.
#pragma once

#include <cstdint>
#include <string>

#include "base/task.h"
#include "platform/synthetic_keyboard.h"

namespace ovrin {

struct SelectedText {
    std::string text;                                                     // trimmed and never empty
    SimulateKeyboard::Window window = SimulateKeyboard::Window::nowhere;  // where it is selected
};

enum class SelectionUse : std::uint8_t {
    reading,
    replacing  // only what the program gives away as selected now counts, where keys can be pressed
};

enum class Replacement : std::uint8_t {
    pasted,   // put in the selection's place; whether the program in front took it cannot be known
    offered,  // left on the clipboard: the window has lost the keyboard, or no keys can be pressed
    refused   // left on the clipboard: what is selected there cannot be replaced
};

// Main thread; one operation at a time, since both borrow the clipboard and put its contents back.
class SelectionAccess {
public:
    virtual ~SelectionAccess() = default;

    // Throws Error: nothing is selected, or it cannot be had.
    virtual Task<SelectedText> selectedText(SelectionUse use) = 0;

    // Puts the text in the place of what was selected in the window, or leaves it on the clipboard.
    virtual Task<Replacement> replaceSelection(std::string text, SimulateKeyboard::Window window) = 0;
};

}  // namespace ovrin
