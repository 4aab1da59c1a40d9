// What a flow may ask of the one result panel: show something, and translate what it shows.
#pragma once

#include <optional>
#include <string>

#include "base/image.h"
#include "language/ai_action.h"
#include "recognition/ocr_result.h"

namespace ovrin {

// The model of the content on show.
class TranslatablePanel {
public:
    virtual ~TranslatablePanel() = default;

    // Starts to stream the translation of the panel's source text into it, in place of one that runs.
    virtual void translate() = 0;
};

// What the panel does with a recognition result without being asked again.
struct ResultPanelStart {
    bool translateImmediately = false;
    std::optional<AIAction> initialAIAction{};
};

struct ResultPanelText {
    std::string text;         // UTF-8
    std::string translation;  // may be empty
};

// Main thread.
class ResultPresenter {
public:
    virtual ~ResultPresenter() = default;

    // Bring the panel to the front with new content; what it did for the content before is cancelled.
    virtual void show(OCRResult ocrResult, std::optional<Image> image, ResultPanelStart start) = 0;
    virtual void show(ResultPanelText text) = 0;

    // The model on show or last shown, owned by the presenter; null before the first.
    virtual TranslatablePanel* latestViewModel() = 0;
};

}  // namespace ovrin
