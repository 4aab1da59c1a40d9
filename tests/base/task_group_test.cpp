#include <chrono>
#include <functional>
#include <latch>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "base/async_stream.h"
#include "base/run_loop.h"
#include "base/running_task.h"
#include "base/suspension.h"
#include "base/virtual_loop.h"
#include "probe.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Lines = std::vector<std::string>;

Task<void> waitFor(EventLoop::Duration duration, Probe) {
    if (duration > 0s) co_await sleepFor(duration);
}

TEST(TaskGroup, ForgetsTasksAsTheyEnd) {
    VirtualLoop loop;
    TaskGroup group(loop);
    group.start(waitFor(0s, Probe()));
    EXPECT_TRUE(group.isEmpty()) << "it ended while it was started";
    group.start(waitFor(1s, Probe()));
    group.start(waitFor(2s, Probe()));
    loop.advance(1s);
    EXPECT_EQ(Probe::living, 1);
    EXPECT_FALSE(group.isEmpty());
    loop.advance(1s);
    EXPECT_TRUE(group.isEmpty());
    EXPECT_EQ(Probe::living, 0);
}

TEST(TaskGroup, CleanUpOfCancelledTasksMayUseTheGroup) {
    VirtualLoop loop;
    for (const bool isDestroyed : {false, true}) {
        auto group = std::make_unique<TaskGroup>(loop);
        TaskGroup& tasks = *group;
        const auto useGroup = [&tasks] {
            static_cast<void>(tasks.isEmpty());
            tasks.cancelAll();
        };
        group->start(waitFor(1s, Probe([&tasks, &useGroup] {
                                 useGroup();
                                 tasks.start(waitFor(1s, Probe()));
                             })));
        group->start(waitFor(1s, Probe(useGroup)));
        group->start(waitFor(1s, Probe(useGroup)));
        if (isDestroyed) {
            group.reset();
        } else {
            group->cancelAll();
            EXPECT_TRUE(group->isEmpty());
        }
        EXPECT_EQ(Probe::living, 0);
    }
}

TEST(TaskGroup, ATaskMayCancelOrDestroyItsGroup) {
    VirtualLoop loop;
    const Log log = makeLog();
    const auto work = [](std::function<void()> end, EventLoop::Duration before, Log events, Probe) -> Task<void> {
        if (before > 0s) co_await sleepFor(before);
        end();
        events->push_back("ended the group");
        co_await sleepFor(1s);
        events->push_back("ran on");
    };
    for (const EventLoop::Duration before : {0s, 1s}) {
        auto group = std::make_unique<TaskGroup>(loop);
        group->start(waitFor(1h, Probe()));
        group->start(work([&group] { group->cancelAll(); }, before, log, Probe()));
        loop.advance(1s);
        EXPECT_EQ(Probe::living, 0);
        group->start(waitFor(1h, Probe()));
        group->start(work([&group] { group.reset(); }, before, log, Probe()));
        loop.advance(1s);
        EXPECT_EQ(Probe::living, 0);
    }
    EXPECT_EQ(*log, Lines(4, "ended the group"));
}

TEST(DetachedTask, LivesUntilItEndsOrIsStopped) {
    VirtualLoop loop;
    std::stop_source stop;
    startDetached(loop, waitFor(1s, Probe()), stop.get_token());
    startDetached(loop, waitFor(1h, Probe()), stop.get_token());
    EXPECT_EQ(Probe::living, 2);
    loop.advance(1s);
    EXPECT_EQ(Probe::living, 1);
    std::thread([&stop] { stop.request_stop(); }).join();
    EXPECT_EQ(Probe::living, 1) << "it is destroyed on its loop";
    loop.runPosted();
    EXPECT_EQ(Probe::living, 0);
}

TEST(DetachedTask, StoppedBeforeItStartsNeverRuns) {
    VirtualLoop loop;
    const Log log = makeLog();
    const auto work = [](Log events, Probe) -> Task<void> {
        events->push_back("ran");
        co_return;
    };
    std::stop_source stop;
    startDetached(loop, work(log, Probe()), stop.get_token());
    stop.request_stop();
    loop.runPosted();
    EXPECT_TRUE(log->empty());
    EXPECT_EQ(Probe::living, 0);
}

TEST(DetachedTask, GoesWithALoopThatNeverStartedIt) {
    VirtualLoop consumer;
    std::optional<VirtualLoop> producer(std::in_place);
    AsyncStream<int> stream = streamFrom<int>(*producer, [](StreamWriter<int>&) -> Task<void> { co_return; });
    const auto work = [](AsyncStream<int> source) -> Task<void> {
        const auto value = co_await source.next();
        ADD_FAILURE() << "the producer was cancelled";
        static_cast<void>(value);
    };
    RunningTask running(consumer, work(std::move(stream)));
    running.start();
    producer.reset();
    consumer.runPosted();
    EXPECT_TRUE(running.isDone()) << "the writer's end ends the stream";
}

}  // namespace
}  // namespace ovrin
