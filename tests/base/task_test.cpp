#include "base/task.h"

#include <chrono>
#include <functional>
#include <latch>
#include <memory>
#include <ostream>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "base/async_stream.h"
#include "base/error.h"
#include "base/run_loop.h"
#include "base/running_task.h"
#include "base/suspension.h"
#include "base/virtual_loop.h"
#include "base/worker_executor.h"
#include "probe.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

Task<int> valueNow(int value) {
    co_return value;
}

Task<void> failNow() {
    throw Error("deep");
    co_return;
}

Task<void> failLater() {
    co_await sleepFor(1ms);
    throw Error("deep");
}

Task<void> passThrough(int levels, Task<void> innermost) {
    const Probe local;
    if (levels == 0) {
        co_await std::move(innermost);
    } else {
        co_await passThrough(levels - 1, std::move(innermost));
    }
}

TEST(Task, CarriesExceptionsThroughThreeLevels) {
    const std::vector<std::function<Task<void>()>> failures = {failNow, failLater};
    for (const auto& fail : failures) {
        RunLoop loop;
        try {
            loop.complete(passThrough(3, fail()));
            FAIL() << "expected an Error";
        } catch (const Error& error) {
            EXPECT_EQ(error.errorDescription(), "deep");
        }
        EXPECT_EQ(Probe::living, 0);
    }
}

