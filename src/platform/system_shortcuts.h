// Seam: the key combinations that the desktop itself has given a meaning.
#pragma once

#include <vector>

#include "platform/shortcut.h"

namespace ovrin {

class SystemShortcuts {
public:
    virtual ~SystemShortcuts() = default;

    // The combinations that are in force now, in no particular order; empty where the desktop tells nothing. Main
    // thread; quick enough for every key press of a recorder.
    virtual std::vector<KeyboardShortcuts::Shortcut> enabledShortcuts() const = 0;
};

}  // namespace ovrin
