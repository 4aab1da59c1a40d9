#include "app/model_readiness.h"

#include <memory>
#include <utility>

#include "base/worker_executor.h"

namespace ovrin {

ModelReadiness::ModelReadiness(std::function<bool()> isConfigured, WorkerExecutor& worker,
                               std::chrono::milliseconds patience)
    : isConfigured_(std::move(isConfigured)), worker_(worker), patience_(patience) {}

// An earlier question may have been answered since; one that is still open is about how things were then.
void ModelReadiness::ask() {
    takeAnswer(std::chrono::milliseconds::zero());
    const auto promise = std::make_shared<std::promise<bool>>();
    answer_ = promise->get_future();
    worker_.post(
        [promise, isConfigured = isConfigured_](const std::stop_token&) { promise->set_value(isConfigured()); });
}

bool ModelReadiness::isReady() {
    ask();
    takeAnswer(patience_);
    return newestAnswer_;
}

void ModelReadiness::takeAnswer(std::chrono::milliseconds patience) {
    if (answer_.valid() && answer_.wait_for(patience) == std::future_status::ready) newestAnswer_ = answer_.get();
}

}  // namespace ovrin
