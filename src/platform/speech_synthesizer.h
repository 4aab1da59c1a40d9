// Seam: reads a text aloud.
#pragma once

#include <optional>
#include <string>

namespace ovrin {

struct Utterance {
    std::string text;                     // UTF-8
    double rate = 0.5;                    // 0..1; 0.5 is the voice's ordinary speed
    std::optional<std::string> language;  // BCP-47 tag of the wanted voice; none or unknown: the default voice
};

// Main thread. A desktop without voices stays silent; speak() then tells so by its result.
class SpeechSynthesizer {
public:
    virtual ~SpeechSynthesizer() = default;  // the voice falls silent at once

    // Starts to read and returns; false when this desktop has nothing to read with.
    virtual bool speak(const Utterance& utterance) = 0;

    // Has the voice fall silent at once.
    virtual void stop() = 0;
};

}  // namespace ovrin
