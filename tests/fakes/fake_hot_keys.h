// A desktop that gives out hot keys as the test says, writes down what it was asked, and presses keys.
#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

#include "base/error.h"
#include "fakes/journal.h"
#include "platform/hot_keys.h"
#include "platform/us_keyboard_layout.h"
#include "shortcuts/shortcut_description.h"

namespace ovrin {

class FakeHotKeys final : public HotKeys {
public:
    explicit FakeHotKeys(Journal& journal) : journal_(journal) {}

    std::unordered_set<KeyboardShortcuts::Shortcut> takenByOthers;
    bool isOptionAloneAllowed = true;
    HotKeyAnswer answer = HotKeyAnswer::granted;

    void setEvents(HotKeyEvents events) override { events_ = std::move(events); }
    HotKeyAnswer registerHotKey(HotKeyId id, const KeyboardShortcuts::Shortcut& shortcut) override {
        if (takenByOthers.contains(shortcut)) throw Error("taken");
        registered_.emplace(id, shortcut);
        journal_.add("register " + std::to_string(static_cast<unsigned>(id)) + " " + text(shortcut));
        return answer;
    }
    void unregisterHotKey(HotKeyId id) override {
        journal_.add("unregister " + text(registered_.at(id)));
        registered_.erase(id);
    }
    void suspend() override {
        isSuspended_ = true;
        journal_.add("suspend");
    }
    void resume() override {
        isSuspended_ = false;
        journal_.add("resume");
    }
    bool allowsOptionAlone() const override { return isOptionAloneAllowed; }

    // Whether the combination is registered and not suspended; if so, its event is delivered.
    bool press(const KeyboardShortcuts::Shortcut& shortcut) { return deliver(shortcut, events_.keyDown); }
    bool release(const KeyboardShortcuts::Shortcut& shortcut) { return deliver(shortcut, events_.keyUp); }

    void grant(const KeyboardShortcuts::Shortcut& shortcut) { events_.granted(idOf(shortcut).value()); }

    void fail(const KeyboardShortcuts::Shortcut& shortcut, const std::string& reason) {
        const auto id = idOf(shortcut).value();
        registered_.erase(id);
        events_.failed(id, reason);
    }

    void changeKeyboard() { events_.keyboardChanged(); }

    bool isRegistered(const KeyboardShortcuts::Shortcut& shortcut) const { return idOf(shortcut).has_value(); }

private:
    static std::string text(const KeyboardShortcuts::Shortcut& shortcut) {
        return description(shortcut, USKeyboardLayout());
    }
    std::optional<HotKeyId> idOf(const KeyboardShortcuts::Shortcut& shortcut) const {
        const auto found = std::find_if(registered_.begin(), registered_.end(),
                                        [&](const auto& entry) { return entry.second == shortcut; });
        return found == registered_.end() ? std::nullopt : std::optional(found->first);
    }
    bool deliver(const KeyboardShortcuts::Shortcut& shortcut, const std::function<void(HotKeyId)>& event) {
        const auto id = idOf(shortcut);
        if (!id || isSuspended_) return false;
        event(*id);
        return true;
    }

    Journal& journal_;
    HotKeyEvents events_;
    bool isSuspended_ = false;
    std::map<HotKeyId, KeyboardShortcuts::Shortcut> registered_;
};

}  // namespace ovrin
