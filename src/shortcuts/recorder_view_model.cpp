#include "shortcuts/recorder_view_model.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/files.h"
#include "platform/shortcut_description.h"
#include "shortcuts/recorder_texts.h"

namespace ovrin::KeyboardShortcuts {

namespace {

using AlertKind = RecorderAlert::Kind;
using OutcomeKind = RecorderOutcome::Kind;

std::string textFor(std::string_view key) {
    return std::string(localizedRecorderText(key));
}

RecorderAlert makeAlert(AlertKind kind, std::string message) {
    return {.kind = kind,
            .message = std::move(message),
            .informativeText = {},
            .dismissButton = textFor("ok"),
            .forceUseButton = std::nullopt};
}

RecorderAlert menuItemAlert(const std::string& title) {
    constexpr std::string_view placeholder = "%@";
    auto message = textFor("keyboard_shortcut_used_by_menu_item");
    message.replace(message.find(placeholder), placeholder.size(), title);
    return makeAlert(AlertKind::usedByMenuItem, std::move(message));
}

RecorderAlert systemAlert() {
    auto alert = makeAlert(AlertKind::usedBySystem, textFor("keyboard_shortcut_used_by_system"));
    alert.informativeText = textFor("keyboard_shortcuts_can_be_changed");
    alert.forceUseButton = textFor("force_use_shortcut");
    return alert;
}

bool isOptionAlone(Modifiers modifiers) {
    return modifiers == Modifiers::option || modifiers == (Modifiers::option | Modifiers::shift);
}

}  // namespace

RecorderViewModel::RecorderViewModel(Registry& registry, Name name, RecorderRules rules)
    : registry_(registry), name_(std::move(name)), rules_(std::move(rules)) {
    showCurrentShortcut();
    changes_ = registry_.shortcutByNameDidChange().onDidChange([this](const ShortcutChange& change) {
        if (change.name == name_.rawValue) showCurrentShortcut();
    });
}

RecorderViewModel::~RecorderViewModel() {
    endRecording();
}

std::string RecorderViewModel::placeholder() const {
    return textFor(isRecording_.value() ? "press_shortcut" : "record_shortcut");
}

std::string RecorderViewModel::tooltip() const {
    return textFor("shortcut_recorder_tooltip");
}

void RecorderViewModel::startRecording() {
    if (isRecording_.value()) return;
    registry_.recorderDidBegin();
    isRecording_.set(true);
}

void RecorderViewModel::endRecording() {
    if (!isRecording_.value()) return;
    refused_.reset();
    registry_.recorderDidEnd();
    isRecording_.set(false);
}

RecorderOutcome RecorderViewModel::handleKeyPress(std::optional<Key> key, int modifierFlags) {
    if (!isRecording_.value() || !key) return {OutcomeKind::ignored};
    const Modifiers modifiers = static_cast<Modifiers>(modifierFlags) & allModifiers;
    const bool isBare = modifiers == Modifiers::none;
    if (isBare && *key == Key::escape) {
        endRecording();
        return {OutcomeKind::ended};
    }
    if (isBare && (*key == Key::deleteKey || *key == Key::forwardDelete)) {
        return clear();
    }
    if ((isBare || modifiers == Modifiers::shift) && !isFunctionKey(*key)) return {OutcomeKind::beep};

    const Shortcut shortcut(*key, modifiers);
    if (auto alert = conflict(shortcut)) {
        refused_ = shortcut;
        return {OutcomeKind::alert, std::move(alert)};
    }
    return store(shortcut);
}

RecorderOutcome RecorderViewModel::forceUse() {
    if (!refused_) return {OutcomeKind::ignored};
    return store(refused_);
}

RecorderOutcome RecorderViewModel::clear() {
    return store(std::nullopt);
}

RecorderOutcome RecorderViewModel::store(std::optional<Shortcut> shortcut) {
    try {
        registry_.setShortcut(shortcut, name_);
    } catch (const files::FileError& error) {
        return {OutcomeKind::alert, makeAlert(AlertKind::notStored, error.errorDescription())};
    }
    endRecording();
    return {shortcut ? OutcomeKind::stored : OutcomeKind::cleared};
}

std::optional<RecorderAlert> RecorderViewModel::conflict(const Shortcut& shortcut) const {
    if (const auto title = rules_.menuItemUsing(shortcut)) return menuItemAlert(*title);
    if (isOptionAlone(shortcut.modifiers()) && !rules_.hotKeys.allowsOptionAlone()) {
        return makeAlert(AlertKind::disallowed, textFor("keyboard_shortcut_disallowed"));
    }
    const auto system = rules_.systemShortcuts.enabledShortcuts();
    if (std::find(system.begin(), system.end(), shortcut) != system.end()) return systemAlert();
    return std::nullopt;
}

void RecorderViewModel::showCurrentShortcut() {
    text_.set(registry_.shortcutDisplay(name_).value_or(""));
}

}  // namespace ovrin::KeyboardShortcuts
