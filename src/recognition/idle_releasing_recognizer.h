// A text recogniser that gives its memory back when nobody has used it for a while, so that a resting assistant stays
// small. In all else it is the recogniser inside.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "base/event_loop.h"
#include "platform/text_recognizer.h"

namespace ovrin {

class WorkerExecutor;

class IdleReleasingRecognizer final : public TextRecognizer {
public:
    // The time from the end of the last pass or warm-up to the release. Long enough for a person who captures one
    // thing after another, short enough that models don't stay for an hour of writing.
    static constexpr std::chrono::minutes defaultIdleTime{3};

    // Made and destroyed on the loop's thread. Idle time passes on the loop's clock; the release itself runs on a
    // worker. The recogniser inside and the loop have to outlive this object, and this object the work of the workers.
    IdleReleasingRecognizer(TextRecognizer& recognizer, EventLoop& loop, WorkerExecutor& workers,
                            EventLoop::Duration idleTime = defaultIdleTime);
    IdleReleasingRecognizer(const IdleReleasingRecognizer&) = delete;
    IdleReleasingRecognizer& operator=(const IdleReleasingRecognizer&) = delete;
    ~IdleReleasingRecognizer() override;

    std::vector<TextObservation> perform(const TextRecognitionRequest& request, const Image& image,
                                         std::stop_token stop) override;
    void prepare() override;
    void releaseResources() override;

private:
    class Use;
    class IdleTimer;

    TextRecognizer& recognizer_;
    EventLoop& loop_;
    std::shared_ptr<IdleTimer> timer_;  // used on the loop's thread only
};

}  // namespace ovrin
