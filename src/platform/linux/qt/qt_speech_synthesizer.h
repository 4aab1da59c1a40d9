// Reads aloud through the desktop's speech service (speech-dispatcher, or what else the window toolkit finds).
#pragma once

#include <memory>

#include "platform/speech_synthesizer.h"

class QTextToSpeech;

namespace ovrin {

class QtSpeechSynthesizer final : public SpeechSynthesizer {
public:
    // Looks for a service with the first text.
    QtSpeechSynthesizer();
    ~QtSpeechSynthesizer() override;

    bool speak(const Utterance& utterance) override;
    void stop() override;

private:
    std::unique_ptr<QTextToSpeech> engine_;
};

}  // namespace ovrin
