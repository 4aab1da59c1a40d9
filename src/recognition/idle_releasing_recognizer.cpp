#include "recognition/idle_releasing_recognizer.h"

#include <functional>
#include <utility>

#include "base/worker_executor.h"

namespace ovrin {

// Counts the uses that run and lets the idle time pass while there are none. Lives on the loop's thread.
class IdleReleasingRecognizer::IdleTimer {
public:
    IdleTimer(TextRecognizer& recognizer, EventLoop& loop, WorkerExecutor& workers, EventLoop::Duration idleTime)
        : recognizer_(recognizer), loop_(loop), workers_(workers), idleTime_(idleTime) {}
    IdleTimer(const IdleTimer&) = delete;
    IdleTimer& operator=(const IdleTimer&) = delete;
    ~IdleTimer() { stop(); }

    void useBegins() {
        ++uses_;
        stop();
    }

    void useEnds() {
        if (--uses_ > 0) return;
        timer_ = loop_.postAfter(idleTime_, [this] {
            timer_.reset();
            workers_.post([&recognizer = recognizer_](const std::stop_token&) { recognizer.releaseResources(); });
        });
    }

private:
    void stop() {
        if (const auto timer = std::exchange(timer_, std::nullopt)) loop_.cancelTimer(*timer);
    }

    TextRecognizer& recognizer_;
    EventLoop& loop_;
    WorkerExecutor& workers_;
    EventLoop::Duration idleTime_;
    int uses_ = 0;
    std::optional<EventLoop::TimerId> timer_;
};

// Tells the loop that the models are in use for as long as it lives, from whatever thread.
class IdleReleasingRecognizer::Use {
public:
    explicit Use(const IdleReleasingRecognizer& owner) : loop_(owner.loop_), timer_(owner.timer_) {
        tell(&IdleTimer::useBegins);
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use() { tell(&IdleTimer::useEnds); }

private:
    void tell(void (IdleTimer::*event)()) {
        loop_.post([event, weak = timer_] {
            if (const auto timer = weak.lock()) std::invoke(event, *timer);
        });
    }

    EventLoop& loop_;
    std::weak_ptr<IdleTimer> timer_;
};

IdleReleasingRecognizer::IdleReleasingRecognizer(TextRecognizer& recognizer, EventLoop& loop, WorkerExecutor& workers,
                                                 EventLoop::Duration idleTime)
    : recognizer_(recognizer), loop_(loop), timer_(std::make_shared<IdleTimer>(recognizer, loop, workers, idleTime)) {}

IdleReleasingRecognizer::~IdleReleasingRecognizer() = default;

std::vector<TextObservation> IdleReleasingRecognizer::perform(const TextRecognitionRequest& request, const Image& image,
                                                              std::stop_token stop) {
    const Use use(*this);
    return recognizer_.perform(request, image, std::move(stop));
}

void IdleReleasingRecognizer::prepare() {
    const Use use(*this);
    recognizer_.prepare();
}

void IdleReleasingRecognizer::releaseResources() {
    recognizer_.releaseResources();
}

}  // namespace ovrin
