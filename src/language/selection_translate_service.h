// Reads and replaces the selection of whatever program is in front, without its cooperation: presses its keys for copy
// and paste, and borrows the clipboard for as long as that takes. Where the desktop shows what is selected it reads
// that, which may be out of date: what is to be replaced is copied all the same, if keys do that.
//
// Main thread. The user's clipboard comes back at the end, whatever the end is, unless a replacement is left on it. A
// stop ends every wait at once; a replacement that has begun is still pasted.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "language/pasteboard_snapshot.h"
#include "language/selection_access.h"
#include "language/selection_error.h"
#include "platform/clipboard_service.h"
#include "platform/synthetic_keyboard.h"

namespace ovrin {

class SelectionTranslateService final : public SelectionAccess {
public:
    // Both outlive the service and its operations.
    SelectionTranslateService(ClipboardService& clipboard, SimulateKeyboard& keyboard);

    // Both first give a window of this program that has just closed up to 300 ms to hand the keyboard back.

    // Throws SelectionError: noSelection after 360 ms without a text, pictureTooLarge before any key is pressed.
    Task<SelectedText> selectedText(SelectionUse use) override;

    // Takes 240 ms where it pastes, besides the copy of the clipboard, and up to a second where nobody has read the
    // replacement by then.
    Task<Replacement> replaceSelection(std::string text, SimulateKeyboard::Window window) override;

private:
    Task<bool> hasPermission();
    Replacement possibleReplacement(SimulateKeyboard::Window window);
    Task<void> waitForOtherProgram();
    Task<std::string> shownText();
    Task<std::string> copiedText(SimulateKeyboard::Window window);
    Task<std::vector<PasteboardSnapshot>> snapshotsToPaste();
    Task<void> paste();

    ClipboardService& clipboard_;
    SimulateKeyboard& keyboard_;
};

}  // namespace ovrin
