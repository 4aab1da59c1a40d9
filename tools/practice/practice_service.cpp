#include "practice/practice_service.h"

#include <utility>

namespace ovrin {
namespace {

// How often a held answer looks whether its client is still there.
constexpr std::chrono::milliseconds lookInterval{10};

constexpr std::string_view refusalText = "练习服务按计划拒绝了这次请求。";

}  // namespace

PracticeService::PracticeService(std::chrono::milliseconds pace)
    : pace_(pace), server_([this](Connection& connection) { serve(connection); }) {}

PracticeService::~PracticeService() {
    const std::lock_guard lock(mutex_);
    isClosing_ = true;
    changed_.notify_all();
}

std::vector<PracticeService::Exchange> PracticeService::exchanges() const {
    const std::lock_guard lock(mutex_);
    return exchanges_;
}

void PracticeService::planNext(Plan plan) {
    const std::lock_guard lock(mutex_);
    plans_.push_back(plan);
}

void PracticeService::acceptOnly(const std::string& key) {
    const std::lock_guard lock(mutex_);
    acceptedKey_ = key;
}

void PracticeService::release() {
    const std::lock_guard lock(mutex_);
    ++releases_;
    changed_.notify_all();
}

void PracticeService::serve(Connection& connection) {
    for (std::string bytes = connection.readRequest(); !bytes.empty(); bytes = connection.readRequest()) {
        const auto request = parsePracticeRequest(bytes);
        if (!request) {
            connection.send(practice::notFound());
            continue;
        }
        std::size_t exchange = 0;
        std::optional<TakenPlan> plan;
        bool isWelcome = true;
        {
            const std::lock_guard lock(mutex_);
            exchange = exchanges_.size();
            exchanges_.push_back({.request = *request, .answer = {}});
            isWelcome = !acceptedKey_ || request->key == *acceptedKey_;
            if (isWelcome && !plans_.empty()) {
                plan = TakenPlan{plans_.front(), releases_};
                plans_.pop_front();
            }
        }
        const Exchange::State state =
            isWelcome ? answer(connection, *request, exchange, plan) : turnAway(connection, *request);
        const std::lock_guard lock(mutex_);
        exchanges_[exchange].state = state;
        if (request->isStreamed) return;  // the end of a stream is the end of its connection
    }
}

PracticeService::Exchange::State PracticeService::turnAway(Connection& connection, const PracticeRequest& request) {
    connection.send(practice::unauthorized(request.standard, request.key));
    return Exchange::State::failed;
}

PracticeService::Exchange::State PracticeService::answer(Connection& connection, const PracticeRequest& request,
                                                         std::size_t exchange, const std::optional<TakenPlan>& plan) {
    if (plan && plan->trouble == Plan::Trouble::refuse) {
        connection.send(practice::refusal(request.standard, refusalText));
        return Exchange::State::failed;
    }
    if (request.isStreamed) return answerStreamed(connection, request, exchange, plan);
    if (plan && plan->trouble == Plan::Trouble::breakOff) {
        connection.reset();
        return Exchange::State::failed;
    }
    if (plan && hold(connection, *plan) == Held::abandoned) return Exchange::State::abandoned;
    const std::string text = practiceAnswer(request.messages);
    didSend(exchange, text);
    return connection.send(practice::wholeResponse(request.standard, text)) ? Exchange::State::complete
                                                                            : Exchange::State::abandoned;
}

PracticeService::Exchange::State PracticeService::answerStreamed(Connection& connection, const PracticeRequest& request,
                                                                 std::size_t exchange,
                                                                 const std::optional<TakenPlan>& plan) {
    const std::vector<std::string> pieces = practicePieces(practiceAnswer(request.messages));
    if (!connection.send(practice::streamHead(request.standard))) return Exchange::State::abandoned;
    for (std::size_t index = 0; index < pieces.size(); ++index) {
        if (plan && plan->pieces == index) {
            if (plan->trouble == Plan::Trouble::breakOff) {
                connection.reset();
                return Exchange::State::failed;
            }
            if (hold(connection, *plan) == Held::abandoned) return Exchange::State::abandoned;
        }
        if (!connection.send(practice::streamPiece(request.standard, pieces[index]))) return Exchange::State::abandoned;
        didSend(exchange, pieces[index]);
        pauseBetweenPieces();
    }
    return connection.send(practice::streamEnd(request.standard)) ? Exchange::State::complete
                                                                  : Exchange::State::abandoned;
}

PracticeService::Held PracticeService::hold(Connection& connection, const TakenPlan& plan) {
    Lock lock(mutex_);
    while (!connection.isAbandoned()) {
        if (isClosing_ || releases_ != plan.releasesBefore) return Held::released;
        changed_.wait_for(lock, lookInterval);
    }
    return Held::abandoned;
}

void PracticeService::pauseBetweenPieces() {
    Lock lock(mutex_);
    changed_.wait_for(lock, pace_, [this] { return isClosing_; });
}

void PracticeService::didSend(std::size_t exchange, std::string_view piece) {
    const std::lock_guard lock(mutex_);
    exchanges_[exchange].answer += piece;
}

}  // namespace ovrin
