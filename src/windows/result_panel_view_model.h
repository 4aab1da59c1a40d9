// The result panel without its window: the source text, its streamed translation, and the conversation about it.
//
// Main thread. A translation or a first question ends whatever runs; a further question leaves a running translation
// alone. Destroying the model ends its work; it must not be destroyed from inside one of its notifications. Views hear
// of every change through the published fields.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/event_loop.h"
#include "base/image.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "base/uuid.h"
#include "language/ai_action.h"
#include "language/ai_service.h"
#include "language/conversation_messages.h"
#include "language/conversation_prompts.h"
#include "language/translation_service.h"
#include "recognition/ocr_result.h"
#include "windows/reading_aloud.h"
#include "windows/result_presenter.h"
#include "windows/thinking_time.h"

namespace ovrin {

class ClipboardService;
class HistoryStore;
class ToastPresenter;

// One further question of the conversation and its answer, which grows while it streams.
struct FollowUpMessage {
    Uuid id;
    std::string question;
    std::string answer;
    bool isStreaming = false;
    bool isBlank = false;  // the answer ended without text

    bool operator==(const FollowUpMessage&) const = default;
};

class ResultPanelViewModel final : public TranslatablePanel {
public:
    // What the model works with; the references outlive it.
    struct Services {
        EventLoop& loop;
        TranslationService translation;
        AIService ai;
        const ConversationPrompts& prompts;
        HistoryStore& history;
        ClipboardService& clipboard;
        ToastPresenter& toasts;
        ReadingAloud::MakeSpeech makeSpeech;
    };

    struct Content {
        std::string originalText;
        std::string translation;             // may be empty
        std::optional<OCRResult> ocrResult;  // when the panel comes from a capture
        std::optional<Image> sourceImage;    // the captured picture
        std::string targetLanguageSetting;   // the default target as it is stored
    };

    ResultPanelViewModel(Content content, Services services);
    ResultPanelViewModel(const ResultPanelViewModel&) = delete;
    ResultPanelViewModel& operator=(const ResultPanelViewModel&) = delete;
    ~ResultPanelViewModel() override;

    const Published<std::string>& originalText() const { return originalText_; }
    const Published<std::string>& translation() const { return translation_; }
    const Published<bool>& isTranslating() const { return isTranslating_; }
    const Published<bool>& isTranslationBlank() const { return isTranslationBlank_; }  // it ended without text
    const Published<std::optional<std::string>>& errorMessage() const { return errorMessage_; }
    const Published<std::optional<AIAction>>& selectedAIAction() const { return selectedAIAction_; }
    const Published<std::string>& initialQuestion() const { return initialQuestion_; }
    const Published<std::string>& aiOutput() const { return aiOutput_; }
    const Published<bool>& isAIStreaming() const { return isAIStreaming_; }
    const Published<bool>& isAIOutputBlank() const { return isAIOutputBlank_; }
    const Published<std::string>& followUpPrompt() const { return followUpPrompt_; }
    const Published<std::vector<FollowUpMessage>>& followUps() const { return followUps_; }
    // Beside the notes of what streams: how long the model has been thinking; empty when it does not.
    const Published<std::string>& translationThinking() const { return translationThinking_.words(); }
    const Published<std::string>& conversationThinking() const { return conversationThinking_.words(); }
    const Published<bool>& showsImageOverlay() const { return showsImageOverlay_; }

    const std::optional<OCRResult>& ocrResult() const { return ocrResult_; }
    const std::optional<Image>& sourceImage() const { return sourceImage_; }
    const std::optional<std::string>& sourceLanguage() const { return sourceLanguage_; }
    const std::string& targetLanguage() const { return targetLanguage_; }  // after the automatic switch
    const std::string& replyLanguage() const { return replyLanguage_; }

    // What the error message is about.
    enum class Failed : std::uint8_t { translation, firstAnswer };
    Failed failed() const { return failed_; }

    bool hasConversation() const;
    bool isFollowUpStreaming() const;
    bool canSubmitPrompt() const;
    bool canShowOverlay() const;
    const std::string& primaryText() const;  // the translation when there is one, else the original
    std::string conversationTranscript() const;

    void setFollowUpPrompt(std::string prompt) { followUpPrompt_.set(std::move(prompt)); }
    void setShowsImageOverlay(bool shows) { showsImageOverlay_.set(shows); }

    void translate() override;
    void cancel();  // ends what streams; the texts stay
    void fallSilent();

    // Asks the first question, or one more when the first has its answer. Nothing while an answer streams.
    void submit(const std::string& question, AIAction action);
    void askFollowUp(std::optional<std::string> question);  // none: the text of the composer
    void closeAIConversation();

    void copyPrimaryText();
    void speakPrimaryText();

private:
    void startConversation(std::string question, AIAction action);
    Task<void> consumeTranslation();
    Task<void> consumeFirstAnswer(std::vector<DeepSeek::Message> messages);
    Task<void> consumeFollowUp(Uuid id, std::vector<DeepSeek::Message> messages);
    void changeFollowUp(const Uuid& id, const std::function<void(FollowUpMessage&)>& change);
    void cancelConversation();
    void tellFailure(Failed failed, std::optional<std::string> message);
    OCRConversation conversation() const;

    Services services_;
    Published<std::string> originalText_;
    Published<std::string> translation_;
    Published<bool> isTranslating_;
    Published<bool> isTranslationBlank_;
    Published<std::optional<std::string>> errorMessage_;
    Failed failed_ = Failed::translation;
    Published<std::optional<AIAction>> selectedAIAction_;
    Published<std::string> initialQuestion_;
    Published<std::string> aiOutput_;
    Published<bool> isAIStreaming_;
    Published<bool> isAIOutputBlank_;
    Published<std::string> followUpPrompt_;
    Published<std::vector<FollowUpMessage>> followUps_;
    Published<bool> showsImageOverlay_;
    std::optional<OCRResult> ocrResult_;
    std::optional<Image> sourceImage_;
    std::optional<std::string> sourceLanguage_;
    std::string targetLanguage_;
    std::string replyLanguage_;
    ReadingAloud readingAloud_;
    std::string aiInput_;  // the source text on which the conversation was opened
    ThinkingTime translationThinking_;
    ThinkingTime conversationThinking_;
    // The last members: they end before what they use.
    TaskSlot translationTask_;
    TaskSlot conversationTask_;  // the first answer or a further one
};

}  // namespace ovrin
