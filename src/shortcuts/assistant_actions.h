// What the user can have the assistant do from anywhere: the operations that shortcuts, the palette and the menu share.
#pragma once

#include <string>

#include "shortcuts/ov_shortcut.h"

namespace ovrin {

// Main thread. Each operation returns at once; what takes time runs in a task of its own and reports by itself.
class AssistantActions {
public:
    virtual ~AssistantActions() = default;

    virtual void captureOCR() = 0;
    virtual void captureTranslate() = 0;
    virtual void captureWhatIsThis() = 0;
    virtual void silentCaptureOCR() = 0;

    virtual void showDirectAI() = 0;
    virtual void showInputTranslate() = 0;  // with an empty text
    virtual void showCommandPalette() = 0;

    virtual void selectionTranslate() = 0;
    virtual void silentSelectionTranslate() = 0;
    virtual void replaceSelection() = 0;

    virtual void clipboardOCR() = 0;
    virtual void clipboardTranslate() = 0;

    // Brings the latest result panel back; false when there has been none.
    virtual bool showLatestResult() = 0;

    virtual void showToast(std::string message, std::string symbol) = 0;
};

// Does what the shortcut stands for. Where no result can be shown again, a toast says so.
void perform(OvShortcut shortcut, AssistantActions& actions);

}  // namespace ovrin
