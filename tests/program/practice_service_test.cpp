// The practice service, which demonstrations and desktop tests lean on, as the real program meets it.
#include "practice/practice_service.h"

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program/running_program.h"

namespace ovrin {
namespace {

using testing::HasSubstr;
using Plan = PracticeService::Plan;
using State = PracticeService::Exchange::State;

struct PracticeServiceTest : testing::TestWithParam<std::string> {
    std::vector<std::string> connection() const {
        return {"OVRIN_BASE_URL=" + service.baseURL(), "OVRIN_API_STANDARD=" + GetParam(), "OVRIN_API_KEY=practice"};
    }
    RunningProgram::Outcome run(const std::vector<std::string>& arguments) const {
        return runProgram(home, {.arguments = arguments, .environment = connection()});
    }

    // Of the exchange of this number, once it has ended: the service learns of the end after the program.
    State endOf(std::size_t exchange) const {
        while (service.exchanges().at(exchange).state == State::running) std::this_thread::yield();
        return service.exchanges().at(exchange).state;
    }

    PracticeService service{std::chrono::milliseconds(0)};
    TestHome home;
};

TEST_P(PracticeServiceTest, TranslatesThePageLineByLineAndSaysElsewhereWhoItIs) {
    const std::string answer = "一张到小岛的船票要三枚硬币。\n〔未收录〕Something else";
    const std::string source = "A ticket to the smal1 island costs three coins\nSomething else";
    EXPECT_EQ(run({"translate", "--to", "zh-Hans", source}).output, answer);
    EXPECT_EQ(run({"translate", "--to", "zh-Hans", "--no-stream", source}).output, answer);
    EXPECT_TRUE(service.exchanges().at(0).request.isStreamed);
    EXPECT_FALSE(service.exchanges().at(1).request.isStreamed);
    EXPECT_EQ(endOf(0), State::complete);
    EXPECT_THAT(run({"ask", "who?"}).output, AllOf(HasSubstr("practice service"), HasSubstr("who?")));
}

TEST_P(PracticeServiceTest, MakesTheTroubleThatIsPlanned) {
    const std::vector<std::string> ask{"ask", "one two three four"};
    service.planNext({.trouble = Plan::Trouble::refuse});
    service.planNext({.trouble = Plan::Trouble::breakOff, .pieces = 2});
    EXPECT_THAT(run(ask).error, HasSubstr("练习服务按计划拒绝了这次请求。"));
    const auto broken = run(ask);
    EXPECT_EQ(broken.status, 1);
    EXPECT_FALSE(broken.output.empty());
    EXPECT_EQ(run(ask).status, 0) << "plans are for one request each";
}

TEST_P(PracticeServiceTest, TurnsEveryOtherKeyAwayInTheWordsOfTheProtocol) {
    const bool isAnthropic = GetParam() == "anthropic";
    service.acceptOnly("another");
    service.planNext({.trouble = Plan::Trouble::refuse});
    const auto refused = run({"ask", "one"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.error, HasSubstr(isAnthropic ? "invalid x-api-key" : "Incorrect API key provided: ********"));
    EXPECT_EQ(endOf(0), State::failed);
    service.acceptOnly("practice");
    EXPECT_THAT(run({"ask", "one"}).error, HasSubstr("按计划拒绝")) << "a plan is for a request that is let in";
    EXPECT_EQ(run({"ask", "one"}).status, 0);
}

TEST_P(PracticeServiceTest, HoldsAnAnswerUntilItIsReleasedOrNobodyWaits) {
    const auto start = [this] {
        service.planNext({.trouble = Plan::Trouble::hold, .pieces = 1});
        return std::make_unique<RunningProgram>(
            home, RunningProgram::Setup{.arguments = {"ask", "one two"}, .environment = connection()});
    };
    auto program = start();
    EXPECT_FALSE(program->readOutput(1).empty());
    EXPECT_EQ(service.exchanges().at(0).state, State::running);
    service.release();
    EXPECT_EQ(program->finish().status, 0);
    EXPECT_EQ(endOf(0), State::complete);

    program = start();
    EXPECT_FALSE(program->readOutput(1).empty());
    program.reset();
    EXPECT_EQ(endOf(1), State::abandoned);
}

INSTANTIATE_TEST_SUITE_P(Both, PracticeServiceTest, testing::Values("openai-compatible", "anthropic"),
                         [](const auto& test) { return test.param == "anthropic" ? "Anthropic" : "OpenAI"; });

}  // namespace
}  // namespace ovrin
