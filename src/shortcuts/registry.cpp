#include "shortcuts/registry.h"

#include <algorithm>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "base/json.h"
#include "platform/shortcut_description.h"
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
        .keyDown = [this](const std::string& hotKey) { handleHotKey(KeyDirection::down, hotKey); },
        .keyUp = [this](const std::string& hotKey) { handleHotKey(KeyDirection::up, hotKey); },
        .described = [this](const std::string& hotKey, const std::string& keys) { handleDescription(hotKey, keys); },
        .failed = [this](const std::string& hotKey, const std::string& reason) { handleFailure(hotKey, reason); },
        .keyboardChanged = [this] { synchronize(); },
    });
}

Registry::~Registry() {
    hotKeys_.setEvents({});
    hotKeys_.setHotKeys({});
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
    const std::string keys = answerTo(*shortcut).keys;
    return keys.empty() ? description(*shortcut, layout_) : keys;
}

std::optional<std::string> Registry::usableShortcutDisplay(const Name& name) const {
    return currentState(name).kind == RegistrationState::Kind::refused ? std::nullopt : shortcutDisplay(name);
}

void Registry::setShortcut(std::optional<Shortcut> shortcut, const Name& name) {
    const auto old = getShortcut(name);
    if (!shortcut && !old) return;
    store(shortcut, name);
    if (shortcut) handlersOf(name).isWanted = true;
    update();
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
    Handlers& handlers = handlersOf(name);
    handlers.keyDown.push_back(std::move(action));
    handlers.isWanted = true;
    update();
}

void Registry::onKeyUp(const Name& name, Action action) {
    Handlers& handlers = handlersOf(name);
    handlers.keyUp.push_back(std::move(action));
    handlers.isWanted = true;
    update();
}

void Registry::removeAllHandlers() {
    for (auto& handlers : names_) {
        if (handlers.keyDown.empty() && handlers.keyUp.empty()) continue;
        handlers.keyDown.clear();
        handlers.keyUp.clear();
        handlers.isWanted = false;
    }
    update();
}

void Registry::synchronize() {
    for (auto& handlers : names_) handlers.isWanted = !handlers.keyDown.empty() || !handlers.keyUp.empty();
    update();
    announceChangesOfOthers();
}

bool Registry::handleKeyEvent(KeyDirection direction, const Shortcut& shortcut) {
    const bool isKnown = std::ranges::find(hotKeysAskedFor_, shortcut, &HotKey::shortcut) != hotKeysAskedFor_.end() &&
                         answerTo(shortcut).kind != RegistrationState::Kind::refused;
    if (!isMenuOpen_ || !isKnown) return false;
    dispatch(direction, shortcut);
    return true;
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

void Registry::update() {
    if (isChanging_) return;
    hotKeysAskedFor_ = wantedHotKeys();
    std::erase_if(answers_, [this](const auto& answer) {
        return std::ranges::find(hotKeysAskedFor_, answer.first, &HotKey::shortcut) == hotKeysAskedFor_.end();
    });
    isChanging_ = true;  // the states follow when all is said
    hotKeys_.setHotKeys(hotKeysAskedFor_);
    isChanging_ = false;
    updateStates();
}

// Names may have the same combination: the desktop knows the first of them.
std::vector<HotKey> Registry::wantedHotKeys() const {
    std::vector<HotKey> wanted;
    for (const auto& handlers : names_) {
        const auto shortcut = getShortcut(handlers.name);
        if (!handlers.isWanted || !shortcut) continue;
        if (std::ranges::find(wanted, *shortcut, &HotKey::shortcut) != wanted.end()) continue;
        wanted.push_back({.name = handlers.name.rawValue,
                          .title = handlers.name.title,
                          .command = handlers.name.command,
                          .shortcut = *shortcut});
    }
    return wanted;
}

const Shortcut* Registry::shortcutOf(const std::string& hotKey) const {
    const auto found = std::ranges::find(hotKeysAskedFor_, hotKey, &HotKey::name);
    return found == hotKeysAskedFor_.end() ? nullptr : &found->shortcut;
}

void Registry::rest(bool isSuspended, bool isRecorderActive) {
    const bool wasResting = isSuspended_ || isRecorderActive_.value();
    isSuspended_ = isSuspended;
    const bool isResting = isSuspended || isRecorderActive;
    if (isResting && !wasResting) hotKeys_.suspend();
    if (!isResting && wasResting) hotKeys_.resume();
    isRecorderActive_.set(isRecorderActive);
}

// Trying again what is still refused is no news.
void Registry::noteFailure(const Shortcut& shortcut, const std::string& reason) {
    const RegistrationState refused{.kind = RegistrationState::Kind::refused, .reason = reason};
    if (std::exchange(answers_[shortcut], refused) == refused) return;
    if (hotKeys_.problem()) return;  // of the session, not of this combination: said to the user elsewhere
    diagnostics_("Error registering hotkey " + description(shortcut, layout_) + ": " + reason);
}

RegistrationState Registry::answerTo(const Shortcut& shortcut) const {
    const auto found = answers_.find(shortcut);
    return found == answers_.end() ? RegistrationState{.kind = RegistrationState::Kind::unknown} : found->second;
}

RegistrationState Registry::currentState(const Name& name) const {
    const auto shortcut = getShortcut(name);
    return shortcut ? answerTo(*shortcut) : RegistrationState();
}

// Those who hear of a state may change the registry, and make names known.
void Registry::updateStates() {
    for (std::size_t index = 0; index < names_.size(); ++index) {  // NOLINT: a new name ends iterators, not references
        auto& handlers = names_[index];
        const RegistrationState state = currentState(handlers.name);
        const bool areKeysOthers = state.keys != handlers.state->keys;
        handlers.state.set(state);
        if (areKeysOthers) announce(handlers.name);
    }
}

void Registry::handleHotKey(KeyDirection direction, const std::string& hotKey) {
    const Shortcut* const shortcut = shortcutOf(hotKey);
    if (shortcut != nullptr && !isMenuOpen_) dispatch(direction, Shortcut(*shortcut));
}

void Registry::handleDescription(const std::string& hotKey, const std::string& keys) {
    const Shortcut* const shortcut = shortcutOf(hotKey);
    if (shortcut == nullptr) return;
    answers_[*shortcut] = {.kind = RegistrationState::Kind::works, .keys = keys};
    if (!isChanging_) updateStates();
}

void Registry::handleFailure(const std::string& hotKey, const std::string& reason) {
    const Shortcut* const shortcut = shortcutOf(hotKey);
    if (shortcut == nullptr) return;
    noteFailure(*shortcut, reason);
    if (!isChanging_) updateStates();
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
