// A model service on the loopback interface to practise with: it speaks both protocols, streamed and whole, on a port
// of the system's choice, and no model stands behind it (see practice_answer.h). It takes any key until it is told of
// the one that counts.
//
// Whoever wants to see how a client takes trouble plans it: each plan is for one of the next requests, in their order.
// Any thread.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fakes/loopback_server.h"
#include "practice/practice_protocol.h"

namespace ovrin {

class PracticeService {
public:
    static constexpr std::chrono::milliseconds readablePace{45};

    // pace: the time between two pieces of a streamed answer.
    explicit PracticeService(std::chrono::milliseconds pace = readablePace);
    PracticeService(const PracticeService&) = delete;
    PracticeService& operator=(const PracticeService&) = delete;
    ~PracticeService();

    // What a client of either protocol is told as the address of the service.
    std::string baseURL() const { return server_.url("/v1"); }

    struct Exchange {
        PracticeRequest request;
        std::string answer;  // what has been sent of it so far
        enum class State : std::uint8_t { running, complete, failed, abandoned } state = State::running;
    };
    // In the order in which they came.
    std::vector<Exchange> exchanges() const;

    struct Plan {
        enum class Trouble : std::uint8_t {
            refuse,    // an error in the words of the protocol instead of an answer
            breakOff,  // the connection is reset after some pieces
            hold       // after some pieces nothing comes until release(), or until the client has gone
        } trouble = Trouble::refuse;
        std::size_t pieces = 0;  // of a streamed answer, sent before the trouble begins
    };
    void planNext(Plan plan);
    // From now on every other key is refused with status 401.
    void acceptOnly(const std::string& key);
    // Lets all answers that are held go on.
    void release();

private:
    using Connection = LoopbackServer::Connection;
    using Lock = std::unique_lock<std::mutex>;

    // A plan on its way. What is released from then on does not wait, even if it had not come to waiting.
    struct TakenPlan : Plan {
        int releasesBefore = 0;
    };

    void serve(Connection& connection);
    static Exchange::State turnAway(Connection& connection, const PracticeRequest& request);
    Exchange::State answer(Connection& connection, const PracticeRequest& request, std::size_t exchange,
                           const std::optional<TakenPlan>& plan);
    Exchange::State answerStreamed(Connection& connection, const PracticeRequest& request, std::size_t exchange,
                                   const std::optional<TakenPlan>& plan);
    enum class Held : std::uint8_t { released, abandoned };
    Held hold(Connection& connection, const TakenPlan& plan);
    void pauseBetweenPieces();
    void didSend(std::size_t exchange, std::string_view piece);

    const std::chrono::milliseconds pace_;
    mutable std::mutex mutex_;  // guards all up to the server
    std::condition_variable changed_;
    std::vector<Exchange> exchanges_;
    std::deque<Plan> plans_;
    std::optional<std::string> acceptedKey_;
    int releases_ = 0;
    bool isClosing_ = false;

    LoopbackServer server_;  // the last member: its threads use the others
};

}  // namespace ovrin
