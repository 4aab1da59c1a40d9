#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "fakes/temporary_directory.h"
#include "platform/linux/desktop/accelerator.h"
#include "platform/linux/desktop/desktop_system_shortcuts.h"
#include "platform/us_keyboard_layout.h"

namespace ovrin {
namespace {

using KeyboardShortcuts::Key;
using KeyboardShortcuts::Modifiers;
using KeyboardShortcuts::Shortcut;

constexpr Key f4{118}, f13{105}, plus{24};

TEST(Accelerator, ReadsBothNotations) {
    const USKeyboardLayout layout;
    const std::vector<std::pair<const char*, std::optional<Shortcut>>> angled{
        {"<Super>d", Shortcut(Key::d, Modifiers::command)},
        {"<Primary><Alt>T", Shortcut(Key::t, Modifiers::control | Modifiers::option)},
        {"<Shift><Control>Escape", Shortcut(Key::escape, Modifiers::shift | Modifiers::control)},
        {"<Alt>F4", Shortcut(f4, Modifiers::option)},
        {"<Super>space", Shortcut(Key::space, Modifiers::command)},
        {"Print", Shortcut(f13, Modifiers::none)},
        {"", std::nullopt},
        {"disabled", std::nullopt},
        {"XF86AudioPlay", std::nullopt},
        {"<Super", std::nullopt},
        {"<Hyper>a", std::nullopt},
        {"<Super>", std::nullopt},
    };
    for (const auto& [text, expected] : angled) EXPECT_EQ(parseAngledAccelerator(text, layout), expected) << text;

    const std::vector<std::pair<const char*, std::optional<Shortcut>>> joined{
        {"Meta+Shift+S", Shortcut(Key::s, Modifiers::command | Modifiers::shift)},
        {"Ctrl+Alt+Esc", Shortcut(Key::escape, Modifiers::control | Modifiers::option)},
        {"Meta+=", Shortcut(plus, Modifiers::command)},
        {"none", std::nullopt},
        {"Meta+", std::nullopt},
        {"+", std::nullopt},
    };
    for (const auto& [text, expected] : joined) EXPECT_EQ(parsePlusAccelerator(text, layout), expected) << text;
}

// Every question costs a round trip to the display.
class AskedLayout final : public KeyboardLayout {
public:
    int questions() const { return questions_; }

    std::optional<std::string> character(Key key) const override { return ++questions_, letters_.character(key); }
    std::optional<Key> key(std::uint32_t nativeCode) const override { return letters_.key(nativeCode); }
    std::unique_ptr<const KeyboardLayout> snapshot() const override { return ++questions_, letters_.snapshot(); }

private:
    USKeyboardLayout letters_;
    mutable int questions_ = 0;
};

class SystemShortcutsTest : public testing::Test {
protected:
    std::vector<Shortcut> shortcutsOf(const std::string& desktop) {
        const Environment environment(
            {{"XDG_CURRENT_DESKTOP", desktop}, {"XDG_CONFIG_HOME", directory.path().string()}});
        return makeDesktopSystemShortcuts(environment, layout)->enabledShortcuts();
    }

    TemporaryDirectory directory;
    AskedLayout layout;
};

TEST_F(SystemShortcutsTest, AreReadFromTheShortcutFile) {
    EXPECT_TRUE(shortcutsOf("KDE").empty());
    std::ofstream(directory.path() / "kglobalshortcutsrc") << "[kwin]\n"
                                                              "_k_friendly_name=KWin\n"
                                                              "Window Close=Alt+F4,Alt+F4,Close Window\n"
                                                              "Overview=none,Meta+W,Toggle Overview\n"
                                                              "Show Desktop=Meta+D\\tCtrl+Alt+D,Meta+D,Peek\n";
    EXPECT_EQ(shortcutsOf("KDE"),
              (std::vector<Shortcut>{Shortcut(f4, Modifiers::option), Shortcut(Key::d, Modifiers::command),
                                     Shortcut(Key::d, Modifiers::control | Modifiers::option)}));
    EXPECT_EQ(layout.questions(), 2);  // once for each reading
}

TEST_F(SystemShortcutsTest, AreReadFromGSettings) {
    const auto schemas = directory.path() / "schemas";
    std::filesystem::create_directory(schemas);
    std::ofstream(schemas / "test.gschema.xml") << R"(<schemalist>
      <schema id="org.gnome.desktop.wm.keybindings" path="/org/gnome/desktop/wm/keybindings/">
        <key name="close" type="as"><default>['&lt;Alt&gt;F4', 'disabled']</default></key>
        <key name="number" type="i"><default>7</default></key>
      </schema>
      <schema id="org.gnome.settings-daemon.plugins.media-keys" path="/org/gnome/media-keys/">
        <key name="custom-keybindings" type="as"><default>['/custom/one/']</default></key>
        <key name="screensaver" type="s"><default>'&lt;Super&gt;d'</default></key>
      </schema>
      <schema id="org.gnome.settings-daemon.plugins.media-keys.custom-keybinding">
        <key name="binding" type="s"><default>'&lt;Super&gt;t'</default></key>
      </schema>
    </schemalist>)";
    ASSERT_EQ(std::system(("glib-compile-schemas " + schemas.string()).c_str()), 0);
    setenv("GSETTINGS_SCHEMA_DIR", schemas.c_str(), 1);
    for (const char* name : {"XDG_DATA_DIRS", "XDG_DATA_HOME"}) setenv(name, schemas.c_str(), 1);  // not the machine's
    setenv("GSETTINGS_BACKEND", "memory", 1);
    EXPECT_EQ(shortcutsOf("ubuntu:GNOME"),
              (std::vector<Shortcut>{Shortcut(f4, Modifiers::option), Shortcut(Key::t, Modifiers::command),
                                     Shortcut(Key::d, Modifiers::command)}));
    EXPECT_EQ(layout.questions(), 1);
    EXPECT_TRUE(shortcutsOf("MATE").empty());
    EXPECT_TRUE(shortcutsOf("sway").empty());
}

}  // namespace
}  // namespace ovrin
