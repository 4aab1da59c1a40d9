#include "base/task.h"

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/async_stream.h"
#include "base/error.h"
#include "base/run_loop.h"
#include "base/running_task.h"
#include "base/suspension.h"
#include "base/virtual_loop.h"
#include "base/worker_executor.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

Task<int> valueLater(int value) {
    co_await sleepFor(10ms);
    co_return value;
}

Task<int> sumOf(int count) {
    int sum = 0;
    for (int i = 0; i < count; ++i) sum += co_await valueLater(i);
    co_return sum;
}

Task<int> valueNow(int value) {
    co_return value;
}

Task<void> failLater() {
    co_await sleepFor(1ms);
    throw Error("deep");
}

Task<void> passThrough(int levels) {
    if (levels == 0) {
        co_await failLater();
    } else {
        co_await passThrough(levels - 1);
    }
}

TEST(Task, GivesResultsThroughNestedWaits) {
    RunLoop loop;
    EXPECT_EQ(loop.complete(sumOf(5)), 10);
}

TEST(Task, CarriesExceptionsThroughThreeLevels) {
    RunLoop loop;
    try {
        loop.complete(passThrough(3));
        FAIL() << "expected an Error";
    } catch (const Error& error) {
        EXPECT_EQ(error.errorDescription(), "deep");
    }
}

TEST(Task, AwaitingManyTasksThatEndAtOnceKeepsTheStackFlat) {
    RunLoop loop;
    const auto sum = [](int count) -> Task<long> {
        long total = 0;
        for (int i = 0; i < count; ++i) total += co_await valueNow(1);
        co_return total;
    };
    EXPECT_EQ(loop.complete(sum(1'000'000)), 1'000'000);
}

TEST(Task, ResumesWorkerResultsOnTheLoop) {
    RunLoop loop;
    WorkerExecutor workers(2);
    const auto work = [](RunLoop& home, WorkerExecutor& executor) -> Task<std::string> {
        const auto worker = co_await executor.run([](const std::stop_token&) { return std::this_thread::get_id(); });
        EXPECT_NE(worker, std::this_thread::get_id());
        EXPECT_TRUE(home.isCurrent());
        co_return "done";
    };
    EXPECT_EQ(loop.complete(work(loop, workers)), "done");
}

TEST(AsyncStream, DeliversInOrderAcrossThreadsAndEnds) {
    RunLoop loop;
    WorkerExecutor workers(1);
    auto [stream, writer] = makeStream<int>();
    auto shared = std::make_shared<StreamWriter<int>>(std::move(writer));
    workers.post([shared](const std::stop_token&) {
        for (int i = 0; i < 10'000; ++i) shared->push(i);
        shared->finish();
    });
    const auto collect = [](AsyncStream<int> source) -> Task<std::vector<int>> {
        std::vector<int> values;
        while (true) {
            const auto value = co_await source.next();
            if (!value) co_return values;
            values.push_back(*value);
        }
    };
    const auto values = loop.complete(collect(std::move(stream)));
    ASSERT_EQ(values.size(), 10'000U);
    for (int i = 0; i < 10'000; ++i) ASSERT_EQ(values[static_cast<std::size_t>(i)], i);
}

TEST(TaskSlot, ReplacingDestroysTheOldTaskWhereItWaits) {
    VirtualLoop loop;
    std::vector<std::string> log;
    const auto work = [](std::vector<std::string>& events, std::string name) -> Task<void> {
        events.push_back(name + " begins");
        co_await sleepFor(1s);
        events.push_back(name + " ends");
    };
    TaskSlot slot(loop);
    slot.replace(work(log, "first"));
    loop.advance(500ms);
    slot.replace(work(log, "second"));
    loop.advance(2s);
    EXPECT_EQ(log, (std::vector<std::string>{"first begins", "second begins", "second ends"}));
}

}  // namespace
}  // namespace ovrin
