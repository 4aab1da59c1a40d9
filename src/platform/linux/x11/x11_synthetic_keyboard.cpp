#include "platform/linux/x11/x11_synthetic_keyboard.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>

#include <unistd.h>
#include <xcb/xtest.h>

#include "platform/linux/desktop/terminal_program.h"
#include "platform/linux/x11/x11_keyboard.h"
#include "platform/linux/x11/xcb_xkb.h"

namespace ovrin {

using KeyboardShortcuts::Key;

namespace {

// Programs go by the character that a key types, so on a layout that has moved the letter its key moves too. Where the
// layout types no such letter (Cyrillic), programs take the key at the letter's usual place.
std::optional<xcb_keycode_t> keyCodeOf(const X11Keyboard& keyboard, std::uint32_t group, const char* letter,
                                       Key place) {
    constexpr int keyCount = 128;  // of the storage format
    std::vector<xcb_keycode_t> keyCodes;
    for (int code = 0; code < keyCount && keyCodes.empty(); ++code) {
        if (keyboard.keys().character(Key{code}, group) == letter) keyCodes = keyboard.keyCodes(Key{code});
    }
    if (keyCodes.empty()) keyCodes = keyboard.keyCodes(place);
    if (keyCodes.empty()) return std::nullopt;
    return keyCodes.front();
}

bool hasProperty(xcb_connection_t* connection, xcb_window_t window, const char* name) {
    const X11Reply<xcb_get_property_reply_t> property(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, atomNamed(connection, name), XCB_ATOM_ANY, 0, 0), nullptr));
    return property && property->type != XCB_ATOM_NONE;
}

xcb_window_t parentOf(xcb_connection_t* connection, xcb_window_t window) {
    const X11Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    return tree ? tree->parent : xcb_window_t{XCB_WINDOW_NONE};
}

// The window itself or the one around it that the window manager manages: there it keeps WM_STATE (ICCCM 4.1.3.1).
// Windows of its own, which hold the keyboard from one program to the next, have none. XCB_WINDOW_NONE without one.
xcb_window_t managedWindowAround(xcb_connection_t* connection, xcb_window_t window) {
    while (window > XCB_INPUT_FOCUS_POINTER_ROOT && !hasProperty(connection, window, "WM_STATE")) {
        window = parentOf(connection, window);
    }
    return window > XCB_INPUT_FOCUS_POINTER_ROOT ? window : xcb_window_t{XCB_WINDOW_NONE};
}

// What the window says about its program; none when it says nothing.
std::optional<pid_t> processOf(xcb_connection_t* connection, xcb_window_t window) {
    const X11Reply<xcb_get_property_reply_t> property(xcb_get_property_reply(
        connection,
        xcb_get_property(connection, 0, window, atomNamed(connection, "_NET_WM_PID"), XCB_ATOM_CARDINAL, 0, 1),
        nullptr));
    if (!property || xcb_get_property_value_length(property.get()) != sizeof(std::uint32_t)) return std::nullopt;
    return static_cast<pid_t>(*static_cast<const std::uint32_t*>(xcb_get_property_value(property.get())));
}

// By the two parts of WM_CLASS, each with a zero at its end (ICCCM 4.1.2.5).
bool isTerminal(xcb_connection_t* connection, xcb_window_t window) {
    constexpr std::uint32_t longest = 64;  // in units of four bytes
    const X11Reply<xcb_get_property_reply_t> property(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, longest), nullptr));
    if (!property) return false;
    std::string_view rest(static_cast<const char*>(xcb_get_property_value(property.get())),
                          static_cast<std::size_t>(xcb_get_property_value_length(property.get())));
    while (!rest.empty()) {
        const std::string_view part = rest.substr(0, rest.find('\0'));
        if (isTerminalProgram(part)) return true;
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    }
    return false;
}

// The server gives each client a range of names of its own.
bool areOfOneClient(xcb_connection_t* connection, xcb_window_t one, xcb_window_t other) {
    return ((one ^ other) & ~xcb_get_setup(connection)->resource_id_mask) == 0;
}

// The first key that has the modifier; 0 without one.
xcb_keycode_t modifierKey(xcb_connection_t* connection, xcb_map_index_t modifier) {
    const X11Reply<xcb_get_modifier_mapping_reply_t> mapping(
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
    if (!mapping) return 0;
    const std::size_t count = mapping->keycodes_per_modifier;
    const std::span keyCodes(xcb_get_modifier_mapping_keycodes(mapping.get()) + modifier * count, count);
    const auto key = std::ranges::find_if(keyCodes, [](xcb_keycode_t keyCode) { return keyCode != 0; });
    return key != keyCodes.end() ? *key : xcb_keycode_t{0};
}

}  // namespace

