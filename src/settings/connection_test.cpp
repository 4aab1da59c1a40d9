#include "settings/connection_test.h"

#include <exception>
#include <utility>
#include <vector>

#include "base/error.h"

namespace ovrin {

ConnectionTest::ConnectionTest(EventLoop& loop, ModelClient client) : client_(std::move(client)), request_(loop) {}

std::uint64_t ConnectionTest::begin() {
    cancel();
    state_.set({.kind = ConnectionState::Kind::testing});
    return number_;
}

void ConnectionTest::ask(ModelAPIConfiguration configuration) {
    state_.set({.kind = ConnectionState::Kind::testing});
    request_.replace(ping(std::move(configuration)));
}

Task<void> ConnectionTest::ping(ModelAPIConfiguration configuration) {
    const ModelClient client = client_.withConfiguration(std::move(configuration));
    std::vector<DeepSeek::Message> conversation{{.role = "system", .content = "Reply with OK only."},
                                                {.role = "user", .content = "ping"}};
    ConnectionState outcome{.kind = ConnectionState::Kind::success};
    try {
        co_await client.complete(std::move(conversation), 0.0);
    } catch (const CancellationError&) {
        throw;
    } catch (...) {
        outcome = {.kind = ConnectionState::Kind::failed, .message = errorDescription(std::current_exception())};
    }
    state_.set(std::move(outcome));
}

void ConnectionTest::cancel() {
    ++number_;
    request_.cancel();
}

void ConnectionTest::fail(std::string message) {
    state_.set({.kind = ConnectionState::Kind::failed, .message = std::move(message)});
}

}  // namespace ovrin
