#include "shortcuts/hotkey_manager.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "storage/preferences.h"

namespace ovrin {

namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Shortcut;

constexpr std::string_view retiredName = "ovrin.aiExplain";

// A preference that can't be written is no reason to go without shortcuts: the step is taken again at the next start.
template <typename Step>
void unlessStorageFails(Step step) {
    try {
        step();
    } catch (const files::FileError&) {
        return;
    }
}

struct RetiredDefaults {
    OvShortcut shortcut;
    std::vector<Shortcut> combinations;
};

// Combinations that earlier versions assigned by default and that are no longer wanted.
std::vector<RetiredDefaults> retiredDefaultShortcuts() {
    constexpr Modifiers command = Modifiers::command;
    constexpr Modifiers option = Modifiers::option;
    constexpr Modifiers shift = Modifiers::shift;
    return {
        {OvShortcut::directAskAI, {Shortcut(Key::space, command | shift), Shortcut(Key::space, command | option)}},
        {OvShortcut::inputTranslate, {Shortcut(Key::a, option)}},
        {OvShortcut::selectionTranslate, {Shortcut(Key::d, option)}},
        {OvShortcut::silentSelectionTranslate, {Shortcut(Key::d, option | shift)}},
        {OvShortcut::silentInputTranslate, {Shortcut(Key::e, option)}},
        {OvShortcut::silentCaptureOCR, {Shortcut(Key::c, option)}},
        {OvShortcut::clipboardOCR, {Shortcut(Key::o, command | option)}},
        {OvShortcut::clipboardTranslate, {Shortcut(Key::v, command | option)}},
        {OvShortcut::showResultWindow, {Shortcut(Key::w, command | option)}},
        {OvShortcut::commandPalette, {Shortcut(Key::k, command | option)}},
    };
}

}  // namespace

HotkeyManager::HotkeyManager(KeyboardShortcuts::Registry& registry, DefaultsStore& defaults, EventLoop& mainLoop)
    : registry_(registry), defaults_(defaults), mainLoop_(mainLoop) {}

HotkeyManager::~HotkeyManager() {
    registry_.removeAllHandlers();
}

void HotkeyManager::bindAll(AssistantActions& actions) {
    unlessStorageFails([&] { defaults_.remove({std::string(preference::shortcutPrefix).append(retiredName)}); });
    registry_.changeTogether([&] {
        for (const auto shortcut : allOvShortcuts) unlessStorageFails([&] { registry_.add(name(shortcut)); });
        unlessStorageFails([&] { migrateRetiredDefaultShortcutsIfNeeded(); });
        unlessStorageFails([&] { migratePrimaryDefaultShortcutsIfNeeded(); });
        registry_.removeAllHandlers();
        for (const auto shortcut : allOvShortcuts) bind(shortcut, actions);
    });
}

void HotkeyManager::migrateRetiredDefaultShortcutsIfNeeded() {
    if (defaults_.boolean(preference::didMigrateRetiredDefaultShortcuts)) return;
    for (const auto& [shortcut, combinations] : retiredDefaultShortcuts()) {
        const auto stored = registry_.getShortcut(name(shortcut));
        if (!stored) continue;
        const bool isRetired = std::find(combinations.begin(), combinations.end(), *stored) != combinations.end();
        if (isRetired) registry_.setShortcut(std::nullopt, name(shortcut));
    }
    defaults_.setBoolean(preference::didMigrateRetiredDefaultShortcuts, true);
}

// captureOCR gives Command+Shift+S up before askWhatIsThis takes it.
void HotkeyManager::migratePrimaryDefaultShortcutsIfNeeded() {
    if (defaults_.boolean(preference::didMigratePrimaryDefaultShortcuts)) return;
    constexpr Shortcut commandShiftS(Key::s, Modifiers::command | Modifiers::shift);
    constexpr Shortcut commandShiftW(Key::w, Modifiers::command | Modifiers::shift);
    if (registry_.getShortcut(name(OvShortcut::captureOCR)) == commandShiftS) {
        registry_.setShortcut(std::nullopt, name(OvShortcut::captureOCR));
    }
    if (registry_.getShortcut(name(OvShortcut::askWhatIsThis)) == commandShiftW) {
        registry_.setShortcut(commandShiftS, name(OvShortcut::askWhatIsThis));
    }
    defaults_.setBoolean(preference::didMigratePrimaryDefaultShortcuts, true);
}

void HotkeyManager::bind(OvShortcut shortcut, AssistantActions& actions) {
    registry_.onKeyDown(name(shortcut), [this, shortcut, &actions] {
        mainLoop_.post([alive = std::weak_ptr(isAlive_), shortcut, &actions] {
            if (!alive.expired()) perform(shortcut, actions);
        });
    });
}

}  // namespace ovrin
