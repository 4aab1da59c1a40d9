// The text that the user has selected in whatever program is in front.
#pragma once

#include <string>

#include "base/task.h"

namespace ovrin {

// Main thread; one operation at a time, since both borrow the clipboard and put its contents back.
class SelectionAccess {
public:
    virtual ~SelectionAccess() = default;

    // The selected text, trimmed and never empty. Throws Error: nothing is selected, or reading it is not permitted.
    virtual Task<std::string> selectedText() = 0;

    // Puts the text in the selection's place. Whether the program in front took it cannot be known. Throws Error when
    // it is not permitted.
    virtual Task<void> replaceSelection(std::string text) = 0;
};

}  // namespace ovrin
