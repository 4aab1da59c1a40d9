// Whether the model service is configured, for the menu. The answer is found on a worker, since the keychain may ask
// the user for a password first.
#pragma once

#include <chrono>
#include <functional>
#include <future>

namespace ovrin {

class WorkerExecutor;

// Main thread.
class ModelReadiness {
public:
    // isConfigured is called on the worker. Both outlive what the worker still has to do. patience: how long isReady()
    // may hold the main thread.
    ModelReadiness(std::function<bool()> isConfigured, WorkerExecutor& worker,
                   std::chrono::milliseconds patience = std::chrono::milliseconds(50));

    // As it is now; the newest answer when that cannot be told at once, and true when there has been none.
    bool isReady();

private:
    void ask();
    void takeAnswer(std::chrono::milliseconds patience);

    std::function<bool()> isConfigured_;
    WorkerExecutor& worker_;
    std::chrono::milliseconds patience_;
    bool newestAnswer_ = true;
    std::future<bool> answer_;  // to the newest question
};

}  // namespace ovrin
