// The two-pane translation without its window: the text that goes in, its streamed translation, and the languages.
//
// Main thread. One translation runs at a time; destroying the model ends it. It must not be destroyed from inside one
// of its notifications. Nothing is translated while the user types.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "base/event_loop.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "language/translation_service.h"
#include "windows/reading_aloud.h"
#include "windows/thinking_time.h"

namespace ovrin {

class ClipboardService;
class HistoryStore;
class ToastPresenter;

class InputTranslateViewModel {
public:
    // What the model works with; the references outlive it.
    struct Services {
        EventLoop& loop;
        TranslationService translation;
        HistoryStore& history;
        ClipboardService& clipboard;
        ToastPresenter& toasts;
        ReadingAloud::MakeSpeech makeSpeech;
    };

    // targetLanguage: the BCP-47 tag that the picker starts with.
    InputTranslateViewModel(std::string initialText, std::string targetLanguage, Services services);
    InputTranslateViewModel(const InputTranslateViewModel&) = delete;
    InputTranslateViewModel& operator=(const InputTranslateViewModel&) = delete;

    const Published<std::string>& inputText() const { return inputText_; }
    const Published<std::string>& outputText() const { return outputText_; }
    const Published<std::string>& targetLanguage() const { return targetLanguage_; }  // as requested
    // The tag of the text that was translated last; none when it was too short to tell.
    const Published<std::optional<std::string>>& detectedLanguage() const { return detectedLanguage_; }
    const Published<bool>& isStreaming() const { return isStreaming_; }
    const Published<bool>& isBlank() const { return isBlank_; }  // the translation ended without text
    const Published<std::optional<std::string>>& errorMessage() const { return errorMessage_; }
    // Beside the note of what streams: how long the model has been thinking; empty when it does not.
    const Published<std::string>& thinking() const { return thinking_.words(); }

    // The language that the translation is in; meaningless before the first one.
    const std::string& outputLanguage() const { return outputLanguage_; }
    bool canTranslate() const;  // there is something to translate, and nothing is being translated

    void setInputText(std::string text) { inputText_.set(std::move(text)); }
    void setTargetLanguage(std::string tag) { targetLanguage_.set(std::move(tag)); }

    // Translates the trimmed input in place of what runs. Nothing for a blank input.
    void translate();

    // Makes the translation the input and translates it back into the language it came from. Nothing without one.
    void swapLanguages();

    void clear();

    // Nothing without a translation.
    void copyTranslation();
    void speakTranslation();

private:
    Task<void> consumeTranslation(std::string source, std::string target);

    Services services_;
    Published<std::string> inputText_;
    Published<std::string> outputText_;
    Published<std::string> targetLanguage_;
    Published<std::optional<std::string>> detectedLanguage_;
    Published<bool> isStreaming_;
    Published<bool> isBlank_;
    Published<std::optional<std::string>> errorMessage_;
    std::string outputLanguage_;
    ReadingAloud readingAloud_;
    ThinkingTime thinking_;
    TaskSlot task_;  // the last member: it ends before what it uses
};

}  // namespace ovrin
