#include "windows/input_translate_view_model.h"

#include "base/text.h"
#include "storage/history_store.h"
#include "windows/answer_reading.h"
#include "windows/copying.h"

namespace ovrin {

InputTranslateViewModel::InputTranslateViewModel(std::string initialText, std::string targetLanguage, Services services)
    : services_(std::move(services)),
      inputText_(std::move(initialText)),
      targetLanguage_(std::move(targetLanguage)),
      readingAloud_(services_.makeSpeech, services_.toasts),
      thinking_(services_.loop),
      task_(services_.loop) {}

bool InputTranslateViewModel::canTranslate() const {
    return !isStreaming_.value() && !text::trimmed(inputText_.value()).empty();
}

void InputTranslateViewModel::translate() {
    std::string source(text::trimmed(inputText_.value()));
    if (source.empty()) return;
    task_.cancel();
    std::optional<std::string> detected = services_.translation.detectLanguage(source);
    outputLanguage_ = TranslationService::effectiveTargetLanguage(detected, targetLanguage_.value());
    outputText_.set("");
    isBlank_.set(false);
    errorMessage_.set(std::nullopt);
    detectedLanguage_.set(std::move(detected));
    isStreaming_.set(true);
    task_.replace(consumeTranslation(std::move(source), targetLanguage_.value()));
}

Task<void> InputTranslateViewModel::consumeTranslation(std::string source, std::string target) {
    AnswerEnd end = co_await readAnswerInto(outputText_, services_.translation.stream(source, target), thinking_);
    isStreaming_.set(false);
    isBlank_.set(end.isBlank(outputText_.value()));
    if (end.kind == AnswerEnd::Kind::complete) {
        services_.history.save({.sourceText = std::move(source),
                                .resultText = outputText_.value(),
                                .recordType = historyRecordType::inputTranslation});
    } else {
        errorMessage_.set(std::move(end.errorMessage));
    }
}

void InputTranslateViewModel::swapLanguages() {
    if (outputText_->empty()) return;
    inputText_.set(outputText_.value());
    outputText_.set("");
    if (detectedLanguage_.value()) targetLanguage_.set(*detectedLanguage_.value());
    translate();
}

void InputTranslateViewModel::clear() {
    task_.cancel();
    inputText_.set("");
    outputText_.set("");
    isBlank_.set(false);
    detectedLanguage_.set(std::nullopt);
    errorMessage_.set(std::nullopt);
    isStreaming_.set(false);
}

void InputTranslateViewModel::copyTranslation() {
    if (outputText_->empty()) return;
    copyAndTell(outputText_.value(), "译文已复制", services_.clipboard, services_.toasts);
}

void InputTranslateViewModel::speakTranslation() {
    readingAloud_.read(outputText_.value(), outputLanguage_);
}

}  // namespace ovrin
