// The registry of global shortcuts: stores the user's key combinations under names, keeps them registered with the
// desktop, and calls the handlers of a name when its combination is pressed anywhere.
//
// Stored under "KeyboardShortcuts_" + name: the JSON text {"carbonKeyCode":17,"carbonModifiers":768}; the boolean false
// when the user cleared a shortcut that has a default; nothing when it was never set or has no default to suppress.
//
// Main thread. A combination that the desktop refuses stays stored but does not fire; the diagnostics get one line, and
// the name's state tells why.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/published.h"
#include "platform/hot_keys.h"
#include "platform/keyboard_layout.h"
#include "platform/shortcut.h"
#include "shortcuts/name.h"
#include "storage/defaults_store.h"

namespace ovrin::KeyboardShortcuts {

enum class KeyDirection { down, up };

// What the desktop says about the combination of a name. While shortcuts rest (a recorder is active, the menu is open)
// it is what the desktop said last.
struct RegistrationState {
    enum class Kind : std::uint8_t {
        none,     // there is no combination
        unknown,  // the desktop has not been asked or has not answered yet
        works,
        refused,
    };
    Kind kind = Kind::none;
    std::string reason{};  // of a refusal: a sentence for the user
    std::string keys{};    // that work, in the desktop's own words; empty where it is the combination

    friend bool operator==(const RegistrationState&, const RegistrationState&) = default;
};

// A change made through the registry or found by it. Every one made is news, also when it set what was there before.
struct ShortcutChange {
    std::string name;
    std::uint64_t number = 0;
    friend bool operator==(const ShortcutChange&, const ShortcutChange&) = default;
};

class Registry {
public:
    using Action = std::function<void()>;
    using Diagnostics = std::function<void(const std::string& line)>;

    Registry(DefaultsStore& defaults, HotKeys& hotKeys, const KeyboardLayout& layout, Diagnostics diagnostics);
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;
    // Gives every combination back to the desktop.
    ~Registry();

    // Makes the name known. Its default is stored unless something (a combination or false) is stored already. Throws
    // files::FileError.
    void add(const Name& name);

    // Its default as long as nothing is stored.
    std::optional<Shortcut> getShortcut(const Name& name) const;

    // What the user sees of it, which is what the desktop calls the keys that work; none when the name has no
    // combination.
    std::optional<std::string> shortcutDisplay(const Name& name) const;
    // The same of a combination that the desktop has not refused.
    std::optional<std::string> usableShortcutDisplay(const Name& name) const;

    // As that of HotKeys.
    std::optional<std::string> problem() const { return hotKeys_.problem(); }

    // Stores or clears the combination and announces it; clearing what is clear does nothing. Throws files::FileError
    // when it can't be stored; nothing has changed then.
    void setShortcut(std::optional<Shortcut> shortcut, const Name& name);

    // Handlers of a name are called in the order they were added; they may change the registry.
    void onKeyDown(const Name& name, Action action);
    void onKeyUp(const Name& name, Action action);

    // Also gives the combinations of the names that had handlers back to the desktop.
    void removeAllHandlers();

    // Registers what is stored now and gives back what no longer is, where others have changed the preferences or the
    // keyboard. What the desktop refused before is tried again. Every combination that others have changed is
    // announced.
    void synchronize();

    // Has the desktop hear of all the changes together.
    template <typename Change>
    void changeTogether(Change change) {
        const bool wasChanging = std::exchange(isChanging_, true);
        change();
        isChanging_ = wasChanging;
        update();
    }

    // While suspended no name fires or keeps its combination from other programs (a menu is open).
    void suspend() { rest(true, isRecorderActive_.value()); }
    void resume() { rest(false, isRecorderActive_.value()); }

    // While a menu of the program tracks the keyboard, hot keys don't arrive; their keys come as ordinary key events,
    // which go through handleKeyEvent. It says whether the keys were a registered combination.
    void menuTrackingDidBegin() { isMenuOpen_ = true; }
    void menuTrackingDidEnd() { isMenuOpen_ = false; }
    bool handleKeyEvent(KeyDirection direction, const Shortcut& shortcut);

    // A recorder needs to see combinations that are registered: they are suspended while one is active.
    void recorderDidBegin() { rest(isSuspended_, true); }
    void recorderDidEnd() { rest(isSuspended_, false); }

    // Follows every answer of the desktop, and lives as long as the registry. Makes the name known.
    const Published<RegistrationState>& registrationState(const Name& name) { return handlersOf(name).state; }

    const Published<ShortcutChange>& shortcutByNameDidChange() const { return lastChange_; }
    const Published<bool>& recorderActiveStatusDidChange() const { return isRecorderActive_; }

private:
    struct Handlers {
        Name name;
        std::vector<Action> keyDown;
        std::vector<Action> keyUp;
        bool isWanted = false;                // its combination, if any, is to work
        std::optional<Shortcut> announced{};  // the combination that everybody knows of
        Published<RegistrationState> state{};
    };

    Handlers& handlersOf(const Name& name);
    void store(const std::optional<Shortcut>& shortcut, const Name& name);
    void announce(const Name& name);
    void announceChangesOfOthers();

    void update();
    std::vector<HotKey> wantedHotKeys() const;
    const Shortcut* shortcutOf(const std::string& hotKey) const;
    void rest(bool isSuspended, bool isRecorderActive);
    void noteFailure(const Shortcut& shortcut, const std::string& reason);
    RegistrationState answerTo(const Shortcut& shortcut) const;
    RegistrationState currentState(const Name& name) const;
    void updateStates();

    void handleHotKey(KeyDirection direction, const std::string& hotKey);
    void handleDescription(const std::string& hotKey, const std::string& keys);
    void handleFailure(const std::string& hotKey, const std::string& reason);
    void dispatch(KeyDirection direction, const Shortcut& shortcut);

    DefaultsStore& defaults_;
    HotKeys& hotKeys_;
    const KeyboardLayout& layout_;
    Diagnostics diagnostics_;

    std::deque<Handlers> names_;                               // in the order they became known
    std::vector<HotKey> hotKeysAskedFor_;                      // each under the first name with its combination
    std::unordered_map<Shortcut, RegistrationState> answers_;  // what the desktop said last about each
    bool isChanging_ = false;                                  // it hears of it in one go, later
    bool isSuspended_ = false;
    bool isMenuOpen_ = false;

    Published<ShortcutChange> lastChange_;
    Published<bool> isRecorderActive_{false};
};

}  // namespace ovrin::KeyboardShortcuts
