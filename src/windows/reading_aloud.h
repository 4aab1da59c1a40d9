// Reads the texts of a window aloud, one at a time, with a voice that is made when it is first needed.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/speech_synthesizer.h"

namespace ovrin {

class ToastPresenter;

// Main thread. Falls silent when it is destroyed.
class ReadingAloud {
public:
    using MakeSpeech = std::function<std::unique_ptr<SpeechSynthesizer>()>;

    // The toasts outlive it.
    ReadingAloud(MakeSpeech makeSpeech, ToastPresenter& toasts);

    // In place of what is being read; nothing for the empty text. language: a BCP-47 tag. A toast tells when this
    // desktop has nothing to read with.
    void read(const std::string& text, const std::optional<std::string>& language);

    void stop();

private:
    MakeSpeech makeSpeech_;
    ToastPresenter& toasts_;
    std::unique_ptr<SpeechSynthesizer> speech_;
};

}  // namespace ovrin
