#include "windows/reading_aloud.h"

#include <utility>

#include "platform/toast_presenter.h"

namespace ovrin {

namespace {
constexpr double speechRate = 0.48;
}

ReadingAloud::ReadingAloud(MakeSpeech makeSpeech, ToastPresenter& toasts)
    : makeSpeech_(std::move(makeSpeech)), toasts_(toasts) {}

void ReadingAloud::read(const std::string& text, const std::optional<std::string>& language) {
    if (text.empty()) return;
    if (!speech_) speech_ = makeSpeech_();
    speech_->stop();
    const bool isSpoken = speech_->speak({.text = text, .rate = speechRate, .language = language});
    if (!isSpoken) toasts_.show("没有可用的朗读语音。", "exclamationmark.triangle");
}

void ReadingAloud::stop() {
    if (speech_) speech_->stop();
}

}  // namespace ovrin
