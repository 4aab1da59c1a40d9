// A transport that answers as the test says and remembers what it was asked.
//
// All of it belongs to the thread of the loop on which it is awaited.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "base/error.h"
#include "base/suspension.h"
#include "platform/http_client.h"

namespace ovrin {

class FakeHTTPClient final : public HTTPClientProtocol {
public:
    enum class Ending { complete, fails, staysOpen };
    struct Answer {
        std::optional<int> statusCode{200};
        std::vector<std::string> chunks{};
        Ending ending{Ending::complete};
        std::string failure{};  // the transport's words when the body fails
    };

    // What the next requests meet, in order: an answer, a failure to connect, or a server that never answers.
    void willAnswer(Answer answer) { script_.emplace_back(std::move(answer)); }
    void willFail(std::string description) { script_.emplace_back(Error(std::move(description))); }
    void willHang() { script_.emplace_back(Hang()); }

    const std::vector<HTTPRequest>& requests() const { return requests_; }

    // Requests that were given up before they had an answer.
    int abandonedRequests() const { return abandonedRequests_; }

    // The body of the newest answer that stays open: to push more of it, end it, or see whether it was dropped.
    StreamWriter<std::string>& openBody() { return *openBody_; }
    bool isBodyDropped() const { return openBody_ && openBody_->stopToken().stop_requested(); }

    Task<HTTPData> data(HTTPRequest request) override {
        Answer answer = co_await meet(std::move(request));
        if (answer.ending == Ending::fails) throw Error(answer.failure);
        HTTPData result{.body = {}, .response = {.statusCode = answer.statusCode, .headers = {}}};
        for (const std::string& chunk : answer.chunks) result.body += chunk;
        co_return result;
    }

    Task<HTTPBytes> bytes(HTTPRequest request) override {
        Answer answer = co_await meet(std::move(request));
        auto [body, writer] = makeStream<std::string>();
        for (std::string& chunk : answer.chunks) writer.push(std::move(chunk));
        if (answer.ending == Ending::complete) writer.finish();
        if (answer.ending == Ending::fails) writer.fail(std::make_exception_ptr(Error(answer.failure)));
        if (answer.ending == Ending::staysOpen) openBody_.emplace(std::move(writer));
        HTTPBytes result{.body = std::move(body), .response = {.statusCode = answer.statusCode, .headers = {}}};
        co_return result;
    }

private:
    struct Hang {};

    // Lives as long as a request that waits in vain.
    struct Abandonment {
        explicit Abandonment(int& counter) : count(counter) {}
        Abandonment(const Abandonment&) = delete;
        Abandonment& operator=(const Abandonment&) = delete;
        ~Abandonment() { ++count; }
        int& count;
    };

    Task<Answer> meet(HTTPRequest request) {
        requests_.push_back(std::move(request));
        if (script_.empty()) throw Error("the test expected no request");
        auto next = std::move(script_.front());
        script_.pop_front();
        if (std::holds_alternative<Hang>(next)) {
            const Abandonment abandonment(abandonedRequests_);
            while (true) co_await sleepFor(std::chrono::hours(1));
        }
        if (const auto* failure = std::get_if<Error>(&next)) throw Error(*failure);
        co_return std::get<Answer>(std::move(next));
    }

    std::deque<std::variant<Answer, Error, Hang>> script_;
    std::vector<HTTPRequest> requests_;
    std::optional<StreamWriter<std::string>> openBody_;
    int abandonedRequests_ = 0;
};

}  // namespace ovrin
