// The desktop's speech service (speech-dispatcher), and synthesisers that share one connection to it.
//
// The service is started by its library when it does not run, which may take seconds: a thread of its own talks to it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

#include "base/worker_executor.h"
#include "platform/speech_synthesizer.h"

namespace ovrin {

class SpeechService {
public:
    SpeechService();
    SpeechService(const SpeechService&) = delete;
    SpeechService& operator=(const SpeechService&) = delete;
    ~SpeechService();

    // Speaks through this service, which outlives it; several speak over each other's end. Main thread.
    std::unique_ptr<SpeechSynthesizer> makeSynthesizer();

private:
    class Synthesizer;
    class Connection;

    // Whether the desktop has the service, running or not.
    static bool isInstalled();
    void speak(const Utterance& utterance);
    void stop();

    std::atomic<std::uint64_t> latest_ = 0;   // the number of the last order: older ones count no more
    std::unique_ptr<Connection> connection_;  // the worker's
    std::optional<WorkerExecutor> worker_;    // from the first text on
};

}  // namespace ovrin
