#include "platform/linux/x11/x11_hot_keys.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/error.h"
#include "platform/linux/x11/xcb_xkb.h"

namespace ovrin {

using KeyboardShortcuts::Shortcut;

namespace {

constexpr const char* connectionIsLost = "与显示服务器的连接已断开，快捷键不可用。";
constexpr const char* combinationIsTaken = "此组合键已被其他程序占用。";
constexpr const char* keyIsMissing = "当前键盘上没有这个键。";
constexpr const char* modifierIsMissing = "当前键盘上没有所需的修饰键。";
constexpr const char* grabWasRefused = "显示服务器拒绝了此组合键。";

// Key events carry eight modifier bits; above them are the mouse buttons and the layout group.
constexpr std::uint16_t modifierBits = 0xff;
constexpr std::uint8_t sentEventBit = 0x80;

std::vector<xcb_window_t> rootWindows(xcb_connection_t* connection) {
    std::vector<xcb_window_t> roots;
    for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection)); screen.rem > 0; xcb_screen_next(&screen)) {
        roots.push_back(screen.data->root);
    }
    return roots;
}

xcb_window_t makeMailbox(xcb_connection_t* connection, xcb_window_t root) {
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, 0, window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0,
                      nullptr);
    return window;
}

// A held key is then one press, further presses, and one release; without this the server would send pairs.
void askForDetectableAutoRepeat(xcb_connection_t* connection) {
    constexpr std::uint32_t flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    xcb_discard_reply(connection,
                      xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, flag, flag, 0, 0, 0).sequence);
}

}  // namespace

X11HotKeys::X11HotKeys(EventLoop& mainLoop, const char* display)
    : mainLoop_(mainLoop),
      connection_(connectToX11(display)),
      keyboardEvent_(followX11Keyboard(connection_.get())),
      keyboard_(readX11KeyboardOrThrow(connection_.get())),
      roots_(rootWindows(connection_.get())),
      mailbox_(makeMailbox(connection_.get(), roots_.front())) {
    askForDetectableAutoRepeat(connection_.get());
    xcb_flush(connection_.get());
    reader_ = std::thread([this] { readEvents(); });
}

X11HotKeys::~X11HotKeys() {
    wakeReader();
    reader_.join();
}

void X11HotKeys::setEvents(HotKeyEvents events) {
    events_ = std::move(events);
}

void X11HotKeys::setHotKeys(const std::vector<HotKey>& hotKeys) {
    giveBackAllBut(hotKeys);
    for (const HotKey& hotKey : hotKeys) {
        if (hotKeys_.contains(hotKey.name)) continue;
        try {
            auto grabs = grabsFor(hotKey.shortcut);
            grab(grabs);
            if (isSuspended_) ungrab(grabs);
            hotKeys_.emplace(hotKey.name, Grabbed{hotKey.shortcut, std::move(grabs)});
            if (events_.described) events_.described(hotKey.name, "");
        } catch (const Error& error) {
            tellOf({{.name = hotKey.name, .reason = error.errorDescription()}});
        }
    }
}

void X11HotKeys::giveBackAllBut(const std::vector<HotKey>& wanted) {
    std::vector<Grab> grabs;
    std::erase_if(hotKeys_, [&](const auto& entry) {
        const auto& [name, grabbed] = entry;
        const auto found = std::ranges::find(wanted, name, &HotKey::name);
        if (found != wanted.end() && found->shortcut == grabbed.shortcut) return false;
        grabs.insert(grabs.end(), grabbed.grabs.begin(), grabbed.grabs.end());
        return true;
    });
    if (!isSuspended_ && !grabs.empty()) ungrab(grabs);
}

void X11HotKeys::suspend() {
    if (std::exchange(isSuspended_, true)) return;
    ungrabAll();
    heldKeys_.clear();
}

void X11HotKeys::resume() {
    if (!std::exchange(isSuspended_, false)) return;
    mainLoop_.post([this, alive = std::weak_ptr(isAlive_), failures = grabAll()] {
        if (!alive.expired()) tellOf(failures);
    });
}

// On the reader's thread. Ends with a message to the mailbox or with the connection.
void X11HotKeys::readEvents() {
    const std::weak_ptr<const bool> alive = isAlive_;
    while (auto received = X11Event(xcb_wait_for_event(connection_.get()))) {
        if ((received->response_type & ~sentEventBit) == XCB_CLIENT_MESSAGE) return;
        const std::shared_ptr<const xcb_generic_event_t> event = std::move(received);
        mainLoop_.post([this, alive, event] {
            if (!alive.expired()) handle(*event);
        });
    }
    mainLoop_.post([this, alive] {
        if (!alive.expired()) handleLostConnection();
    });
}

