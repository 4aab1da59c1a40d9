// Writes what could not be written because another process held the file: every second while anything is left, and for
// one more second at the end.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/event_loop.h"

namespace ovrin {

class DeferredWrites {
public:
    // How long a change may wait for another process.
    static constexpr std::chrono::milliseconds patience{100};

    // Tries to write; whether nothing is left.
    using Write = std::function<bool(std::chrono::milliseconds patience)>;

    // The loop is that of the calling thread; all outlives the object.
    DeferredWrites(EventLoop& loop, std::vector<Write> writes);
    DeferredWrites(const DeferredWrites&) = delete;
    DeferredWrites& operator=(const DeferredWrites&) = delete;
    ~DeferredWrites();  // finishes

    // Something was not written. May be called on any thread, also when this object is gone.
    std::function<void()> note();

    // Writes what is left, for which it takes a second at most.
    void finish();

private:
    void schedule();
    void write();

    EventLoop& loop_;
    std::vector<Write> writes_;
    std::optional<EventLoop::TimerId> timer_;
    std::shared_ptr<const bool> isAlive_ = std::make_shared<const bool>(true);
};

}  // namespace ovrin
