#include "settings/shortcuts_page_view_model.h"

#include <algorithm>

#include "shortcuts/shortcut_fixture.h"

namespace ovrin {
namespace {

class NoSystemShortcuts final : public SystemShortcuts {
public:
    std::vector<KeyboardShortcuts::Shortcut> enabledShortcuts() const override { return {}; }
};

class ShortcutsPageTest : public ShortcutTest {
protected:
    void SetUp() override {
        for (const auto shortcut : allOvShortcuts) {
            registry.add(name(shortcut));
            registry.onKeyDown(name(shortcut), [] {});
        }
    }
    ShortcutRow& row(OvShortcut shortcut) { return page.rows().at(static_cast<std::size_t>(shortcut)); }
    bool names(OvShortcut shortcut, OvShortcut other) {
        return row(shortcut).sharing()->value_or("").find(title(other)) != std::string::npos;
    }

    NoSystemShortcuts systemShortcuts;
    ShortcutsPageViewModel page{
        registry, {.systemShortcuts = systemShortcuts, .hotKeys = hotKeys, .menuItemUsing = [](const auto&) {
                       return std::nullopt;
                   }}};
};

TEST_F(ShortcutsPageTest, ARefusalIsShownUntilTheCombinationWorks) {
    auto& palette = row(OvShortcut::commandPalette);
    const KeyboardShortcuts::Shortcut taken(KeyboardShortcuts::Key::k, commandShift);
    hotKeys.takenByOthers.insert(taken);
    registry.setShortcut(taken, name(OvShortcut::commandPalette));
    EXPECT_EQ(palette.refusal().value(), "taken");
    page.didAppear();
    EXPECT_EQ(palette.refusal().value(), "taken");
    hotKeys.takenByOthers.clear();  // of which nobody tells
    page.didAppear();
    EXPECT_EQ(palette.refusal().value(), std::nullopt);
    EXPECT_TRUE(hotKeys.isRegistered(taken));
}

TEST_F(ShortcutsPageTest, RowsWithOneCombinationNameEachOther) {
    using enum OvShortcut;
    EXPECT_TRUE(std::all_of(page.rows().begin(), page.rows().end(), [](auto& row) { return !row.sharing().value(); }));
    for (const auto shortcut : {clipboardOCR, commandPalette}) registry.setShortcut(commandShiftT, name(shortcut));
    for (const auto shortcut : {captureTranslate, clipboardOCR, commandPalette}) {
        for (const auto other : {captureTranslate, clipboardOCR, commandPalette}) {
            EXPECT_EQ(names(shortcut, other), shortcut != other) << title(shortcut) << title(other);
        }
    }
    // Also when another process has changed it.
    DefaultsStore(file).remove({"KeyboardShortcuts_ovrin.commandPalette", "KeyboardShortcuts_ovrin.clipboardOCR"});
    page.didAppear();
    EXPECT_EQ(row(captureTranslate).sharing().value(), std::nullopt);
    EXPECT_EQ(row(commandPalette).recorder().text().value(), "");
}

}  // namespace
}  // namespace ovrin
