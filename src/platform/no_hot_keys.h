// Hot keys where no desktop offers them: every registration is refused with the reason given at construction.
#pragma once

#include <string>
#include <utility>

#include "base/error.h"
#include "platform/hot_keys.h"

namespace ovrin {

class NoHotKeys final : public HotKeys {
public:
    explicit NoHotKeys(std::string reason) : reason_(std::move(reason)) {}

    void setEvents(HotKeyEvents) override {}
    void registerHotKey(HotKeyId, const KeyboardShortcuts::Shortcut&) override { throw Error(reason_); }
    void unregisterHotKey(HotKeyId) override {}
    bool allowsOptionAlone() const override { return true; }

private:
    std::string reason_;
};

}  // namespace ovrin
