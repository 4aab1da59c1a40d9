// The desktop's speech service (speech-dispatcher), and synthesisers that share one connection to it.
//
// The service is started by its library when it does not run, which may take seconds: a thread of its own talks to it.
#pragma once

#include <chrono>
#include <memory>

#include "platform/speech_synthesizer.h"

namespace ovrin {

class SpeechService {
public:
    // patience: how long the end may wait for the service to fall silent.
    explicit SpeechService(std::chrono::milliseconds patience = std::chrono::seconds(1));
    SpeechService(const SpeechService&) = delete;
    SpeechService& operator=(const SpeechService&) = delete;
    // Has the service fall silent. One that does not answer is left behind with the thread that waits for it.
    ~SpeechService();

    // Whether the desktop has the service, running or not. Any thread.
    static bool isInstalled();

    // Speaks through this service, which outlives it; several speak over each other's end. Main thread.
    std::unique_ptr<SpeechSynthesizer> makeSynthesizer();

private:
    class Synthesizer;
    class Connection;
    class Conversation;

    void speak(const Utterance& utterance);

    std::chrono::milliseconds patience_;
    std::shared_ptr<Conversation> conversation_;  // from the first text on
};

}  // namespace ovrin
