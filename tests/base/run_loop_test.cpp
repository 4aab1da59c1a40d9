#include "base/run_loop.h"

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/suspension.h"
#include "base/virtual_loop.h"
#include "probe.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Lines = std::vector<std::string>;

TEST(RunLoop, QuitLeavesTheRestForTheNextRun) {
    RunLoop loop;
    Lines log;
    loop.post([&] {
        log.push_back("first");
        loop.quit();
    });
    loop.post([&] {
        log.push_back("second");
        loop.quit();
    });
    loop.run();
    EXPECT_EQ(log, Lines{"first"});
    loop.run();
    EXPECT_EQ(log, (Lines{"first", "second"}));
}

TEST(RunLoop, TimersRunInTheOrderOfTheirDueTimes) {
    RunLoop loop;
    Lines log;
    loop.postAfter(2ms, [&] {
        log.push_back("late");
        loop.quit();
    });
    loop.postAfter(1ms, [&] { log.push_back("early"); });
    loop.postAfter(EventLoop::Duration::max(), [&] { log.push_back("never"); });
    loop.run();
    EXPECT_EQ(log, (Lines{"early", "late"}));
}

TEST(RunLoop, CompletesATaskWhateverQuitsMeanwhile) {
    RunLoop loop;
    loop.quit();
    loop.post([&loop] { loop.quit(); });
    const auto work = []() -> Task<int> {
        co_await sleepFor(1ms);
        co_return 5;
    };
    EXPECT_EQ(loop.complete(work()), 5);
}

TEST(RunLoop, CompleteThrowsWhenItIsStoppedFromAnotherThread) {
    RunLoop loop;
    std::stop_source stop;
    const auto work = [](std::stop_source source) -> Task<void> {
        const std::jthread stopper([source]() mutable { source.request_stop(); });
        co_await sleepFor(1h);
    };
    EXPECT_THROW(loop.complete(work(stop), stop.get_token()), CancellationError);
}

// What both kinds of loop owe to whoever hands them work.
template <typename Loop>
class AnyLoop : public testing::Test {
protected:
    void drain() {
        if constexpr (std::is_same_v<Loop, VirtualLoop>) {
            loop_->runPosted();
        } else {
            loop_->post([this] { loop_->quit(); });
            loop_->run();
        }
    }

    std::optional<Loop> loop_{std::in_place};
};

using Loops = testing::Types<RunLoop, VirtualLoop>;
TYPED_TEST_SUITE(AnyLoop, Loops, );

TYPED_TEST(AnyLoop, ATimerThatIsDueCanStillBeCancelled) {
    EventLoop::TimerId second{};
    bool hasRun = false;
    this->loop_->postAfter(0ns, [&] { this->loop_->cancelTimer(second); });
    second = this->loop_->postAfter(0ns, [&] { hasRun = true; });
    this->drain();
    this->drain();
    EXPECT_FALSE(hasRun);
    this->loop_->cancelTimer(second);
    this->loop_->cancelTimer(EventLoop::TimerId{12345});
}

TYPED_TEST(AnyLoop, WorkMayUseTheLoopWhenItIsDestroyed) {
    int runs = 0;
    const auto postAgain = [&loop = *this->loop_, &runs] { loop.post([&runs] { ++runs; }); };
    this->loop_->post([probe = std::make_shared<Probe>(postAgain)] {});
    this->drain();
    const auto timer = this->loop_->postAfter(1h, [probe = std::make_shared<Probe>(postAgain)] {});
    this->loop_->cancelTimer(timer);
    this->drain();
    EXPECT_EQ(runs, 2);
    this->loop_->post([probe = std::make_shared<Probe>(postAgain)] {});
    this->loop_->postAfter(1h, [probe = std::make_shared<Probe>(postAgain)] {});
    EXPECT_EQ(Probe::living, 2);
    this->loop_.reset();
    EXPECT_EQ(Probe::living, 0);
    EXPECT_EQ(runs, 2) << "the loop went without running it";
}

TYPED_TEST(AnyLoop, AnExceptionThatLeavesWorkEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            this->loop_->post([] { throw Error("from posted work"); });
            try {
                this->drain();
            } catch (const Error&) {
            }
        },
        "from posted work");
}

}  // namespace
}  // namespace ovrin
