#include "base/worker_executor.h"

#include <latch>
#include <memory>
#include <optional>
#include <semaphore>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "base/run_loop.h"
#include "base/virtual_loop.h"
#include "probe.h"

namespace ovrin {
namespace {

using Lines = std::vector<std::string>;

void waitForStop(const std::stop_token& stop) {
    std::binary_semaphore stopped(0);
    const std::stop_callback callback(stop, [&stopped] { stopped.release(); });
    stopped.acquire();
}

TEST(WorkerExecutor, GivesResultsAndExceptionsOnTheAwaitingLoop) {
    RunLoop loop;
    WorkerExecutor workers(2);
    const auto work = [](RunLoop& home, WorkerExecutor& executor) -> Task<std::string> {
        const auto worker = co_await executor.run([](const std::stop_token&) { return std::this_thread::get_id(); });
        EXPECT_NE(worker, std::this_thread::get_id());
        EXPECT_TRUE(home.isCurrent());
        std::string caught;
        try {
            co_await executor.run([](const std::stop_token&) { throw Error("from the worker"); });
        } catch (const Error& error) {
            caught = error.errorDescription();
        }
        EXPECT_TRUE(home.isCurrent());
        co_return caught;
    };
    EXPECT_EQ(loop.complete(work(loop, workers)), "from the worker");
}

TEST(WorkerExecutor, DestroysAFunctionThatHasRunOnItsOwnThread) {
    RunLoop loop;
    WorkerExecutor workers(1);
    const auto work = [](WorkerExecutor& executor) -> Task<std::thread::id> {
        std::thread::id destroyedOn;
        auto speak = [&destroyedOn] { destroyedOn = std::this_thread::get_id(); };
        auto work = [probe = std::make_unique<Probe>(speak)](const std::stop_token&) {};
        co_await executor.run(std::move(work));
        EXPECT_NE(destroyedOn, std::thread::id{}) << "before the result is given";
        co_return destroyedOn;
    };
    EXPECT_NE(loop.complete(work(workers)), std::this_thread::get_id());
}

TEST(WorkerExecutor, StopsWhatRunsForACancelledTaskAndDropsItsResult) {
    VirtualLoop loop;
    WorkerExecutor workers(1);
    std::latch begun(1);
    std::latch ended(1);
    const auto work = [](WorkerExecutor& executor, std::latch& b, std::latch& e) -> Task<void> {
        co_await executor.run([&b, &e](const std::stop_token& stop) {
            b.count_down();
            waitForStop(stop);
            e.count_down();
        });
        ADD_FAILURE() << "the task was cancelled";
    };
    {
        RunningTask running(loop, work(workers, begun, ended));
        running.start();
        begun.wait();
    }
    ended.wait();
    loop.runPosted();
}

TEST(WorkerExecutor, ForgetsWhatHasNotBegunWhenItGoesAndWakesWhoWaits) {
    VirtualLoop loop;
    const Log log = makeLog();
    auto workers = std::make_unique<WorkerExecutor>(1);
    std::latch begun(1);
    const auto waitForResult = [](WorkerExecutor& executor, std::latch& b, Log events) -> Task<void> {
        const int result = co_await executor.run([&b](const std::stop_token& stop) {
            b.count_down();
            waitForStop(stop);
            return 7;
        });
        events->push_back("result " + std::to_string(result));
    };
    const auto waitInVain = [](WorkerExecutor& executor, Log events, Probe probe) -> Task<void> {
        try {
            auto never = [probe](const std::stop_token&) { ADD_FAILURE() << "it had not begun"; };
            co_await executor.run(std::move(never));
        } catch (const CancellationError&) {
            events->push_back("cancelled");
        }
    };
    RunningTask running(loop, waitForResult(*workers, begun, log));
    running.start();
    begun.wait();
    RunningTask queued(loop, waitInVain(*workers, log, Probe()));
    queued.start();
    workers->post([](const std::stop_token&) { ADD_FAILURE() << "it had not begun"; });
    workers.reset();
    EXPECT_TRUE(log->empty());
    loop.runPosted();
    // Which of the two comes first depends on how fast the running function heard of the stop.
    EXPECT_THAT(*log, ::testing::UnorderedElementsAre("cancelled", "result 7"));
    EXPECT_TRUE(running.isDone() && queued.isDone());
    EXPECT_EQ(Probe::living, 0);
}

TEST(WorkerExecutor, MayOutliveTheLoopOfACancelledTask) {
    WorkerExecutor workers(1);
    std::binary_semaphore mayEnd(0);
    std::latch begun(1);
    {
        VirtualLoop loop;
        const auto work = [](WorkerExecutor& executor, std::latch& b, std::binary_semaphore& end) -> Task<void> {
            co_await executor.run([&b, &end](const std::stop_token&) {
                b.count_down();
                end.acquire();
            });
        };
        RunningTask running(loop, work(workers, begun, mayEnd));
        running.start();
        begun.wait();
    }
    mayEnd.release();
}

TEST(WorkerExecutor, PostedWorkRunsInOrderAndMayPostMoreFromItsDestructor) {
    WorkerExecutor workers(1);
    Lines log;
    std::latch done(1);
    workers.post([&log](const std::stop_token&) { log.push_back("first"); });
    const auto last = [&log, &done](const std::stop_token&) {
        log.push_back("last");
        done.count_down();
    };
    workers.post([&log, probe = std::make_shared<Probe>([&] { workers.post(last); })](const std::stop_token&) {
        log.push_back("second");
    });
    done.wait();
    EXPECT_EQ(log, (Lines{"first", "second", "last"}));
}

TEST(WorkerExecutor, StopsPostedWorkWhenItGoes) {
    std::optional<WorkerExecutor> workers(std::in_place, 2);
    std::latch begun(2);
    for (int i = 0; i < 2; ++i) {
        workers->post([&begun, &executor = *workers](const std::stop_token& stop) {
            begun.count_down();
            waitForStop(stop);
            executor.post([](const std::stop_token&) { ADD_FAILURE() << "too late to begin"; });
        });
    }
    begun.wait();
    workers.reset();
}

}  // namespace
}  // namespace ovrin
