// How the connection to the model service stands, and the test that finds it out with one short question.
//
// A test begins with a save, which takes a while and goes on to its end whatever becomes of the test. Main thread;
// destroying it drops the question.
#pragma once

#include <cstdint>
#include <string>

#include "base/event_loop.h"
#include "base/published.h"
#include "base/running_task.h"
#include "base/task.h"
#include "model/model_api_configuration.h"
#include "model/model_client.h"

namespace ovrin {

struct ConnectionState {
    enum class Kind : std::uint8_t { idle, testing, success, failed };

    Kind kind = Kind::idle;
    std::string message = {};  // when failed: the description of the error

    bool operator==(const ConnectionState&) const = default;
};

class ConnectionTest {
public:
    // The loop outlives it. The question takes the client's way to the service.
    ConnectionTest(EventLoop& loop, ModelClient client);

    const Published<ConnectionState>& state() const { return state_; }
    bool isTesting() const { return state_->kind == ConnectionState::Kind::testing; }
    bool hasFailed() const { return state_->kind == ConnectionState::Kind::failed; }

    // Drops the test before it and gives the number of the new one.
    std::uint64_t begin();
    // What belongs to another one is dropped.
    bool isNewest(std::uint64_t number) const { return number == number_; }
    // Asks the service; the state tells of the outcome.
    void ask(ModelAPIConfiguration configuration);

    // Drops the newest test; the state stays.
    void cancel();
    void setIdle() { state_.set({}); }
    // Also what cannot be saved stands between the user and the service.
    void fail(std::string message);

private:
    Task<void> ping(ModelAPIConfiguration configuration);

    ModelClient client_;
    Published<ConnectionState> state_;
    std::uint64_t number_ = 0;  // of the newest test
    TaskSlot request_;
};

}  // namespace ovrin
