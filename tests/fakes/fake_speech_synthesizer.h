// A voice that writes down what it is told to read.
#pragma once

#include <string>

#include "fakes/journal.h"
#include "platform/speech_synthesizer.h"

namespace ovrin {

class FakeSpeechSynthesizer final : public SpeechSynthesizer {
public:
    // hasVoice: whether this desktop has anything to read with; the test may change its mind.
    FakeSpeechSynthesizer(Journal& journal, const bool& hasVoice) : journal_(journal), hasVoice_(hasVoice) {}

    Utterance lastUtterance;

    bool speak(const Utterance& utterance) override {
        journal_.add("speech " + utterance.language.value_or("default") + ": " + utterance.text);
        lastUtterance = utterance;
        return hasVoice_;
    }
    void stop() override { journal_.add("silence"); }

private:
    Journal& journal_;
    const bool& hasVoice_;
};

}  // namespace ovrin