void X11HotKeys::wakeReader() {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = mailbox_;
    message.type = XCB_ATOM_NOTICE;
    // With no event mask the message goes to the client that made the window: to us alone.
    xcb_send_event(connection_.get(), 0, mailbox_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
    xcb_flush(connection_.get());
}

void X11HotKeys::handle(const xcb_generic_event_t& event) {
    if (event.response_type == XCB_KEY_PRESS) {
        handleKeyPress(reinterpret_cast<const xcb_key_press_event_t&>(event));
    } else if (event.response_type == XCB_KEY_RELEASE) {
        handleKeyRelease(reinterpret_cast<const xcb_key_release_event_t&>(event).detail);
    } else if (event.response_type == keyboardEvent_ && !isKeyboardChangePending_) {
        // One change of the layout comes as a handful of events.
        isKeyboardChangePending_ = true;
        mainLoop_.post([this, alive = std::weak_ptr(isAlive_)] {
            if (!alive.expired()) handleKeyboardChange();
        });
    }
}

void X11HotKeys::handleKeyPress(const xcb_key_press_event_t& event) {
    if (isSuspended_) return;  // it was on its way before
    if (heldKeys_.empty()) grabbingKey_ = event.detail;
    const auto [held, isNew] = heldKeys_.try_emplace(event.detail);
    if (!isNew) return;
    const auto modifiers = static_cast<std::uint16_t>(event.state & modifierBits & ~keyboard_.lockMask());
    const Grab pressed{.modifiers = modifiers, .keyCode = event.detail};
    const auto found = std::find_if(hotKeys_.begin(), hotKeys_.end(), [&](const auto& entry) {
        const auto& grabs = entry.second.grabs;
        return std::find(grabs.begin(), grabs.end(), pressed) != grabs.end();
    });
    if (found == hotKeys_.end()) return;
    held->second = found->first;
    if (events_.keyDown) events_.keyDown(found->first);
}

void X11HotKeys::handleKeyRelease(xcb_keycode_t keyCode) {
    const auto node = heldKeys_.extract(keyCode);
    if (keyCode == grabbingKey_) heldKeys_.clear();
    if (!node || !node.mapped() || !hotKeys_.contains(*node.mapped())) return;
    if (events_.keyUp) events_.keyUp(*node.mapped());
}

void X11HotKeys::handleKeyboardChange() {
    isKeyboardChangePending_ = false;
    // Without an answer the connection is lost, which the reader finds out too.
    auto changed = X11Keyboard::read(connection_.get());
    if (!changed || changed->hasSameGrabsAs(keyboard_)) return;

    if (!isSuspended_) ungrabAll();
    keyboard_ = std::move(*changed);
    heldKeys_.clear();
    const std::vector<Failure> failures = grabAll();
    if (isSuspended_) ungrabAll();
    tellOf(failures);
    if (events_.keyboardChanged) events_.keyboardChanged();
}

// With the keys of the keyboard as it is now. What fails is no longer in force.
std::vector<X11HotKeys::Failure> X11HotKeys::grabAll() {
    std::vector<Failure> failures;
    for (auto entry = hotKeys_.begin(); entry != hotKeys_.end();) {
        auto& [name, hotKey] = *entry;
        try {
            hotKey.grabs = grabsFor(hotKey.shortcut);
            grab(hotKey.grabs);
            ++entry;
        } catch (const Error& error) {
            failures.push_back({.name = name, .reason = error.errorDescription()});
            entry = hotKeys_.erase(entry);
        }
    }
    return failures;
}

void X11HotKeys::ungrabAll() {
    std::vector<Grab> grabs;
    for (const auto& entry : hotKeys_) grabs.insert(grabs.end(), entry.second.grabs.begin(), entry.second.grabs.end());
    ungrab(grabs);
}

void X11HotKeys::handleLostConnection() {
    std::vector<Failure> lost;
    for (const auto& entry : hotKeys_) lost.push_back({.name = entry.first, .reason = connectionIsLost});
    hotKeys_.clear();
    tellOf(lost);
}

// What was set again since then is in force.
void X11HotKeys::tellOf(const std::vector<Failure>& failures) const {
    for (const auto& [name, reason] : failures) {
        if (!hotKeys_.contains(name) && events_.failed) events_.failed(name, reason);
    }
}

std::vector<X11HotKeys::Grab> X11HotKeys::grabsFor(const Shortcut& shortcut) const {
    const auto modifiers = keyboard_.modifierMask(shortcut.modifiers());
    if (!modifiers) throw Error(modifierIsMissing);
    std::vector<Grab> grabs;
    for (const auto keyCode : keyboard_.keyCodes(shortcut.key())) {
        grabs.push_back({.modifiers = *modifiers, .keyCode = keyCode});
    }
    if (grabs.empty()) throw Error(keyIsMissing);
    return grabs;
}

// The modifiers with every subset of the lock bits.
std::vector<std::uint16_t> X11HotKeys::modifierStates(std::uint16_t modifiers) const {
    const std::uint16_t locks = keyboard_.lockMask();
    std::vector<std::uint16_t> states;
    std::uint16_t subset = locks;
    while (true) {
        states.push_back(static_cast<std::uint16_t>(modifiers | subset));
        if (subset == 0) return states;
        subset = static_cast<std::uint16_t>((subset - 1) & locks);
    }
}

// All or nothing. The requests go out together, so that waiting for their answers costs one round trip.
void X11HotKeys::grab(const std::vector<Grab>& grabs) {
    std::vector<xcb_void_cookie_t> requests;
    for (const auto& wanted : grabs) {
        for (const auto state : modifierStates(wanted.modifiers)) {
            for (const auto root : roots_) {
                requests.push_back(xcb_grab_key_checked(connection_.get(), 0, root, state, wanted.keyCode,
                                                        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
            }
        }
    }
    const char* failure = nullptr;
    for (const auto& request : requests) {
        const X11Reply<xcb_generic_error_t> error(xcb_request_check(connection_.get(), request));
        if (error) failure = error->error_code == XCB_ACCESS ? combinationIsTaken : grabWasRefused;
    }
    if (xcb_connection_has_error(connection_.get()) != 0) throw Error(connectionIsLost);
    if (failure == nullptr) return;
    ungrab(grabs);
    throw Error(failure);
}

// Other programs can have the combinations when it returns.
void X11HotKeys::ungrab(const std::vector<Grab>& grabs) {
    for (const auto& held : grabs) {
        for (const auto state : modifierStates(held.modifiers)) {
            for (const auto root : roots_) xcb_ungrab_key(connection_.get(), held.keyCode, root, state);
        }
    }
    const X11Reply<xcb_get_input_focus_reply_t> roundTrip(
        xcb_get_input_focus_reply(connection_.get(), xcb_get_input_focus(connection_.get()), nullptr));
}

}  // namespace ovrin