X11SimulateKeyboard::X11SimulateKeyboard(const char* display, Reach reach)
    : connection_(connectToX11(display)), reach_(reach) {
    followX11Keyboard(connection_.get());
}

bool X11SimulateKeyboard::isTrusted() {
    if (isOutOfReach(focusedWindow())) return false;
    const auto* const extension = xcb_get_extension_data(connection_.get(), &xcb_test_id);
    if (extension == nullptr || extension->present == 0) return false;
    const X11Reply<xcb_test_get_version_reply_t> version(xcb_test_get_version_reply(
        connection_.get(), xcb_test_get_version(connection_.get(), XCB_TEST_MAJOR_VERSION, XCB_TEST_MINOR_VERSION),
        nullptr));
    return version != nullptr;
}

bool X11SimulateKeyboard::reachesOtherProgram() {
    const xcb_window_t window = focusedWindow();
    return isOutOfReach(window) || (window != XCB_WINDOW_NONE && processOf(connection_.get(), window) != getpid());
}

SimulateKeyboard::Window X11SimulateKeyboard::frontWindow() {
    return Window{focusedWindow()};
}

SimulateKeyboard::Selection X11SimulateKeyboard::selection() {
    xcb_connection_t* const connection = connection_.get();
    const xcb_window_t window = focusedWindow();
    const bool isTerminalInFront = window != XCB_WINDOW_NONE && isTerminal(connection, window);
    if (!isTerminalInFront && !isOutOfReach(window)) return Selection::copied;
    const X11Reply<xcb_get_selection_owner_reply_t> primary(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, XCB_ATOM_PRIMARY), nullptr));
    const bool isThere = primary && primary->owner != XCB_WINDOW_NONE;
    const bool isShown = isThere && (!isTerminalInFront || areOfOneClient(connection, primary->owner, window));
    return isShown ? Selection::shown : Selection::absent;
}

void X11SimulateKeyboard::copy() {
    if (selection() == Selection::copied) pressWithControl("c", Key::c);
}

void X11SimulateKeyboard::paste() {
    if (selection() == Selection::copied) pressWithControl("v", Key::v);
}

bool X11SimulateKeyboard::isOutOfReach(xcb_window_t focused) const {
    return reach_ == Reach::x11Programs && focused == XCB_WINDOW_NONE;
}

// The managed one.
xcb_window_t X11SimulateKeyboard::focusedWindow() {
    xcb_connection_t* const connection = connection_.get();
    const X11Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    return focus ? managedWindowAround(connection, focus->focus) : xcb_window_t{XCB_WINDOW_NONE};
}

void X11SimulateKeyboard::pressWithControl(const char* letter, Key place) {
    xcb_connection_t* const connection = connection_.get();
    // Changes of the keyboard are not followed but looked at now; what was told of them is dropped.
    while (X11Event(xcb_poll_for_event(connection))) {
    }
    const std::optional<X11Keyboard> keyboard = X11Keyboard::read(connection);
    const X11Reply<xcb_xkb_get_state_reply_t> state(
        xcb_xkb_get_state_reply(connection, xcb_xkb_get_state(connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    const xcb_keycode_t control = modifierKey(connection, XCB_MAP_INDEX_CONTROL);
    if (!keyboard || !state || control == 0) return;
    const std::optional<xcb_keycode_t> key = keyCodeOf(*keyboard, state->group, letter, place);
    if (!key) return;

    for (const xcb_keycode_t held : heldKeys()) fake(XCB_KEY_RELEASE, held);
    for (const xcb_keycode_t keyCode : {control, *key}) fake(XCB_KEY_PRESS, keyCode);
    for (const xcb_keycode_t keyCode : {*key, control}) fake(XCB_KEY_RELEASE, keyCode);
    // An answer comes after all of that.
    X11Reply<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

std::vector<xcb_keycode_t> X11SimulateKeyboard::heldKeys() {
    std::vector<xcb_keycode_t> held;
    const X11Reply<xcb_query_keymap_reply_t> reply(
        xcb_query_keymap_reply(connection_.get(), xcb_query_keymap(connection_.get()), nullptr));
    if (!reply) return held;
    for (unsigned keyCode = 0; keyCode < 256; ++keyCode) {
        const unsigned byte = std::span(reply->keys)[keyCode / 8];
        if ((byte >> keyCode % 8 & 1U) != 0) held.push_back(static_cast<xcb_keycode_t>(keyCode));
    }
    return held;
}

void X11SimulateKeyboard::fake(std::uint8_t event, xcb_keycode_t keyCode) {
    xcb_test_fake_input(connection_.get(), event, keyCode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

}  // namespace ovrin
