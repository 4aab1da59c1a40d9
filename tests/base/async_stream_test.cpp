#include "base/async_stream.h"

#include <chrono>
#include <functional>
#include <latch>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "base/error.h"
#include "base/run_loop.h"
#include "base/suspension.h"
#include "base/virtual_loop.h"
#include "base/worker_executor.h"
#include "probe.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Lines = std::vector<std::string>;

// Reads to the end and writes down everything, the kind of the end too.
Task<void> read(AsyncStream<int> stream, Log log) {
    std::string end = "end";
    try {
        while (true) {
            const auto value = co_await stream.next();
            if (!value) break;
            log->push_back(std::to_string(*value));
        }
    } catch (const CancellationError&) {
        end = "cancelled";
    } catch (const Error& error) {
        end = error.errorDescription();
    }
    log->push_back(end);
}

TEST(AsyncStream, EndsAfterWhatWasPushedBefore) {
    struct End {
        std::string name;
        std::function<void(StreamWriter<int>)> act;
    };
    const std::vector<End> ends = {
        {"end", [](StreamWriter<int> writer) { writer.finish(); }},
        {"broken", [](StreamWriter<int> writer) { writer.fail(std::make_exception_ptr(Error("broken"))); }},
        {"cancelled", [](StreamWriter<int>) {}},
        {"end",
         [](StreamWriter<int> writer) {
             writer.finish();
             writer.push(3);
             writer.fail(std::make_exception_ptr(Error("after the end")));
         }},
    };
    for (const bool isWaiting : {false, true}) {
        for (const End& end : ends) {
            VirtualLoop loop;
            const Log log = makeLog();
            auto [stream, writer] = makeStream<int>();
            RunningTask reader(loop, read(std::move(stream), log));
            if (isWaiting) reader.start();
            writer.push(1);
            writer.push(2);
            end.act(std::move(writer));
            if (!isWaiting) reader.start();
            loop.runPosted();
            EXPECT_EQ(*log, (Lines{"1", "2", end.name}));
        }
    }
}

TEST(AsyncStream, AStoppedWaitLosesNoValue) {
    VirtualLoop loop;
    const Log log = makeLog();
    auto made = makeStream<int>();
    AsyncStream<int>& stream = made.first;
    const auto readOne = [](AsyncStream<int>& source, Log events) -> Task<void> {
        const auto value = co_await source.next();
        events->push_back(std::to_string(*value));
    };
    {
        std::stop_source stop;
        RunningTask stopped(loop, readOne(stream, log), stop.get_token());
        stopped.start();
        made.second.push(1);
        stop.request_stop();
        loop.runPosted();
        EXPECT_TRUE(stopped.isDone());
    }
    {
        RunningTask destroyed(loop, readOne(stream, log));
        destroyed.start();
    }
    EXPECT_EQ(*log, Lines{"1"}) << "the second reader found it";
    {
        RunningTask destroyed(loop, readOne(stream, log));
        destroyed.start();
        made.second.push(2);
    }
    loop.runPosted();
    RunningTask reader(loop, readOne(stream, log));
    reader.start();
    EXPECT_EQ(*log, (Lines{"1", "2"}));
}

TEST(AsyncStream, MayBeMovedWhileItIsAwaited) {
    VirtualLoop loop;
    const Log log = makeLog();
    auto made = makeStream<int>();
    AsyncStream<int> source = std::move(made.first);
    const auto readOne = [](AsyncStream<int>& from, Log events) -> Task<void> {
        const auto value = co_await from.next();
        events->push_back(std::to_string(*value));
    };
    RunningTask reader(loop, readOne(source, log));
    reader.start();
    const AsyncStream<int> elsewhere = std::move(source);
    made.second.push(1);
    loop.runPosted();
    EXPECT_EQ(*log, Lines{"1"});
}

TEST(AsyncStream, DroppingItCancelsWhoAwaitsIt) {
    VirtualLoop loop;
    const Log log = makeLog();
    auto made = makeStream<int>();
    AsyncStream<int> source = std::move(made.first);
    const auto readOne = [](AsyncStream<int>& from, Log events) -> Task<void> {
        try {
            const auto value = co_await from.next();
            ADD_FAILURE() << value.has_value();
        } catch (const CancellationError&) {
            events->push_back("cancelled");
        }
    };
    RunningTask reader(loop, readOne(source, log));
    reader.start();
    source = {};
    EXPECT_TRUE(made.second.stopToken().stop_requested());
    made.second.push(1);
    loop.runPosted();
    EXPECT_EQ(*log, Lines{"cancelled"});
}

TEST(AsyncStream, DroppingItThrowsAwayWhatIsQueuedAndWhatComes) {
    auto made = makeStream<Probe>();
    made.second.push(Probe());
    made.second.push(Probe());
    EXPECT_EQ(Probe::living, 2);
    { const AsyncStream<Probe> dropped = std::move(made.first); }
    EXPECT_EQ(Probe::living, 0);
    made.second.push(Probe());
    EXPECT_EQ(Probe::living, 0);
}

