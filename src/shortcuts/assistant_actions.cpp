#include "shortcuts/assistant_actions.h"

namespace ovrin {

namespace {

void showLatestResultOrSayThereIsNone(AssistantActions& actions) {
    if (!actions.showLatestResult()) actions.showToast("还没有识别或翻译结果", "clock");
}

}  // namespace

void perform(OvShortcut shortcut, AssistantActions& actions) {
    switch (shortcut) {
        case OvShortcut::captureOCR:
            return actions.captureOCR();
        case OvShortcut::captureTranslate:
            return actions.captureTranslate();
        case OvShortcut::askWhatIsThis:
            return actions.captureWhatIsThis();
        case OvShortcut::directAskAI:
            return actions.showDirectAI();
        case OvShortcut::inputTranslate:
            return actions.showInputTranslate();
        case OvShortcut::selectionTranslate:
            return actions.selectionTranslate();
        case OvShortcut::silentSelectionTranslate:
            return actions.silentSelectionTranslate();
        case OvShortcut::silentInputTranslate:
            return actions.replaceSelection();
        case OvShortcut::silentCaptureOCR:
            return actions.silentCaptureOCR();
        case OvShortcut::clipboardOCR:
            return actions.clipboardOCR();
        case OvShortcut::clipboardTranslate:
            return actions.clipboardTranslate();
        case OvShortcut::showResultWindow:
            return showLatestResultOrSayThereIsNone(actions);
        case OvShortcut::commandPalette:
            return actions.showCommandPalette();
    }
}

}  // namespace ovrin
