// The rules of the control with which the user records the combination of one name: what is shown, and what each key
// press does. The view feeds it key presses and shows the alerts it asks for.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/published.h"
#include "platform/hot_keys.h"
#include "platform/shortcut.h"
#include "platform/system_shortcuts.h"
#include "shortcuts/name.h"
#include "shortcuts/registry.h"

namespace ovrin::KeyboardShortcuts {

struct RecorderAlert {
    enum class Kind { usedByMenuItem, disallowed, usedBySystem, notStored };
    Kind kind{};
    std::string message;
    std::string informativeText;  // may be empty
    std::string dismissButton;
    std::optional<std::string> forceUseButton;  // second button; pressing it calls forceUse()
};

struct RecorderOutcome {
    enum class Kind {
        ignored,  // not a key that can be recorded; recording goes on
        ended,    // without change
        cleared,  // recording has ended
        beep,     // recording goes on
        alert,    // recording goes on once the alert is dismissed
        stored,   // recording has ended
    };
    Kind kind{};
    std::optional<RecorderAlert> alert{};
};

// What decides about conflicts. All of it outlives the recorder.
struct RecorderRules {
    const SystemShortcuts& systemShortcuts;
    const HotKeys& hotKeys;
    // The title of the item of the program's main menu that has the combination as its key equivalent.
    std::function<std::optional<std::string>(const Shortcut&)> menuItemUsing;
};

// Main thread.
class RecorderViewModel {
public:
    RecorderViewModel(Registry& registry, Name name, RecorderRules rules);
    RecorderViewModel(const RecorderViewModel&) = delete;
    RecorderViewModel& operator=(const RecorderViewModel&) = delete;
    ~RecorderViewModel();

    // The display text of the current combination; empty when there is none.
    const Published<std::string>& text() const { return text_; }
    const Published<bool>& isRecording() const { return isRecording_; }
    bool showsClearButton() const { return !text_->empty(); }
    std::string placeholder() const;
    std::string tooltip() const;

    void startRecording();
    // Escape, the loss of the focus, the window that is no longer key: nothing is changed.
    void endRecording();

    // A key press while recording. key: none for modifier keys and keys without a number. modifierFlags: bits of the
    // stored mask; others (Caps Lock, the numeric pad) are ignored.
    RecorderOutcome handleKeyPress(std::optional<Key> key, int modifierFlags);

    // The user takes the combination of the latest alert in spite of it.
    RecorderOutcome forceUse();

    // The clear button.
    RecorderOutcome clear();

private:
    RecorderOutcome store(std::optional<Shortcut> shortcut);
    std::optional<RecorderAlert> conflict(const Shortcut& shortcut) const;
    void showCurrentShortcut();

    Registry& registry_;
    Name name_;
    RecorderRules rules_;
    std::optional<Shortcut> refused_;  // what the latest alert was about
    Published<std::string> text_;
    Published<bool> isRecording_{false};
    Subscription changes_;
};

}  // namespace ovrin::KeyboardShortcuts
