// A text recogniser that reads what the test tells it to, on whatever thread it is called.
#pragma once

#include <functional>
#include <mutex>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "platform/text_recognizer.h"

namespace ovrin {

class FakeTextRecognizer final : public TextRecognizer {
public:
    // What perform() does; may block and throw.
    std::function<std::vector<TextObservation>(std::stop_token)> reading = [](const auto&) {
        return std::vector<TextObservation>{};
    };
    // Called after every call, on its thread.
    std::function<void()> onCall = [] {};

    std::vector<TextObservation> perform(const TextRecognitionRequest& request, const Image& /*image*/,
                                         std::stop_token stop) override {
        note("perform", request);
        return reading(std::move(stop));
    }
    void prepare() override { note("prepare", {}); }
    void releaseResources() override { note("release", {}); }

    std::vector<std::string> calls() const {
        const std::lock_guard lock(mutex_);
        return calls_;
    }
    TextRecognitionRequest lastRequest() const {
        const std::lock_guard lock(mutex_);
        return lastRequest_;
    }

private:
    void note(const char* call, const TextRecognitionRequest& request) {
        {
            const std::lock_guard lock(mutex_);
            calls_.emplace_back(call);
            lastRequest_ = request;
        }
        onCall();
    }

    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
    TextRecognitionRequest lastRequest_;
};

}  // namespace ovrin
