// Actions that only write down that they were called.
#pragma once

#include <string>

#include "fakes/journal.h"
#include "shortcuts/assistant_actions.h"

namespace ovrin {

class FakeAssistantActions final : public AssistantActions {
public:
    explicit FakeAssistantActions(Journal& journal) : journal_(journal) {}

    bool hasLatestResult = false;

    void captureOCR() override { journal_.add("captureOCR"); }
    void captureTranslate() override { journal_.add("captureTranslate"); }
    void captureWhatIsThis() override { journal_.add("captureWhatIsThis"); }
    void silentCaptureOCR() override { journal_.add("silentCaptureOCR"); }
    void showDirectAI() override { journal_.add("showDirectAI"); }
    void showInputTranslate() override { journal_.add("showInputTranslate"); }
    void showCommandPalette() override { journal_.add("showCommandPalette"); }
    void selectionTranslate() override { journal_.add("selectionTranslate"); }
    void silentSelectionTranslate() override { journal_.add("silentSelectionTranslate"); }
    void replaceSelection() override { journal_.add("replaceSelection"); }
    void clipboardOCR() override { journal_.add("clipboardOCR"); }
    void clipboardTranslate() override { journal_.add("clipboardTranslate"); }
    bool showLatestResult() override {
        if (hasLatestResult) journal_.add("showLatestResult");
        return hasLatestResult;
    }
    void showToast(std::string message, std::string symbol) override {
        journal_.add("toast " + message + " " + symbol);
    }

private:
    Journal& journal_;
};

}  // namespace ovrin
