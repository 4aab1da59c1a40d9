// The thirteen global shortcuts of Ovrin, in the order of the settings page.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "shortcuts/name.h"

namespace ovrin {

enum class OvShortcut {
    captureOCR,
    captureTranslate,
    askWhatIsThis,
    directAskAI,
    inputTranslate,
    selectionTranslate,
    silentSelectionTranslate,
    silentInputTranslate,
    silentCaptureOCR,
    clipboardOCR,
    clipboardTranslate,
    showResultWindow,
    commandPalette,
};

inline constexpr std::array<OvShortcut, 13> allOvShortcuts{
    OvShortcut::captureOCR,
    OvShortcut::captureTranslate,
    OvShortcut::askWhatIsThis,
    OvShortcut::directAskAI,
    OvShortcut::inputTranslate,
    OvShortcut::selectionTranslate,
    OvShortcut::silentSelectionTranslate,
    OvShortcut::silentInputTranslate,
    OvShortcut::silentCaptureOCR,
    OvShortcut::clipboardOCR,
    OvShortcut::clipboardTranslate,
    OvShortcut::showResultWindow,
    OvShortcut::commandPalette,
};

KeyboardShortcuts::Name name(OvShortcut shortcut);

// The display title, which also identifies the shortcut's row in lists.
std::string_view title(OvShortcut shortcut);

// The names of all, for enabling and disabling them together.
std::vector<KeyboardShortcuts::Name> allOvShortcutNames();

}  // namespace ovrin
