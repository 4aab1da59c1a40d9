// A registry over fakes, and the combinations that the tests speak of.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/json.h"
#include "fakes/fake_hot_keys.h"
#include "fakes/journal.h"
#include "fakes/temporary_directory.h"
#include "platform/us_keyboard_layout.h"
#include "shortcuts/registry.h"
#include "storage/defaults_store.h"

namespace ovrin {

inline constexpr KeyboardShortcuts::Modifiers commandShift =
    KeyboardShortcuts::Modifiers::command | KeyboardShortcuts::Modifiers::shift;
inline constexpr KeyboardShortcuts::Modifiers commandOption =
    KeyboardShortcuts::Modifiers::command | KeyboardShortcuts::Modifiers::option;
inline constexpr KeyboardShortcuts::Shortcut commandShiftT(KeyboardShortcuts::Key::t, commandShift);
inline constexpr KeyboardShortcuts::Shortcut commandShiftS(KeyboardShortcuts::Key::s, commandShift);
inline constexpr KeyboardShortcuts::Shortcut commandShiftW(KeyboardShortcuts::Key::w, commandShift);

class ShortcutTest : public testing::Test {
protected:
    using Events = std::vector<std::string>;

    KeyboardShortcuts::Registry::Action add(const std::string& event) {
        return [this, event] { journal.add(event); };
    }

    // What the preferences hold under the key; null when they hold nothing.
    json::Value stored(const std::string& key) {
        if (!std::filesystem::exists(file)) return nullptr;
        const auto values = json::parseOrThrow(files::readFile(file, 1U << 20U));
        return values.value(key, json::Value());
    }
    void forgetPreferences() { std::filesystem::remove(file); }

    Journal journal;
    FakeHotKeys hotKeys{journal};
    TemporaryDirectory directory;
    std::filesystem::path file = directory.path() / "preferences.json";
    DefaultsStore defaults{file};
    USKeyboardLayout layout;
    KeyboardShortcuts::Registry registry{defaults, hotKeys, layout,
                                         [this](const std::string& line) { journal.add(line); }};

    const KeyboardShortcuts::Name plain{.rawValue = "plain"};
    const KeyboardShortcuts::Name withDefault{.rawValue = "withDefault", .defaultShortcut = commandShiftT};
};

}  // namespace ovrin
