#include "windows/mini_popover_view_model.h"

#include <utility>

#include "language/language_names.h"
#include "windows/answer_reading.h"
#include "windows/copying.h"

namespace ovrin {

MiniPopoverViewModel::MiniPopoverViewModel(std::string sourceText, std::string targetLanguage, Services services)
    : services_(std::move(services)),
      sourceText_(std::move(sourceText)),
      targetLanguage_(std::move(targetLanguage)),
      thinking_(services_.loop),
      streamTask_(services_.loop) {}

std::string MiniPopoverViewModel::targetLanguageName() const {
    return englishLanguageName(targetLanguage_);
}

void MiniPopoverViewModel::start() {
    if (!isStreaming_.value() || streamTask_.isRunning()) return;
    streamTask_.replace(consumeTranslation());
}

Task<void> MiniPopoverViewModel::consumeTranslation() {
    AsyncStream<AnswerChange> changes = services_.translation.stream(sourceText_.value(), targetLanguage_);
    AnswerEnd end = co_await readAnswerInto(translation_, std::move(changes), thinking_);
    isStreaming_.set(false);
    isBlank_.set(end.isBlank(translation_.value()));
    errorMessage_.set(std::move(end.errorMessage));
}

void MiniPopoverViewModel::cancel() {
    streamTask_.cancel();
    isStreaming_.set(false);
}

void MiniPopoverViewModel::copyTranslation() {
    if (translation_->empty()) return;
    copyAndTell(translation_.value(), "译文已复制", services_.clipboard, services_.toasts);
}

}  // namespace ovrin
