#include "recognition/idle_releasing_recognizer.h"

#include <chrono>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "base/virtual_loop.h"
#include "base/worker_executor.h"
#include "fakes/fake_text_recognizer.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Strings = std::vector<std::string>;

class IdleReleasingRecognizerTest : public testing::Test {
protected:
    void perform() { recognizer_->perform({}, Image(), {}); }

    // Moves the time on and lets the workers do what fell due.
    Strings callsAfter(std::chrono::nanoseconds time) {
        loop_.advance(time);
        bool isDone = false;
        workers_->post([this, &isDone](const auto&) { loop_.post([&isDone] { isDone = true; }); });
        loop_.runUntil([&isDone] { return isDone; });
        return inner_.calls();
    }

    VirtualLoop loop_;
    FakeTextRecognizer inner_;
    std::unique_ptr<WorkerExecutor> workers_ = std::make_unique<WorkerExecutor>(1);
    std::unique_ptr<IdleReleasingRecognizer> recognizer_ =
        std::make_unique<IdleReleasingRecognizer>(inner_, loop_, *workers_, 3min);
};

TEST_F(IdleReleasingRecognizerTest, ReleasesOnceThreeMinutesAfterTheLastUse) {
    perform();
    EXPECT_EQ(callsAfter(2min), Strings{"perform"});
    recognizer_->prepare();
    EXPECT_EQ(callsAfter(3min - 1ns), (Strings{"perform", "prepare"}));
    EXPECT_EQ(callsAfter(1ns), (Strings{"perform", "prepare", "release"}));
    EXPECT_EQ(callsAfter(24h).size(), 3U);
    perform();
    EXPECT_EQ(callsAfter(3min), (Strings{"perform", "prepare", "release", "perform", "release"}));
}

TEST_F(IdleReleasingRecognizerTest, NeverUsedHasNothingToRelease) {
    EXPECT_EQ(callsAfter(24h), Strings{});
}

TEST_F(IdleReleasingRecognizerTest, CountsNoTimeWhileAnyPassRuns) {
    inner_.reading = [this, depth = 0](const auto&) mutable {
        if (++depth == 1) {
            perform();  // a second pass, begun and ended within the first
            EXPECT_EQ(callsAfter(1h).back(), "perform");
        }
        return std::vector<TextObservation>{};
    };
    perform();
    EXPECT_EQ(callsAfter(3min), (Strings{"perform", "perform", "release"}));
}

TEST_F(IdleReleasingRecognizerTest, CountsAPassThatFails) {
    inner_.reading = [](const auto&) -> std::vector<TextObservation> { throw Error("damaged"); };
    EXPECT_THROW(perform(), Error);
    EXPECT_EQ(callsAfter(3min), (Strings{"perform", "release"}));
}

TEST_F(IdleReleasingRecognizerTest, ReleasesNothingAfterItsEnd) {
    perform();
    loop_.runPosted();
    recognizer_->prepare();
    recognizer_.reset();
    EXPECT_EQ(callsAfter(24h), (Strings{"perform", "prepare"}));
}

}  // namespace
}  // namespace ovrin
