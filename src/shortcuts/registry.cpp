#include "shortcuts/registry.h"

#include <algorithm>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "base/json.h"
#include "shortcuts/shortcut_description.h"
#include "storage/preferences.h"

namespace ovrin::KeyboardShortcuts {

namespace {

constexpr const char* keyCodeMember = "carbonKeyCode";
constexpr const char* modifiersMember = "carbonModifiers";

std::string preferenceKey(const std::string& name) {
    return std::string(preference::shortcutPrefix) + name;
}

std::string encoded(const Shortcut& shortcut) {
    return json::encoded({{keyCodeMember, shortcut.carbonKeyCode}, {modifiersMember, shortcut.carbonModifiers}});
}

std::optional<int> intMember(const json::Value& object, const char* name) {
    const auto value = json::integer(object, name);
    if (!value || !std::in_range<int>(*value)) return std::nullopt;
    return static_cast<int>(*value);
}

std::optional<Shortcut> decoded(const std::string& document) {
    const auto object = json::parse(document);
    if (!object) return std::nullopt;
    const auto keyCode = intMember(*object, keyCodeMember);
    const auto modifiers = intMember(*object, modifiersMember);
    if (!keyCode || !modifiers) return std::nullopt;
    Shortcut shortcut;
    shortcut.carbonKeyCode = *keyCode;
    shortcut.carbonModifiers = *modifiers;
    return shortcut;
}

}  // namespace

Registry::Registry(DefaultsStore& defaults, HotKeys& hotKeys, const KeyboardLayout& layout, Diagnostics diagnostics)
    : defaults_(defaults), hotKeys_(hotKeys), layout_(layout), diagnostics_(std::move(diagnostics)) {
    hotKeys_.setEvents({
        .keyDown = [this](HotKeyId id) { handleHotKey(KeyDirection::down, id); },
        .keyUp = [this](HotKeyId id) { handleHotKey(KeyDirection::up, id); },
        .granted = [this](HotKeyId id) { handleGrant(id); },
        .failed = [this](HotKeyId id, const std::string& reason) { handleFailure(id, reason); },
        .keyboardChanged = [this] { synchronize(); },
    });
}

Registry::~Registry() {
    setEnabled(false);
    hotKeys_.setEvents({});
}

void Registry::add(const Name& name) {
    handlersOf(name);
    if (name.defaultShortcut && !defaults_.contains(preferenceKey(name.rawValue))) {
        setShortcut(name.defaultShortcut, name);
    }
}

std::optional<Shortcut> Registry::getShortcut(const Name& name) const {
    const auto key = preferenceKey(name.rawValue);
    if (!defaults_.contains(key)) return name.defaultShortcut;
    const auto stored = defaults_.string(key);
    return stored ? decoded(*stored) : std::nullopt;
}

std::optional<std::string> Registry::shortcutDisplay(const Name& name) const {
    const auto shortcut = getShortcut(name);
    if (!shortcut) return std::nullopt;
    return description(*shortcut, layout_);
}

void Registry::setShortcut(std::optional<Shortcut> shortcut, const Name& name) {
    const auto old = getShortcut(name);
    if (!shortcut && !old) return;
    store(shortcut, name);
    if (old && !isHeldByOthers(*old, name)) unregister(*old);
    if (shortcut) registerIfNeeded(*shortcut);
    updateStates();
    announce(name);
}

void Registry::store(const std::optional<Shortcut>& shortcut, const Name& name) {
    const auto key = preferenceKey(name.rawValue);
    if (shortcut) {
        defaults_.setString(key, encoded(*shortcut));
    } else if (name.defaultShortcut) {
        defaults_.setBoolean(key, false);
    } else {
        defaults_.remove({key});
    }
}

void Registry::onKeyDown(const Name& name, Action action) {
    handlersOf(name).keyDown.push_back(std::move(action));
    if (const auto shortcut = getShortcut(name)) registerIfNeeded(*shortcut);
    updateStates();
}

void Registry::onKeyUp(const Name& name, Action action) {
    handlersOf(name).keyUp.push_back(std::move(action));
    if (const auto shortcut = getShortcut(name)) registerIfNeeded(*shortcut);
    updateStates();
}

void Registry::removeAllHandlers() {
    for (auto& handlers : names_) {
        if (handlers.keyDown.empty() && handlers.keyUp.empty()) continue;
        handlers.keyDown.clear();
        handlers.keyUp.clear();
        if (const auto shortcut = getShortcut(handlers.name)) unregister(*shortcut);
    }
    updateStates();
}

void Registry::synchronize() {
    std::unordered_set<Shortcut> wanted;
    for (const auto& handlers : names_) {
        if (handlers.keyDown.empty() && handlers.keyUp.empty()) continue;
        if (const auto shortcut = getShortcut(handlers.name)) wanted.insert(*shortcut);
    }
    for (const Shortcut& shortcut : std::unordered_set(registered_)) {
        if (!wanted.contains(shortcut)) unregister(shortcut);
    }
    for (const Shortcut& shortcut : wanted) registerIfNeeded(shortcut);
    updateStates();
    announceChangesOfOthers();
}

bool Registry::handleKeyEvent(KeyDirection direction, const Shortcut& shortcut) {
    const bool isKnown = std::any_of(hotKeyTable_.begin(), hotKeyTable_.end(),
                                     [&](const auto& entry) { return entry.second == shortcut; });
    if (!isMenuOpen_ || !isKnown) return false;
    dispatch(direction, shortcut);
    return true;
}

void Registry::recorderDidBegin() {
    setEnabled(false);
    isRecorderActive_.set(true);
}

void Registry::recorderDidEnd() {
    setEnabled(true);
    isRecorderActive_.set(false);
}

Registry::Handlers& Registry::handlersOf(const Name& name) {
    const auto found = std::find_if(names_.begin(), names_.end(),
                                    [&](const auto& handlers) { return handlers.name.rawValue == name.rawValue; });
    if (found != names_.end()) return *found;
    auto& handlers = names_.emplace_back();
    handlers.name = name;
    handlers.announced = getShortcut(name);
    handlers.state.set(currentState(name));
    return handlers;
}

void Registry::announce(const Name& name) {
    handlersOf(name).announced = getShortcut(name);
    lastChange_.set({.name = name.rawValue, .number = lastChange_->number + 1});
}

void Registry::announceChangesOfOthers() {
    std::vector<Name> changed;
    for (const auto& handlers : names_) {
        if (getShortcut(handlers.name) != handlers.announced) changed.push_back(handlers.name);
    }
    for (const auto& name : changed) announce(name);
}

void Registry::registerIfNeeded(const Shortcut& shortcut) {
    if (registered_.contains(shortcut)) return;
    if (!isEnabled_ || registerWithDesktop(shortcut)) registered_.insert(shortcut);
}

bool Registry::registerWithDesktop(const Shortcut& shortcut) {
    const HotKeyId id{++hotKeyCounter_};
    HotKeyAnswer answer{};
    try {
        answer = hotKeys_.registerHotKey(id, shortcut);
    } catch (const Error& error) {
        noteFailure(shortcut, error.errorDescription());
        return false;
    }
    hotKeyTable_.emplace(id, shortcut);
    if (answer == HotKeyAnswer::granted) answers_[shortcut] = {.kind = RegistrationState::Kind::works};
    return true;
}

void Registry::unregister(const Shortcut& shortcut) {
    std::erase_if(hotKeyTable_, [&](const auto& entry) {
        if (entry.second != shortcut) return false;
        hotKeys_.unregisterHotKey(entry.first);
        return true;
    });
    registered_.erase(shortcut);
    answers_.erase(shortcut);
}

// Another name may have the same combination, which goes on working then.
bool Registry::isHeldByOthers(const Shortcut& shortcut, const Name& name) const {
    return std::any_of(names_.begin(), names_.end(), [&](const auto& handlers) {
        return handlers.name.rawValue != name.rawValue && getShortcut(handlers.name) == shortcut;
    });
}

void Registry::setEnabled(bool isEnabled) {
    if (isEnabled_ == isEnabled) return;
    isEnabled_ = isEnabled;
    if (isEnabled) {
        std::erase_if(registered_, [this](const auto& shortcut) { return !registerWithDesktop(shortcut); });
    } else {
        for (const auto& entry : hotKeyTable_) hotKeys_.unregisterHotKey(entry.first);
        hotKeyTable_.clear();
    }
    updateStates();
}

// Trying again what is still refused is no news.
void Registry::noteFailure(const Shortcut& shortcut, const std::string& reason) {
    const RegistrationState refused{.kind = RegistrationState::Kind::refused, .reason = reason};
    if (std::exchange(answers_[shortcut], refused) == refused) return;
    diagnostics_("Error registering hotkey " + description(shortcut, layout_) + ": " + reason);
}

RegistrationState Registry::currentState(const Name& name) const {
    const auto shortcut = getShortcut(name);
    if (!shortcut) return {};
    const auto found = answers_.find(*shortcut);
    return found == answers_.end() ? RegistrationState{.kind = RegistrationState::Kind::unknown} : found->second;
}

// Those who hear of a state may change the registry, and make names known.
void Registry::updateStates() {
    for (std::size_t index = 0; index < names_.size(); ++index) {  // NOLINT: a new name ends iterators, not references
        auto& handlers = names_[index];
        handlers.state.set(currentState(handlers.name));
    }
}

void Registry::handleHotKey(KeyDirection direction, HotKeyId id) {
    const auto found = hotKeyTable_.find(id);
    if (found == hotKeyTable_.end() || isMenuOpen_) return;
    const Shortcut shortcut = found->second;
    dispatch(direction, shortcut);
}

void Registry::handleGrant(HotKeyId id) {
    const auto found = hotKeyTable_.find(id);
    if (found == hotKeyTable_.end()) return;
    answers_[found->second] = {.kind = RegistrationState::Kind::works};
    updateStates();
}

void Registry::handleFailure(HotKeyId id, const std::string& reason) {
    const auto found = hotKeyTable_.find(id);
    if (found == hotKeyTable_.end()) return;
    const Shortcut shortcut = found->second;
    hotKeyTable_.erase(found);
    registered_.erase(shortcut);
    noteFailure(shortcut, reason);
    updateStates();
}

void Registry::dispatch(KeyDirection direction, const Shortcut& shortcut) {
    std::vector<Action> actions;
    for (const auto& handlers : names_) {
        if (getShortcut(handlers.name) != shortcut) continue;
        const auto& added = direction == KeyDirection::down ? handlers.keyDown : handlers.keyUp;
        actions.insert(actions.end(), added.begin(), added.end());
    }
    for (const auto& action : actions) action();
}

}  // namespace ovrin::KeyboardShortcuts
