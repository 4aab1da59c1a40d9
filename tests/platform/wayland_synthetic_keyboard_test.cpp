#include "platform/linux/wayland/wayland_synthetic_keyboard.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>

#include "fake-input-client.h"
#include "fakes/kwin_test_compositor.h"
#include "fakes/wayland_test_compositor.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/wayland/wayland_keyboard_layout.h"
#include "platform/linux/wayland/wayland_selection.h"
#include "virtual-keyboard-unstable-v1-client.h"
#include "xdg-shell-client.h"

namespace ovrin {
namespace {

constexpr auto ignored = [](auto...) {};

std::string keymapOf(const char* layouts, const char* variants) {
    ::setenv("XKB_DEFAULT_LAYOUT", layouts, 1);
    ::setenv("XKB_DEFAULT_VARIANT", variants, 1);
    std::string text = WaylandKeymap::ofEnvironment().value().text();
    ::unsetenv("XKB_DEFAULT_LAYOUT");
    ::unsetenv("XKB_DEFAULT_VARIANT");
    return text;
}

// The keyboard at the machine.
class UserKeyboard {
public:
    explicit UserKeyboard(const std::string& display)
        : connection_(display.c_str()),
          manager_(connection_.bind<zwp_virtual_keyboard_manager_v1>(zwp_virtual_keyboard_manager_v1_interface, 1)),
          keyboard_(zwp_virtual_keyboard_manager_v1_create_virtual_keyboard(manager_, connection_.seat())) {
        setKeymap(keymapOf("us", ""));
    }
    UserKeyboard(const UserKeyboard&) = delete;
    UserKeyboard& operator=(const UserKeyboard&) = delete;
    ~UserKeyboard() {
        zwp_virtual_keyboard_v1_destroy(keyboard_);
        zwp_virtual_keyboard_manager_v1_destroy(manager_);
    }

    void setKeymap(const std::string& text) {
        const int file = ::memfd_create("keymap", MFD_CLOEXEC);
        ASSERT_EQ(::write(file, text.c_str(), text.size() + 1), static_cast<ssize_t>(text.size() + 1));
        zwp_virtual_keyboard_v1_keymap(keyboard_, WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1, file,
                                       static_cast<std::uint32_t>(text.size() + 1));
        ::close(file);
        connection_.roundTrip();
    }

    void press(std::uint32_t key, std::uint32_t modifiers) {
        zwp_virtual_keyboard_v1_key(keyboard_, 0, key, WL_KEYBOARD_KEY_STATE_PRESSED);
        zwp_virtual_keyboard_v1_modifiers(keyboard_, modifiers, 0, 0, 0);
        connection_.roundTrip();
    }

private:
    WaylandConnection connection_;
    zwp_virtual_keyboard_manager_v1* manager_;
    zwp_virtual_keyboard_v1* keyboard_;
};

// A program with a window, which gets the keyboard, and what arrives there.
class Program {
public:
    Program(const std::string& display, const char* applicationId)
        : connection_(display.c_str()),
          compositor_(connection_.bind<wl_compositor>(wl_compositor_interface, 1)),
          shell_(connection_.bind<xdg_wm_base>(xdg_wm_base_interface, 1)),
          surface_(wl_compositor_create_surface(compositor_)),
          shellSurface_(xdg_wm_base_get_xdg_surface(shell_, surface_)),
          toplevel_(xdg_surface_get_toplevel(shellSurface_)),
          keyboard_(wl_seat_get_keyboard(connection_.seat())) {
        static constexpr xdg_surface_listener surfaceListener = {
            [](void* self, xdg_surface* surface, std::uint32_t serial) {
                xdg_surface_ack_configure(surface, serial);
                static_cast<Program*>(self)->isConfigured_ = true;
            }};
        xdg_surface_add_listener(shellSurface_, &surfaceListener, this);
        static constexpr wl_keyboard_listener keyboardListener = {
            [](void* /*self*/, wl_keyboard* /*keyboard*/, std::uint32_t /*format*/, int file, std::uint32_t /*size*/) {
                ::close(file);
            },
            [](void* self, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, wl_surface* /*surface*/,
               wl_array* /*keys*/) { static_cast<Program*>(self)->hasKeyboard_ = true; },
            ignored,
            [](void* self, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, std::uint32_t /*time*/,
               std::uint32_t key, std::uint32_t state) {
                auto& program = *static_cast<Program*>(self);
                if (state != WL_KEYBOARD_KEY_STATE_PRESSED) return;
                program.presses_.push_back(std::to_string(key) + " with " + std::to_string(program.modifiers_));
            },
            [](void* self, wl_keyboard* /*keyboard*/, std::uint32_t /*serial*/, std::uint32_t depressed,
               std::uint32_t /*latched*/, std::uint32_t /*locked*/,
               std::uint32_t /*group*/) { static_cast<Program*>(self)->modifiers_ = depressed; },
            ignored};
        wl_keyboard_add_listener(keyboard_, &keyboardListener, this);
        xdg_toplevel_set_app_id(toplevel_, applicationId);
        wl_surface_commit(surface_);
        connection_.waitUntil([this] { return isConfigured_; });
        show();
        connection_.waitUntil([this] { return hasKeyboard_; });
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        wl_keyboard_release(keyboard_);
        xdg_toplevel_destroy(toplevel_);
        xdg_surface_destroy(shellSurface_);
        wl_surface_destroy(surface_);
        wl_buffer_destroy(buffer_);
        xdg_wm_base_destroy(shell_);
        wl_compositor_destroy(compositor_);
    }

