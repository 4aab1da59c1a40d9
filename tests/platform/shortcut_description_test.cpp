#include "platform/shortcut_description.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "platform/us_keyboard_layout.h"

namespace ovrin::KeyboardShortcuts {
namespace {

class OneKeyLayout final : public KeyboardLayout {
public:
    explicit OneKeyLayout(std::optional<std::string> character) : character_(std::move(character)) {}
    std::optional<std::string> character(Key) const override { return character_; }
    std::unique_ptr<const KeyboardLayout> snapshot() const override { return std::make_unique<OneKeyLayout>(*this); }
    std::optional<Key> key(std::uint32_t) const override { return std::nullopt; }

private:
    std::optional<std::string> character_;
};

TEST(ShortcutDescription, NamesModifiersInTheirOrderBeforeTheKey) {
    EXPECT_EQ(description(Shortcut(Key::t, allModifiers), USKeyboardLayout()), "Super+Ctrl+Alt+Shift+Fn+T");
    EXPECT_EQ(description(Shortcut(Key::k, Modifiers::command), USKeyboardLayout()), "Super+K");
}

TEST(ShortcutDescription, NamesSpecialKeysWhateverTheLayoutSays) {
    const OneKeyLayout layout("x");
    EXPECT_EQ(description(Shortcut(Key::returnKey, Modifiers::control), layout), "Ctrl+Return");
    EXPECT_EQ(description(Shortcut(Key::space, Modifiers::option), layout), "Alt+Space");
    EXPECT_EQ(description(Shortcut(Key::up, Modifiers::command), layout), "Super+Up");
    EXPECT_EQ(description(Shortcut(Key{90}, Modifiers::none), layout), "F20");
}

TEST(ShortcutDescription, ShowsOtherKeysByTheUpperCaseCharacterOfTheLayout) {
    const Shortcut shortcut(Key::t, Modifiers::command);
    EXPECT_EQ(description(shortcut, OneKeyLayout("е")), "Super+Е");
    EXPECT_EQ(description(shortcut, OneKeyLayout("é")), "Super+É");
    EXPECT_EQ(description(shortcut, OneKeyLayout(std::nullopt)), "Super+�");
}

TEST(ShortcutDescription, OnlyF1ToF20AreFunctionKeys) {
    EXPECT_TRUE(isFunctionKey(Key{122}));
    EXPECT_TRUE(isFunctionKey(Key{90}));
    EXPECT_FALSE(isFunctionKey(Key::up));
    EXPECT_FALSE(isFunctionKey(Key{3}));  // the letter F
}

}  // namespace
}  // namespace ovrin::KeyboardShortcuts
