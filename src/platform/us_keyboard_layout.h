// The US layout from a table: what keys are called where no keyboard can be asked.
#pragma once

#include "platform/keyboard_layout.h"

namespace ovrin {

class USKeyboardLayout final : public KeyboardLayout {
public:
    std::optional<std::string> character(KeyboardShortcuts::Key key) const override;

    // None: without a window system there is no event.
    std::optional<KeyboardShortcuts::Key> key(std::uint32_t nativeCode) const override;

    std::unique_ptr<const KeyboardLayout> snapshot() const override;
};

}  // namespace ovrin