    // "46 with 4": the codes of the keys pressed so far, each with the modifiers that counted.
    std::vector<std::string> received() {
        connection_.roundTrip();
        return std::exchange(presses_, {});
    }

private:
    void show() {
        constexpr int side = 16;
        constexpr int size = side * side * 4;
        const int file = ::memfd_create("picture", MFD_CLOEXEC);
        ASSERT_EQ(::ftruncate(file, size), 0);
        wl_shm_pool* const pool = wl_shm_create_pool(connection_.sharedMemory(), file, size);
        buffer_ = wl_shm_pool_create_buffer(pool, 0, side, side, side * 4, WL_SHM_FORMAT_XRGB8888);
        wl_surface_attach(surface_, buffer_, 0, 0);
        wl_surface_commit(surface_);
        wl_shm_pool_destroy(pool);
        ::close(file);
    }

    WaylandConnection connection_;
    wl_compositor* compositor_;
    xdg_wm_base* shell_;
    wl_surface* surface_;
    xdg_surface* shellSurface_;
    xdg_toplevel* toplevel_;
    wl_keyboard* keyboard_;
    wl_buffer* buffer_ = nullptr;
    bool isConfigured_ = false;
    bool hasKeyboard_ = false;
    std::uint32_t modifiers_ = 0;
    std::vector<std::string> presses_;
};

// Another program in which something is selected, as long as the object lives.
class Selected {
public:
    explicit Selected(const std::string& display)
        : connection_(display.c_str()), device_(connection_, [](ClipboardSource) {}), source_(device_.makeSource()) {
        zwlr_data_control_source_v1_offer(source_.get(), "text/plain");
        device_.set(ClipboardSource::primary, source_.get());
        connection_.roundTrip();
    }

private:
    WaylandConnection connection_;
    WaylandDataDevice device_;
    WaylandDataSource source_;
};

class WaylandSimulateKeyboardTest : public testing::Test {
protected:
    void SetUp() override {
        if (WaylandTestCompositor::mayBeSkipped()) GTEST_SKIP() << "sway is not installed (Debian package sway)";
        compositor.emplace();
        user.emplace(compositor->display());
        connection.emplace(compositor->display().c_str());
        keyboard.emplace(*connection);
    }

    std::unique_ptr<Program> open(const char* applicationId) const {
        return std::make_unique<Program>(compositor->display(), applicationId);
    }

    std::unique_ptr<Selected> select() const { return std::make_unique<Selected>(compositor->display()); }

    std::optional<WaylandTestCompositor> compositor;
    std::optional<UserKeyboard> user;
    std::optional<WaylandConnection> connection;
    std::optional<WaylandSimulateKeyboard> keyboard;
};

// Some programs make up a keymap for the characters that they type.
constexpr const char* keymapOfOneX = R"(xkb_keymap { xkb_keycodes "x" { minimum = 8; maximum = 255; <K1> = 9; };
                                                     xkb_types "x" { include "complete" };
                                                     xkb_compatibility "x" { include "complete" };
                                                     xkb_symbols "x" { key <K1> { [ x ] }; }; };)";

