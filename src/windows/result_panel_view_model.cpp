#include "windows/result_panel_view_model.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "storage/app_config.h"
#include "storage/history_store.h"
#include "windows/answer_reading.h"
#include "windows/copying.h"

namespace ovrin {

namespace {

// The separator stands only between parts that are there.
void appendJoined(std::string& text, std::string_view separator, std::string_view part) {
    if (part.empty()) return;
    if (!text.empty()) text += separator;
    text += part;
}

}  // namespace

ResultPanelViewModel::ResultPanelViewModel(Content content, Services services)
    : services_(std::move(services)),
      originalText_(std::move(content.originalText)),
      translation_(std::move(content.translation)),
      ocrResult_(std::move(content.ocrResult)),
      sourceImage_(std::move(content.sourceImage)),
      sourceLanguage_(ocrResult_ ? ocrResult_->detectedLanguage : std::nullopt),
      replyLanguage_(services_.prompts.replyLanguage(content.targetLanguageSetting)),
      readingAloud_(services_.makeSpeech, services_.toasts),
      translationThinking_(services_.loop),
      conversationThinking_(services_.loop),
      translationTask_(services_.loop),
      conversationTask_(services_.loop) {
    if (!sourceLanguage_) sourceLanguage_ = services_.translation.detectLanguage(originalText_.value());
    targetLanguage_ = TranslationService::effectiveTargetLanguage(sourceLanguage_, replyLanguage_);
}

ResultPanelViewModel::~ResultPanelViewModel() = default;

bool ResultPanelViewModel::hasConversation() const {
    return selectedAIAction_.value().has_value() || !aiOutput_->empty() || !followUps_->empty();
}

bool ResultPanelViewModel::isFollowUpStreaming() const {
    return std::ranges::any_of(followUps_.value(), &FollowUpMessage::isStreaming);
}

bool ResultPanelViewModel::canSubmitPrompt() const {
    return !text::trimmed(followUpPrompt_.value()).empty() && !isAIStreaming_.value() && !isFollowUpStreaming();
}

bool ResultPanelViewModel::canShowOverlay() const {
    return sourceImage_ && ocrResult_ && !translation_->empty();
}

const std::string& ResultPanelViewModel::primaryText() const {
    return translation_->empty() ? originalText_.value() : translation_.value();
}

std::string ResultPanelViewModel::conversationTranscript() const {
    std::string transcript;
    const auto append = [&transcript](const std::string& question, const std::string& answer) {
        std::string turn = question;
        appendJoined(turn, "\n", answer);
        appendJoined(transcript, "\n\n", turn);
    };
    append(initialQuestion_.value(), aiOutput_.value());
    for (const FollowUpMessage& followUp : followUps_.value()) append(followUp.question, followUp.answer);
    return transcript;
}

void ResultPanelViewModel::translate() {
    cancelConversation();
    translationTask_.cancel();
    translation_.set("");
    isTranslationBlank_.set(false);
    errorMessage_.set(std::nullopt);
    isTranslating_.set(true);
    translationTask_.replace(consumeTranslation());
}

Task<void> ResultPanelViewModel::consumeTranslation() {
    AsyncStream<AnswerChange> changes = services_.translation.stream(originalText_.value(), targetLanguage_);
    AnswerEnd end = co_await readAnswerInto(translation_, std::move(changes), translationThinking_);
    isTranslating_.set(false);
    isTranslationBlank_.set(end.isBlank(translation_.value()));
    if (end.kind == AnswerEnd::Kind::complete) {
        services_.history.updateLatestResult(originalText_.value(), translation_.value());
    } else {
        tellFailure(Failed::translation, std::move(end.errorMessage));
    }
}

void ResultPanelViewModel::tellFailure(Failed failed, std::optional<std::string> message) {
    if (!message) return;  // cancelled
    failed_ = failed;
    showsImageOverlay_.set(false);  // the message stands with the text
    errorMessage_.set(std::move(message));
}

void ResultPanelViewModel::cancel() {
    translationTask_.cancel();
    isTranslating_.set(false);
    cancelConversation();
}

void ResultPanelViewModel::cancelConversation() {
    conversationTask_.cancel();
    isAIStreaming_.set(false);
    std::vector<FollowUpMessage> followUps = followUps_.value();
    for (FollowUpMessage& followUp : followUps) followUp.isStreaming = false;
    followUps_.set(std::move(followUps));
}

void ResultPanelViewModel::submit(const std::string& question, AIAction action) {
    std::string trimmed(text::trimmed(question));
    if (trimmed.empty() || isAIStreaming_.value() || isFollowUpStreaming()) return;
    if (hasConversation() && !aiOutput_->empty()) {
        askFollowUp(std::move(trimmed));
    } else {
        startConversation(std::move(trimmed), action);
    }
}

void ResultPanelViewModel::startConversation(std::string question, AIAction action) {
    cancel();
    showsImageOverlay_.set(false);  // over which no answer is seen
    selectedAIAction_.set(action);
    initialQuestion_.set(std::move(question));
    aiOutput_.set("");
    isAIOutputBlank_.set(false);
    followUpPrompt_.set("");
    followUps_.set({});
    errorMessage_.set(std::nullopt);
    isAIStreaming_.set(true);
    aiInput_ = originalText_.value();
    conversationTask_.replace(consumeFirstAnswer(firstQuestionMessages(services_.prompts, conversation())));
}

Task<void> ResultPanelViewModel::consumeFirstAnswer(std::vector<DeepSeek::Message> messages) {
    std::function<void(const AnswerChange&)> take = [this](const AnswerChange& change) {
        std::string text = aiOutput_.value();
        change.applyTo(text);
        aiOutput_.set(std::move(text));
    };
    AnswerEnd end =
        co_await readAnswer(services_.ai.stream(std::move(messages)), std::move(take), conversationThinking_);
    if (end.kind == AnswerEnd::Kind::failed) {
        tellFailure(Failed::firstAnswer, std::move(end.errorMessage));
    } else if (!aiOutput_->empty()) {
        services_.history.updateLatestResult(originalText_.value(), conversationTranscript());
    }
    isAIOutputBlank_.set(end.isBlank(aiOutput_.value()));
    isAIStreaming_.set(false);
}

void ResultPanelViewModel::askFollowUp(std::optional<std::string> question) {
    std::string trimmed(text::trimmed(question ? *question : followUpPrompt_.value()));
    if (!selectedAIAction_.value() || trimmed.empty() || isAIStreaming_.value() || isFollowUpStreaming() ||
        aiOutput_->empty()) {
        return;
    }
    std::vector<DeepSeek::Message> messages = followUpMessages(services_.prompts, conversation(), trimmed);
    showsImageOverlay_.set(false);
    followUpPrompt_.set("");
    const Uuid id = Uuid::random();
    std::vector<FollowUpMessage> followUps = followUps_.value();
    followUps.push_back({.id = id, .question = std::move(trimmed), .answer = "", .isStreaming = true});
    followUps_.set(std::move(followUps));
    conversationTask_.replace(consumeFollowUp(id, std::move(messages)));
}

Task<void> ResultPanelViewModel::consumeFollowUp(Uuid id, std::vector<DeepSeek::Message> messages) {
    std::function<void(const AnswerChange&)> take = [this, id](const AnswerChange& change) {
        changeFollowUp(id, [&change](FollowUpMessage& followUp) { change.applyTo(followUp.answer); });
    };
    const AnswerEnd end =
        co_await readAnswer(services_.ai.stream(std::move(messages)), std::move(take), conversationThinking_);
    if (end.kind == AnswerEnd::Kind::complete) {
        services_.history.updateLatestResult(originalText_.value(), conversationTranscript());
    }
    changeFollowUp(id, [&end](FollowUpMessage& followUp) {
        // From now on a part of the conversation: later requests send a failure's words along as this turn's answer.
        if (end.errorMessage) followUp.answer = *end.errorMessage;
        followUp.isBlank = end.isBlank(followUp.answer);
        followUp.isStreaming = false;
    });
}

void ResultPanelViewModel::changeFollowUp(const Uuid& id, const std::function<void(FollowUpMessage&)>& change) {
    std::vector<FollowUpMessage> followUps = followUps_.value();
    const auto followUp = std::ranges::find(followUps, id, &FollowUpMessage::id);
    if (followUp == followUps.end()) return;
    change(*followUp);
    followUps_.set(std::move(followUps));
}

OCRConversation ResultPanelViewModel::conversation() const {
    OCRConversation conversation{.action = selectedAIAction_.value().value_or(AIAction::explain),
                                 .replyLanguage = replyLanguage_,
                                 .content = aiInput_.empty() ? originalText_.value() : aiInput_,
                                 .firstQuestion = initialQuestion_.value(),
                                 .firstAnswer = aiOutput_.value(),
                                 .followUps = {}};
    for (const FollowUpMessage& followUp : followUps_.value()) {
        conversation.followUps.push_back({.question = followUp.question, .answer = followUp.answer});
    }
    return conversation;
}

void ResultPanelViewModel::closeAIConversation() {
    cancelConversation();
    selectedAIAction_.set(std::nullopt);
    initialQuestion_.set("");
    aiOutput_.set("");
    isAIOutputBlank_.set(false);
    followUpPrompt_.set("");
    followUps_.set({});
    errorMessage_.set(std::nullopt);
}

void ResultPanelViewModel::copyPrimaryText() {
    copyAndTell(primaryText(), "内容已复制", services_.clipboard, services_.toasts);
}

void ResultPanelViewModel::speakPrimaryText() {
    readingAloud_.read(primaryText(), translation_->empty() ? sourceLanguage_ : targetLanguage_);
}

void ResultPanelViewModel::fallSilent() {
    readingAloud_.stop();
}

}  // namespace ovrin
