#include "language/selection_translate_service.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <utility>

#include "base/error.h"
#include "base/suspension.h"
#include "base/text.h"
#include "language/pasteboard_snapshot.h"

namespace ovrin {

namespace {

using namespace std::chrono_literals;

// The keys of copy and paste are held as long as a quick typist holds them. An input method in between, fcitx5 on KWin
// with both cores of the machine busy, needed more than 8 ms for one in eight, and never 15.
constexpr auto keyHold = 45ms;

// The program in front answers the copy keys when it gets round to it.
constexpr auto pollInterval = 45ms;
constexpr int maximumPolls = 8;

// A window of this program that has just closed gives the keyboard back when the window manager gets round to it.
constexpr auto focusInterval = 10ms;
constexpr int maximumFocusChecks = 30;

// Clipboard managers look at every new content before the program can paste it; the program itself reads the clipboard
// some time after it got the keys. On a busy machine that takes longer, and what it found then would be what the user
// had there. The clipboard does not wait for ever, because a program need not read it at all.
constexpr auto timeBeforePaste = 60ms;
constexpr auto timeAfterPaste = 180ms;
constexpr auto readInterval = 45ms;
constexpr int maximumReadChecks = 18;

// A wait that is interrupted is merely over: the clipboard is borrowed, and what was begun has to be brought to its
// end.
Task<void> waitUnlessInterrupted(EventLoop::Duration duration) {
    try {
        co_await sleepFor(duration);
    } catch (const CancellationError&) {
        // The caller goes on at once.
    }
}

// Whatever becomes of the flow, no modifier stays pressed.
class HeldKeys {
public:
    explicit HeldKeys(SimulateKeyboard& keyboard) : keyboard_(keyboard) {}
    HeldKeys(const HeldKeys&) = delete;
    HeldKeys& operator=(const HeldKeys&) = delete;
    ~HeldKeys() { keyboard_.letGo(); }

private:
    SimulateKeyboard& keyboard_;
};

Task<void> holdKeys(SimulateKeyboard& keyboard) {
    const HeldKeys held(keyboard);
    co_await waitUnlessInterrupted(keyHold);
}

}  // namespace

SelectionTranslateService::SelectionTranslateService(ClipboardService& clipboard, SimulateKeyboard& keyboard)
    : clipboard_(clipboard), keyboard_(keyboard) {}

Task<SelectedText> SelectionTranslateService::selectedText(SelectionUse use) {
    using enum SimulateKeyboard::Selection;
    if (const auto problem = clipboard_.problem()) throw Error(*problem);
    co_await waitForOtherProgram();
    SelectedText selected{.text = "", .window = keyboard_.frontWindow()};
    const SimulateKeyboard::Selection selection = keyboard_.selection();
    if (selection == shown || (selection == either && use == SelectionUse::reading)) {
        selected.text = co_await shownText();
    }
    if (selected.text.empty() && (selection == copied || selection == either)) {
        const bool mayPressKeys = co_await hasPermission();
        if (!mayPressKeys) throw SelectionError::accessibilityPermissionRequired();
        selected.text = co_await copiedText(selected.window);
    }
    if (selected.text.empty()) throw SelectionError::noSelection();
    co_return selected;
}

Task<std::string> SelectionTranslateService::copiedText(SimulateKeyboard::Window window) {
    const PasteboardSnapshot snapshot = co_await PasteboardSnapshot::take(clipboard_);
    // The user may have gone elsewhere in the meantime, where the keys of copy do harm.
    if (keyboard_.frontWindow() != window) throw SelectionError::noSelection();
    std::int64_t seenChange = snapshot.changeCount();
    keyboard_.copy();
    co_await holdKeys(keyboard_);
    for (int poll = 0; poll < maximumPolls; ++poll) {
        if (poll > 0) co_await waitUnlessInterrupted(pollInterval);
        const std::int64_t change = clipboard_.changeCount();
        if (std::exchange(seenChange, change) == change) continue;
        const std::optional<std::string> copied = co_await clipboard_.readString();
        std::string text(text::trimmed(copied.value_or("")));
        if (!text.empty()) co_return text;
    }
    throw SelectionError::noSelection();
}

Task<std::string> SelectionTranslateService::shownText() {
    const std::optional<std::string> selected = co_await clipboard_.readString(ClipboardSource::primary);
    co_return std::string(text::trimmed(selected.value_or("")));
}

Task<Replacement> SelectionTranslateService::replaceSelection(std::string text, SimulateKeyboard::Window window) {
    co_await hasPermission();
    co_await waitForOtherProgram();
    const Replacement possible = possibleReplacement(window);
    if (possible != Replacement::pasted) {
        clipboard_.writeString(std::move(text));
        co_return possible;
    }
    std::vector<PasteboardSnapshot> snapshots = co_await snapshotsToPaste();
    if (snapshots.empty()) {
        clipboard_.writeString(std::move(text));
        co_return Replacement::offered;
    }
    for (const ClipboardSource source : clipboard_.pastedSources()) clipboard_.writeString(text, source);
    co_await waitUnlessInterrupted(timeBeforePaste);
    // The user may have gone elsewhere in the meantime.
    const Replacement stillPossible = possibleReplacement(window);
    if (stillPossible != Replacement::pasted) {
        snapshots.front().giveUp();
        co_return stillPossible;
    }
    co_await paste();
    co_return Replacement::pasted;
}

Task<void> SelectionTranslateService::paste() {
    const std::int64_t before = clipboard_.readCount();
    keyboard_.paste();
    co_await holdKeys(keyboard_);
    co_await waitUnlessInterrupted(timeAfterPaste - keyHold);
    for (int check = 0; check < maximumReadChecks && clipboard_.readCount() == before; ++check) {
        co_await waitUnlessInterrupted(readInterval);
    }
}

// The clipboard's first. None where the clipboard could not be put back, so that the replacement has to stay on it.
Task<std::vector<PasteboardSnapshot>> SelectionTranslateService::snapshotsToPaste() {
    std::vector<PasteboardSnapshot> snapshots;
    try {
        for (const ClipboardSource source : clipboard_.pastedSources()) {
            PasteboardSnapshot snapshot = co_await PasteboardSnapshot::take(clipboard_, source);
            snapshots.push_back(std::move(snapshot));
        }
    } catch (const SelectionError&) {
        snapshots.clear();
    }
    co_return snapshots;
}

Replacement SelectionTranslateService::possibleReplacement(SimulateKeyboard::Window window) {
    if (!keyboard_.isTrusted() || keyboard_.frontWindow() != window) return Replacement::offered;
    using enum SimulateKeyboard::Selection;
    const SimulateKeyboard::Selection selection = keyboard_.selection();
    return selection == copied || selection == either ? Replacement::pasted : Replacement::refused;
}

// Goes on without one in the end: the selection may be in a window of this program.
Task<void> SelectionTranslateService::waitForOtherProgram() {
    for (int check = 0; check < maximumFocusChecks && !keyboard_.reachesOtherProgram(); ++check) {
        co_await waitUnlessInterrupted(focusInterval);
    }
}

Task<bool> SelectionTranslateService::hasPermission() {
    if (keyboard_.isTrusted()) co_return true;
    const bool isGranted = co_await keyboard_.requestTrust();
    co_await waitForOtherProgram();  // the question may have had the keyboard
    co_return isGranted;
}

}  // namespace ovrin