constexpr std::uint32_t shift = 1, control = 4, super = 64;  // modifiers of XKB

std::vector<std::string> strokes(std::uint32_t modifierKey, std::uint32_t key, std::uint32_t modifiers) {
    return {std::to_string(modifierKey) + " with 0", std::to_string(key) + " with " + std::to_string(modifiers)};
}

TEST_F(WaylandSimulateKeyboardTest, KeysStillHeldFromAShortcutDoNotChangeTheCombination) {
    ASSERT_TRUE(keyboard->isTrusted());
    const auto program = open("editor");
    program->received();
    keyboard->copy();
    EXPECT_EQ(program->received(), strokes(KEY_LEFTCTRL, KEY_C, control));
    user->press(KEY_LEFTMETA, super);
    program->received();
    keyboard->paste();
    EXPECT_EQ(program->received(), strokes(KEY_LEFTSHIFT, KEY_INSERT, shift));
}

TEST_F(WaylandSimulateKeyboardTest, TheKeyIsTheOneThatTypesTheLetter) {
    const auto program = open("editor");
    const auto copyAfter = [&](const std::string& keymap) {
        user->setKeymap(keymap);
        user->press(KEY_ESC, 0);
        program->received();
        keyboard->copy();
        return program->received();
    };
    EXPECT_EQ(copyAfter(keymapOf("ru", "")), strokes(KEY_LEFTCTRL, KEY_C, control));  // no key types c
    EXPECT_EQ(copyAfter(keymapOf("us", "dvorak")), strokes(KEY_LEFTCTRL, KEY_I, control));
    EXPECT_EQ(copyAfter(keymapOf("ru,us", ",dvorak")), strokes(KEY_LEFTCTRL, KEY_I, control));  // in the second group
    EXPECT_EQ(copyAfter(keymapOfOneX), strokes(KEY_LEFTCTRL, KEY_I, control));
}

TEST_F(WaylandSimulateKeyboardTest, TheLayoutIsThatOfTheSeatsKeyboard) {
    using KeyboardShortcuts::Key;
    WaylandConnection other(compositor->display().c_str());
    const WaylandKeyboardLayout layout(other);
    EXPECT_EQ(layout.character(Key::a), "a");
    EXPECT_EQ(layout.key(KEY_A + 8), Key::a);  // by the codes of XKB, which events bring
    const auto useKeymap = [&](const std::string& keymap) {
        user->setKeymap(keymap);
        user->press(KEY_ESC, 0);
        const WaylandConnection later(compositor->display().c_str());  // by then everybody has been told
        other.process();
    };
    useKeymap(keymapOf("fr,us", ""));
    EXPECT_EQ(layout.character(Key::a), "q");
    EXPECT_EQ(layout.snapshot()->character(Key::w), "z");
    EXPECT_EQ(layout.key(KEY_A + 8), Key::a);
    useKeymap(keymapOfOneX);
    EXPECT_EQ(layout.character(Key::a), "q");
}

TEST_F(WaylandSimulateKeyboardTest, KnowsWhetherAnotherProgramHasTheKeyboard) {
    EXPECT_FALSE(keyboard->reachesOtherProgram());
    EXPECT_EQ(keyboard->frontWindow(), SimulateKeyboard::Window::nowhere);
    auto program = open("editor");
    EXPECT_TRUE(keyboard->reachesOtherProgram());
    const SimulateKeyboard::Window window = keyboard->frontWindow();
    {
        const auto own = open(applicationId);
        EXPECT_FALSE(keyboard->reachesOtherProgram());
        EXPECT_NE(keyboard->frontWindow(), window);
    }
    EXPECT_EQ(keyboard->frontWindow(), window);
    EXPECT_TRUE(keyboard->reachesOtherProgram());
    program.reset();
    const auto other = open("editor");
    EXPECT_NE(keyboard->frontWindow(), window);
}

