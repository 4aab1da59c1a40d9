// The name of a shortcut: under it the user's choice is stored and handlers are bound.
#pragma once

#include <optional>
#include <string>

#include "platform/shortcut.h"

namespace ovrin::KeyboardShortcuts {

struct Name {
    std::string rawValue;
    std::optional<Shortcut> defaultShortcut{};
    std::string title{};    // what the desktop may show for it
    std::string command{};  // of "ovrin do"

    friend bool operator==(const Name&, const Name&) = default;
};

}  // namespace ovrin::KeyboardShortcuts
