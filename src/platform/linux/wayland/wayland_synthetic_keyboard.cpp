#include "platform/linux/wayland/wayland_synthetic_keyboard.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "platform/linux/desktop/application_name.h"
#include "platform/linux/desktop/terminal_program.h"

namespace ovrin {
namespace {

// A compositor that is busy for longer is not waited for: what it told last counts.
constexpr std::chrono::milliseconds timeToCatchUp{100};

bool isPressable(SimulateKeyboard::Selection selection) {
    return selection == SimulateKeyboard::Selection::copied || selection == SimulateKeyboard::Selection::either;
}

}  // namespace

WaylandSimulateKeyboard::WaylandSimulateKeyboard(WaylandConnection& connection)
    : connection_(connection), toplevels_(WaylandToplevels::of(connection_)) {
    device_.emplace(connection_, [this](SelectionClient::Source source) {
        // What is selected at the start may be anybody's.
        if (source == SelectionClient::Source::primary && device_) noteSelection();
    });
    // Programs make up keymaps without the keys that are wanted here.
    keyboard_.emplace(connection_, [this](std::string text) {
        if (keymap_ && text == keymap_->text()) return;
        if (std::optional<WaylandKeymap> keymap = WaylandKeymap::read(std::move(text))) setKeymap(std::move(keymap));
    });
    // Now and not for the first stroke: of a new virtual keyboard, compositors take the focus away from the window in
    // front for a moment, and where it is the first keyboard, programs do not listen to it yet.
    keys_ = WaylandKeys::of(connection_, keyboard_->seat());
    setKeymap(keymap_ ? std::move(keymap_) : WaylandKeymap::ofEnvironment());
    connection_.roundTrip();
}

// Without a compositor no keys reach anybody.
void WaylandSimulateKeyboard::attend(const std::function<void()>& work) const {
    try {
        if (!connection_.isLost()) work();
    } catch (const Error&) {  // one that has gone is known to the connection; one that is slow may answer next time
    }
}

void WaylandSimulateKeyboard::catchUp() {
    attend([this] {
        connection_.roundTrip(timeToCatchUp);
        if (toplevels_ && toplevels_->takeUnknown()) connection_.roundTrip(timeToCatchUp);
    });
}

bool WaylandSimulateKeyboard::isTrusted() {
    return keys_ != nullptr && !connection_.isLost();
}

const WaylandToplevel* WaylandSimulateKeyboard::front() const {
    return toplevels_ ? toplevels_->front() : nullptr;
}

bool WaylandSimulateKeyboard::reachesOtherProgram() {
    catchUp();
    if (!toplevels_) return true;
    return front() != nullptr && front()->applicationId != applicationId;
}

SimulateKeyboard::Window WaylandSimulateKeyboard::frontWindow() {
    catchUp();
    return front() != nullptr ? Window{front()->number} : Window::nowhere;
}

void WaylandSimulateKeyboard::noteSelection() {
    const std::vector<std::string>& types = device_->types(SelectionClient::Source::primary);
    const bool isOurs = std::ranges::find(types, WaylandDataDevice::ownType) != types.end();
    selecting_ = front() != nullptr && !types.empty() && !isOurs ? Window{front()->number} : Window::nowhere;
    selectingSince_ = toplevels_ ? toplevels_->activationCount() : 0;
}

SimulateKeyboard::Selection WaylandSimulateKeyboard::selection() {
    catchUp();
    if (!isTrusted()) {
        return device_->types(SelectionClient::Source::primary).empty() ? Selection::absent : Selection::shown;
    }
    const bool isItsOwn = front() != nullptr && selecting_ == Window{front()->number};
    if (front() != nullptr && isTerminalProgram(front()->applicationId)) {
        return isItsOwn ? Selection::shown : Selection::absent;
    }
    return isItsOwn && selectingSince_ == toplevels_->activationCount() ? Selection::either : Selection::copied;
}

void WaylandSimulateKeyboard::copy() {
    if (isPressable(selection()) && keymap_) press(keymap_->controlC());
}

void WaylandSimulateKeyboard::paste() {
    if (isPressable(selection()) && keymap_) press(keymap_->shiftInsert());
}

void WaylandSimulateKeyboard::letGo() {
    if (!isTrusted()) return;
    keys_->letGo();
    catchUp();
}

// A virtual keyboard has that of the seat's own, so that programs that go by a key's place understand it as well.
void WaylandSimulateKeyboard::setKeymap(std::optional<WaylandKeymap> keymap) {
    keymap_ = std::move(keymap);
    if (keys_ && keymap_) keys_->useKeymap(*keymap_);
}

void WaylandSimulateKeyboard::press(const WaylandKeyStroke& stroke) {
    if (!isTrusted()) return;
    keys_->press(stroke);
    catchUp();
}

}  // namespace ovrin