TEST(Task, AwaitingManyTasksThatEndAtOnceKeepsTheStackFlat) {
    RunLoop loop;
    const auto sum = [](int count) -> Task<long> {
        long total = 0;
        for (int i = 0; i < count; ++i) total += co_await valueNow(1);
        co_return total;
    };
    EXPECT_EQ(loop.complete(sum(200'000)), 200'000);
}

TEST(Task, ParametersTemporariesAndResultsDieOnceAndInTime) {
    VirtualLoop loop;
    const auto inner = [](Probe parameter) -> Task<Probe> {
        co_await sleepFor(1s);
        co_return std::move(parameter);
    };
    const auto outer = [&inner](Probe parameter, std::vector<int>& counts) -> Task<void> {
        counts.push_back(Probe::living);
        {
            const Probe result = co_await inner(std::move(parameter));
            counts.push_back(Probe::living);
        }
        co_await sleepFor(1s);
        counts.push_back(Probe::living);
    };
    std::vector<int> counts;
    RunningTask running(loop, outer(Probe(), counts));
    running.start();
    loop.advance(2s);
    EXPECT_EQ(counts, (std::vector<int>{1, 2, 1}));
    EXPECT_EQ(Probe::living, 0);
}

TEST(Task, AnUnstartedTaskReleasesItsParametersWhenItIsDroppedOrAssignedOver) {
    const auto work = [](Probe) -> Task<void> { co_return; };
    {
        Task<void> task = work(Probe());
        EXPECT_EQ(Probe::living, 1);
        task = work(Probe());
        EXPECT_EQ(Probe::living, 1);
        Task<void> moved = std::move(task);
        EXPECT_TRUE(moved);
        EXPECT_EQ(Probe::living, 1);
    }
    EXPECT_EQ(Probe::living, 0);
    {
        VirtualLoop loop;
        const RunningTask neverStarted(loop, work(Probe()));
        EXPECT_EQ(Probe::living, 1);
    }
    EXPECT_EQ(Probe::living, 0);
}

// Every way to wait, each of which would last for ever, under the same battery of ends.
struct Wait {
    std::string name;
    std::function<Task<void>(VirtualLoop&)> begin;
};

void PrintTo(const Wait& wait, std::ostream* out) {
    *out << wait.name;
}

class EveryWait : public testing::TestWithParam<Wait> {
protected:
    void SetUp() override { Probe::living = 0; }
    void TearDown() override { EXPECT_EQ(Probe::living, 0); }

    // Waits as the parameter says and writes down how the wait ended.
    Task<void> waitAndTell(Log events) {
        const Probe local;
        try {
            co_await GetParam().begin(loop_);
            events->push_back("went on");
        } catch (const CancellationError&) {
            events->push_back("cancelled");
            throw;
        }
    }

    VirtualLoop loop_;
};

TEST_P(EveryWait, DestroyingTheTaskThereRunsNothingOfItAnyMore) {
    const Log log = makeLog();
    {
        RunningTask running(loop_, waitAndTell(log));
        running.start();
        loop_.runPosted();
        EXPECT_FALSE(running.isDone());
        EXPECT_GT(Probe::living, 0);
    }
    EXPECT_EQ(Probe::living, 0) << "destroyed at once, not when the loop runs again";
    loop_.advance(1h);
    EXPECT_TRUE(log->empty());
}

TEST_P(EveryWait, AStopFromOutsideEndsItWithACancellation) {
    const Log log = makeLog();
    std::stop_source stop;
    RunningTask running(loop_, waitAndTell(log), stop.get_token());
    bool isToldOfTheEnd = false;
    running.onDone([&isToldOfTheEnd] { isToldOfTheEnd = true; });
    running.start();
    loop_.runPosted();
    std::thread([&stop] { stop.request_stop(); }).join();
    EXPECT_TRUE(log->empty()) << "the task goes on from its loop, never inside the request";
    loop_.runPosted();
    EXPECT_EQ(*log, std::vector<std::string>{"cancelled"});
    EXPECT_TRUE(running.isDone());
    EXPECT_TRUE(isToldOfTheEnd);
}

TEST_P(EveryWait, AStopBeforeItBeginsEndsItWithoutWaiting) {
    const Log log = makeLog();
    std::stop_source stop;
    stop.request_stop();
    RunningTask running(loop_, waitAndTell(log), stop.get_token());
    running.start();
    EXPECT_TRUE(running.isDone());
    EXPECT_EQ(*log, std::vector<std::string>{"cancelled"});
}

TEST_P(EveryWait, AStopDirectlyFollowedByDestructionIsSilent) {
    const Log log = makeLog();
    std::stop_source stop;
    {
        RunningTask running(loop_, waitAndTell(log), stop.get_token());
        running.start();
        loop_.runPosted();
        stop.request_stop();
    }
    loop_.advance(1h);
    EXPECT_TRUE(log->empty());
}

TEST_P(EveryWait, ATaskThatDestroysItsOwnerIsDestroyedThere) {
    const Log log = makeLog();
    const auto work = [this](Log events, std::unique_ptr<RunningTask>& owner) -> Task<void> {
        const Probe local;
        co_await sleepFor(1s);
        owner.reset();
        events->push_back("runs on to the next wait");
        co_await waitAndTell(events);
        events->push_back("ran after the owner had gone");
    };
    std::unique_ptr<RunningTask> owner;
    owner = std::make_unique<RunningTask>(loop_, work(log, owner));
    owner->start();
    loop_.advance(1s);
    EXPECT_EQ(Probe::living, 0);
    loop_.advance(1h);
    EXPECT_EQ(*log, std::vector<std::string>{"runs on to the next wait"});
}

TEST_P(EveryWait, StopsFromAnotherThreadRaceSafelyWithDestruction) {
    const Log log = makeLog();
    for (int i = 0; i < 50; ++i) {
        std::stop_source stop;
        std::latch together(2);
        auto running = std::make_unique<RunningTask>(loop_, waitAndTell(log), stop.get_token());
        running->start();
        std::thread other([&stop, &together] {
            together.arrive_and_wait();
            stop.request_stop();
        });
        together.arrive_and_wait();
        if (i % 2 == 0) loop_.runPosted();
        running.reset();
        other.join();
        loop_.runPosted();
    }
    for (const std::string& event : *log) EXPECT_EQ(event, "cancelled");
}

Task<void> sleepForEver(VirtualLoop&) {
    co_await sleepFor(EventLoop::Duration::max());
}

Task<void> waitForWorker(VirtualLoop&) {
    WorkerExecutor worker(1);
    auto work = [probe = Probe()](const std::stop_token& stop) {
        while (!stop.stop_requested()) std::this_thread::yield();
    };
    co_await worker.run(std::move(work));
}

Task<void> waitForStream(VirtualLoop&) {
    auto [stream, writer] = makeStream<Probe>();
    const auto value = co_await stream.next();
    EXPECT_FALSE(value);
}

Task<void> waitForProducer(VirtualLoop& loop) {
    AsyncStream<int> stream =
        streamFrom<int>(loop, [](StreamWriter<int>&) -> Task<void> { co_await sleepFor(EventLoop::Duration::max()); });
    const auto value = co_await stream.next();
    EXPECT_FALSE(value);
}

Task<void> waitForNestedTasks(VirtualLoop& loop) {
    co_await passThrough(3, sleepForEver(loop));
}

INSTANTIATE_TEST_SUITE_P(Waits, EveryWait,
                         testing::Values(Wait{"sleep", sleepForEver}, Wait{"worker", waitForWorker},
                                         Wait{"stream", waitForStream}, Wait{"producer", waitForProducer},
                                         Wait{"nested", waitForNestedTasks}),
                         [](const auto& info) { return info.param.name; });

TEST(RunningTask, TellsOfItsEndOnceAndMayBeDestroyedThen) {
    VirtualLoop loop;
    int ends = 0;
    const auto work = []() -> Task<void> {
        co_await sleepFor(1ms);
        throw CancellationError();
    };
    auto running = std::make_unique<RunningTask>(loop, work());
    running->onDone([&] {
        ++ends;
        running.reset();
    });
    running->start();
    loop.advance(1s);
    EXPECT_EQ(ends, 1);
}

TEST(RunningTask, IsNotToldOfAnEndWhenTheCleanUpOfTheTaskDestroysIt) {
    VirtualLoop loop;
    std::unique_ptr<RunningTask> running;
    const auto work = [](Probe) -> Task<void> { co_await sleepFor(1s); };
    running = std::make_unique<RunningTask>(loop, work(Probe([&running] { running.reset(); })));
    running->onDone([] { ADD_FAILURE() << "the owner has gone"; });
    running->start();
    loop.advance(2s);
    EXPECT_FALSE(running);
}

TEST(RunningTask, AnExceptionThatEscapesEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            VirtualLoop loop;
            RunningTask running(loop, failLater());
            running.start();
            try {
                loop.advance(1s);
            } catch (...) {
            }
        },
        "deep");
}

}  // namespace
}  // namespace ovrin
