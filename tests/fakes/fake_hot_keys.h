// A desktop that gives out hot keys as the test says, writes down what it was asked, and presses keys.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "fakes/journal.h"
#include "platform/hot_keys.h"
#include "platform/shortcut_description.h"
#include "platform/us_keyboard_layout.h"

namespace ovrin {

class FakeHotKeys final : public HotKeys {
public:
    explicit FakeHotKeys(Journal& journal) : journal_(journal) {}

    std::unordered_set<KeyboardShortcuts::Shortcut> takenByOthers;
    bool isOptionAloneAllowed = true;
    bool asksItsUser = false;  // and answers later, by describe() and fail()
    std::optional<std::string> whyNone{};

    std::optional<std::string> problem() const override { return whyNone; }

    void setEvents(HotKeyEvents events) override { events_ = std::move(events); }
    void setHotKeys(const std::vector<HotKey>& hotKeys) override {
        ++timesSet;
        std::erase_if(registered_, [&](const HotKey& hotKey) {
            if (std::ranges::find(hotKeys, hotKey) != hotKeys.end()) return false;
            journal_.add("unregister " + text(hotKey.shortcut));
            return true;
        });
        for (const HotKey& hotKey : hotKeys) {
            if (std::ranges::find(registered_, hotKey) != registered_.end()) continue;
            if (takenByOthers.contains(hotKey.shortcut)) {
                events_.failed(hotKey.name, "taken");
                continue;
            }
            registered_.push_back(hotKey);
            journal_.add("register " + hotKey.name + " " + text(hotKey.shortcut));
            if (!asksItsUser) events_.described(hotKey.name, "");
        }
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

    void describe(const KeyboardShortcuts::Shortcut& shortcut, const std::string& keys = "") {
        events_.described(find(shortcut)->name, keys);
    }

    void fail(const KeyboardShortcuts::Shortcut& shortcut, const std::string& reason) {
        const auto found = find(shortcut);
        const std::string name = found->name;
        registered_.erase(found);
        events_.failed(name, reason);
    }

    void changeKeyboard() const { events_.keyboardChanged(); }

    bool isRegistered(const KeyboardShortcuts::Shortcut& shortcut) const {
        return std::ranges::find(registered_, shortcut, &HotKey::shortcut) != registered_.end();
    }

    int timesSet = 0;

private:
    static std::string text(const KeyboardShortcuts::Shortcut& shortcut) {
        return description(shortcut, USKeyboardLayout());
    }
    std::vector<HotKey>::iterator find(const KeyboardShortcuts::Shortcut& shortcut) {
        return std::ranges::find(registered_, shortcut, &HotKey::shortcut);
    }
    bool deliver(const KeyboardShortcuts::Shortcut& shortcut, const std::function<void(const std::string&)>& event) {
        const auto found = find(shortcut);
        if (found == registered_.end() || isSuspended_) return false;
        event(std::string(found->name));
        return true;
    }

    Journal& journal_;
    HotKeyEvents events_;
    bool isSuspended_ = false;
    std::vector<HotKey> registered_;
};

}  // namespace ovrin
