#include "windows/mini_popover_view_model.h"

#include <exception>
#include <utility>

#include "base/error.h"
#include "language/language_names.h"
#include "platform/clipboard_service.h"
#include "platform/toast_presenter.h"

namespace ovrin {

MiniPopoverViewModel::MiniPopoverViewModel(std::string sourceText, std::string targetLanguage, Services services)
    : services_(std::move(services)),
      sourceText_(std::move(sourceText)),
      targetLanguage_(std::move(targetLanguage)),
      streamTask_(services_.loop) {}

std::string MiniPopoverViewModel::targetLanguageName() const {
    return englishLanguageName(targetLanguage_);
}

void MiniPopoverViewModel::start() {
    if (!isStreaming_.value() || streamTask_.isRunning()) return;
    streamTask_.replace(consumeTranslation());
}

Task<void> MiniPopoverViewModel::consumeTranslation() {
    std::optional<std::string> message;
    try {
        AsyncStream<std::string> pieces = services_.translation.stream(sourceText_.value(), targetLanguage_);
        while (true) {
            const std::optional<std::string> piece = co_await pieces.next();
            if (!piece) break;
            translation_.set(translation_.value() + *piece);
        }
    } catch (const CancellationError&) {
        // Nobody waits for it any more: no message.
    } catch (...) {
        message = errorDescription(std::current_exception());
    }
    isStreaming_.set(false);
    errorMessage_.set(std::move(message));
}

void MiniPopoverViewModel::cancel() {
    streamTask_.cancel();
    isStreaming_.set(false);
}

void MiniPopoverViewModel::copyTranslation() {
    if (translation_->empty()) return;
    services_.clipboard.writeString(translation_.value());
    services_.toasts.show("译文已复制", "checkmark");
}

}  // namespace ovrin
