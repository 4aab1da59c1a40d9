// The translation card without its window: a short text and its streamed translation.
//
// Main thread. Destroying the model ends its work; it must not be destroyed from inside one of its notifications.
#pragma once

#include <optional>
#include <string>

#include "base/event_loop.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "language/translation_service.h"
#include "windows/thinking_time.h"

namespace ovrin {

class ClipboardService;
class ToastPresenter;

class MiniPopoverViewModel {
public:
    // What the model works with; the references outlive it.
    struct Services {
        EventLoop& loop;
        TranslationService translation;
        ClipboardService& clipboard;
        ToastPresenter& toasts;
    };

    // targetLanguage: the wanted one; a text that is in it already is translated the other way.
    MiniPopoverViewModel(std::string sourceText, std::string targetLanguage, Services services);
    MiniPopoverViewModel(const MiniPopoverViewModel&) = delete;
    MiniPopoverViewModel& operator=(const MiniPopoverViewModel&) = delete;

    const Published<std::string>& sourceText() const { return sourceText_; }
    const Published<std::string>& translation() const { return translation_; }
    const Published<bool>& isStreaming() const { return isStreaming_; }  // true from the first: the card waits
    const Published<bool>& isBlank() const { return isBlank_; }          // the translation ended without text
    const Published<std::optional<std::string>>& errorMessage() const { return errorMessage_; }
    // Beside the note of what streams: how long the model has been thinking; empty when it does not.
    const Published<std::string>& thinking() const { return thinking_.words(); }

    const std::string& targetLanguage() const { return targetLanguage_; }
    std::string targetLanguageName() const;  // in English

    // The card is on screen: starts to translate. Nothing more than once.
    void start();
    void cancel();

    // Nothing while there is no translation.
    void copyTranslation();

private:
    Task<void> consumeTranslation();

    Services services_;
    Published<std::string> sourceText_;
    Published<std::string> translation_;
    Published<bool> isStreaming_{true};
    Published<bool> isBlank_;
    Published<std::optional<std::string>> errorMessage_;
    std::string targetLanguage_;
    ThinkingTime thinking_;
    TaskSlot streamTask_;  // the last member: it ends before what it uses
};

}  // namespace ovrin