TEST(AsyncStream, AWriterMayOutliveTheLoopOfItsReader) {
    auto made = makeStream<int>();
    const Log log = makeLog();
    {
        VirtualLoop loop;
        RunningTask reader(loop, read(std::move(made.first), log));
        reader.start();
    }
    made.second.push(1);
    made.second.finish();
    EXPECT_TRUE(log->empty());
}

// A loop on a thread of its own, as the network has one.
class LoopThread {
public:
    LoopThread() : thread_([this] { work(); }) { isReady_.wait(); }
    LoopThread(const LoopThread&) = delete;
    LoopThread& operator=(const LoopThread&) = delete;
    ~LoopThread() {
        // Behind what is posted already, so that tasks which were cancelled before are destroyed first.
        loop_->post([this] { loop_->quit(); });
        thread_.join();
    }

    RunLoop& loop() { return *loop_; }

private:
    void work() {
        RunLoop loop;
        loop_ = &loop;
        isReady_.count_down();
        loop.run();
    }

    std::latch isReady_{1};
    RunLoop* loop_ = nullptr;
    std::thread thread_;
};

TEST(StreamFrom, EndsAsItsTaskEnds) {
    RunLoop loop;
    LoopThread network;
    const auto produce = [](bool isFailing) {
        return [isFailing](StreamWriter<int>& writer) -> Task<void> {
            writer.push(1);
            co_await sleepFor(1ms);
            writer.push(2);
            if (isFailing) throw Error("broken");
        };
    };
    const Log log = makeLog();
    loop.complete(read(streamFrom<int>(network.loop(), produce(false)), log));
    loop.complete(read(streamFrom<int>(network.loop(), produce(true)), log));
    EXPECT_EQ(*log, (Lines{"1", "2", "end", "1", "2", "broken"}));
}

TEST(StreamFrom, DroppingTheStreamDestroysTheProducerOnItsLoop) {
    std::latch destroyed(1);
    std::thread::id destroyedOn;
    std::thread::id networkThread;
    LoopThread network;
    {
        RunLoop loop;
        const auto produce = [&](StreamWriter<int>& writer) -> Task<void> {
            networkThread = std::this_thread::get_id();
            const Probe local([&] {
                destroyedOn = std::this_thread::get_id();
                destroyed.count_down();
            });
            writer.push(1);
            co_await sleepFor(1h);
        };
        const auto readOne = [](AsyncStream<int> stream) -> Task<void> {
            const auto value = co_await stream.next();
            EXPECT_EQ(value, 1);
        };
        loop.complete(readOne(streamFrom<int>(network.loop(), produce)));
        destroyed.wait();
    }
    EXPECT_EQ(destroyedOn, networkThread);
}

TEST(StreamFrom, DroppingAChainOfStreamsReachesTheInnermostProducer) {
    VirtualLoop loop;
    const auto inner = [](StreamWriter<int>& writer) -> Task<void> {
        const Probe local;
        writer.push(1);
        co_await sleepFor(1h);
    };
    const auto outer = [&](StreamWriter<int>& writer) -> Task<void> {
        AsyncStream<int> source = streamFrom<int>(loop, inner);
        while (true) {
            const auto value = co_await source.next();
            if (!value) co_return;
            writer.push(*value * 10);
        }
    };
    const Log log = makeLog();
    {
        RunningTask reader(loop, read(streamFrom<int>(loop, outer), log));
        reader.start();
        loop.runPosted();
        EXPECT_EQ(Probe::living, 1);
    }
    loop.runPosted();
    EXPECT_EQ(Probe::living, 0);
    EXPECT_EQ(*log, Lines{"10"});
}

// Starts work that crosses three threads and cancels it at a different moment each time.
TEST(Stress, CancelledAndRestartedWorkAcrossThreadsLeavesNothingBehind) {
    {
        VirtualLoop loop;
        LoopThread network;
        WorkerExecutor workers(1);
        int values = 0;
        const auto produce = [](StreamWriter<int>& writer) -> Task<void> {
            const Probe local;
            for (int i = 0;; ++i) {
                writer.push(i);
                co_await sleepFor(0ns);
            }
        };
        const auto consume = [&](int wanted, Probe) -> Task<void> {
            AsyncStream<int> stream = streamFrom<int>(network.loop(), produce);
            for (int i = 0; i < wanted; ++i) {
                const auto value = co_await stream.next();
                EXPECT_EQ(value, i);
                auto count = [probe = Probe()](const std::stop_token&) { return 1; };
                values += co_await workers.run(std::move(count));
            }
        };
        TaskSlot slot(loop);
        for (int i = 0; i < 1000; ++i) {
            slot.replace(consume(1 + i % 3, Probe()));
            const int enough = values + i % 3;
            loop.runUntil([&] { return values >= enough || !slot.isRunning(); });
        }
        slot.cancel();
        EXPECT_GT(values, 500);
    }
    EXPECT_EQ(Probe::living, 0);
}

}  // namespace
}  // namespace ovrin
