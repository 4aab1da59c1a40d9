#include "windows/thinking_time.h"

#include <chrono>
#include <utility>

namespace ovrin {

using namespace std::chrono_literals;

void ThinkingTime::begin() {
    if (timer_) return;
    beginning_ = loop_.now();
    tick();
}

void ThinkingTime::end() {
    if (timer_) loop_.cancelTimer(*std::exchange(timer_, std::nullopt));
    words_.set({});
}

void ThinkingTime::tick() {
    const auto elapsed = loop_.now() - beginning_;
    const auto seconds = std::chrono::floor<std::chrono::seconds>(elapsed);
    timer_ = loop_.postAfter(seconds + 1s - elapsed, [this] { tick(); });
    words_.set(seconds == 0s ? "思考中" : "思考中 " + std::to_string(seconds.count()) + " 秒");
}

}  // namespace ovrin