TEST_F(WaylandSimulateKeyboardTest, WhatIsSelectedCountsSinceTheWindowGotTheKeyboard) {
    using enum SimulateKeyboard::Selection;
    const auto before = select();
    keyboard.reset();
    connection.emplace(compositor->display().c_str());
    keyboard.emplace(*connection);
    const auto editor = open("org.kde.kate");
    EXPECT_EQ(keyboard->selection(), copied);
    const auto inEditor = select();
    EXPECT_EQ(keyboard->selection(), either);
    editor->received();
    keyboard->paste();
    EXPECT_EQ(editor->received(), strokes(KEY_LEFTSHIFT, KEY_INSERT, shift));
    {
        const auto other = open("firefox");
        EXPECT_EQ(keyboard->selection(), copied);
    }
    EXPECT_EQ(keyboard->selection(), copied);  // that may be long ago

    // What this program lends to be pasted is nobody's selection.
    const auto again = select();
    ASSERT_EQ(keyboard->selection(), either);
    WaylandSelection lending(compositor->display().c_str(), {.changedByOthers = [](ClipboardSource) {}}, {});
    lending.own(ClipboardSource::primary, {{.type = "text/plain"}});
    EXPECT_EQ(keyboard->selection(), copied);
}

TEST_F(WaylandSimulateKeyboardTest, PressesNothingInATerminal) {
    using enum SimulateKeyboard::Selection;
    const auto editor = open("org.kde.kate");
    EXPECT_EQ(keyboard->selection(), copied);
    const auto inEditor = select();
    const auto terminal = open("foot");
    EXPECT_EQ(keyboard->selection(), absent);
    keyboard->copy();
    keyboard->paste();
    EXPECT_EQ(terminal->received(), std::vector<std::string>{});
    auto inTerminal = select();
    EXPECT_EQ(keyboard->selection(), shown);
    {
        const auto other = open("Alacritty");
        EXPECT_EQ(keyboard->selection(), absent);
    }
    EXPECT_EQ(keyboard->selection(), shown);  // and back again
}

TEST_F(WaylandSimulateKeyboardTest, ACompositorThatHangsOrDiesIsNotWaitedFor) {
    const auto program = open("editor");
    ASSERT_TRUE(keyboard->reachesOtherProgram());
    compositor->freeze();
    keyboard->copy();
    EXPECT_TRUE(keyboard->reachesOtherProgram());  // as it was told last
    EXPECT_TRUE(connection->process());
    compositor->stop();
    while (connection->process()) {
    }
    EXPECT_FALSE(keyboard->isTrusted());
    keyboard->paste();
}

TEST(KWinSimulateKeyboardTest, PressesKeysAndKnowsWhereTheyGo) {
    using enum SimulateKeyboard::Selection;
    if (KWinTestCompositor::mayBeSkipped()) GTEST_SKIP() << "KWin is not installed (Debian package kwin-wayland)";
    const KWinTestCompositor compositor;
    WaylandConnection connection(compositor.display().c_str());
    WaylandSimulateKeyboard keyboard(connection);
    ASSERT_TRUE(keyboard.isTrusted());
    EXPECT_FALSE(keyboard.reachesOtherProgram());
    auto editor = std::make_unique<Program>(compositor.display(), "org.kde.kate");
    const SimulateKeyboard::Window window = keyboard.frontWindow();
    EXPECT_TRUE(keyboard.reachesOtherProgram());
    EXPECT_NE(window, SimulateKeyboard::Window::nowhere);
    EXPECT_EQ(keyboard.selection(), copied);
    keyboard.copy();
    EXPECT_EQ(editor->received(), strokes(KEY_LEFTCTRL, KEY_C, control));
    // A key that the user still holds from a shortcut.
    WaylandConnection user(compositor.display().c_str());
    auto* const input = user.bind<org_kde_kwin_fake_input>(org_kde_kwin_fake_input_interface, 4);
    org_kde_kwin_fake_input_authenticate(input, "test", "");
    org_kde_kwin_fake_input_keyboard_key(input, KEY_LEFTMETA, WL_KEYBOARD_KEY_STATE_PRESSED);
    user.roundTrip();
    org_kde_kwin_fake_input_destroy(input);
    const Selected inEditor(compositor.display());
    EXPECT_EQ(keyboard.selection(), either);
    editor->received();
    keyboard.paste();
    EXPECT_EQ(editor->received(), strokes(KEY_LEFTSHIFT, KEY_INSERT, shift));
    {
        const Program terminal(compositor.display(), "org.kde.konsole");
        EXPECT_EQ(keyboard.selection(), absent);
        EXPECT_NE(keyboard.frontWindow(), window);
    }
    EXPECT_EQ(keyboard.frontWindow(), window);
}

}  // namespace
}  // namespace ovrin
