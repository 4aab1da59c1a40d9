// Keeps calls of GIO to a time, for threads that may wait.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>

#include <gio/gio.h>

namespace ovrin {

struct UnreferenceObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};
struct UnreferenceVariant {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

// Cancels the calls that are given its cancellable once the patience is over. Connecting to the bus has no time limit
// of its own.
class BusDeadline {
public:
    explicit BusDeadline(std::chrono::milliseconds patience)
        : thread_([this, patience](const std::stop_token& isOver) {
              std::unique_lock lock(mutex_);
              changed_.wait_for(lock, isOver, patience, [] { return false; });
              if (!isOver.stop_requested()) g_cancellable_cancel(cancellable_.get());
          }) {}

    GCancellable* cancellable() const { return cancellable_.get(); }

private:
    std::unique_ptr<GCancellable, UnreferenceObject> cancellable_{g_cancellable_new()};
    std::mutex mutex_;
    std::condition_variable_any changed_;  // never; a stop wakes it
    std::jthread thread_;                  // the last member: it uses the others
};

}  // namespace ovrin
