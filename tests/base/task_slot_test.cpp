#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/running_task.h"
#include "base/suspension.h"
#include "base/virtual_loop.h"
#include "probe.h"

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Lines = std::vector<std::string>;

Task<void> workFor(EventLoop::Duration duration, Log log, std::string name, Probe) {
    log->push_back(name + " begins");
    co_await sleepFor(duration);
    log->push_back(name + " ends");
}

TEST(TaskSlot, ReplacingDestroysTheOldTaskWhereItWaits) {
    VirtualLoop loop;
    const Log log = makeLog();
    TaskSlot slot(loop);
    EXPECT_FALSE(slot.isRunning());
    slot.replace(workFor(1s, log, "first", Probe([log] { log->push_back("first is cleaned up"); })));
    loop.advance(500ms);
    log->clear();
    slot.replace(workFor(1s, log, "second", Probe()));
    EXPECT_TRUE(slot.isRunning());
    loop.advance(2s);
    EXPECT_FALSE(slot.isRunning());
    EXPECT_EQ(*log, (Lines{"first is cleaned up", "second begins", "second ends"}));
}

TEST(TaskSlot, ATaskThatReplacesItselfEndsAtItsNextWait) {
    VirtualLoop loop;
    const Log log = makeLog();
    TaskSlot slot(loop);
    const auto first = [](TaskSlot& own, Log events) -> Task<void> {
        try {
            co_await sleepFor(1s);
            own.replace(workFor(1s, events, "second", Probe()));
            events->push_back("first runs on");
            co_await sleepFor(0ms);
            events->push_back("first ran past its next wait");
        } catch (...) {
            events->push_back("first heard of an exception");
            throw;
        }
    };
    slot.replace(first(slot, log));
    loop.advance(1s);
    EXPECT_TRUE(slot.isRunning());
    loop.advance(1s);
    EXPECT_EQ(*log, (Lines{"second begins", "first runs on", "second ends"}));
    EXPECT_EQ(Probe::living, 0);
}

TEST(TaskSlot, ReplacingWhileTheNewTaskStartsKeepsTheLastOne) {
    VirtualLoop loop;
    const Log log = makeLog();
    TaskSlot slot(loop);
    const auto first = [](TaskSlot& own, Log events) -> Task<void> {
        own.replace(workFor(1s, events, "second", Probe()));
        co_await sleepFor(0ms);
        events->push_back("first ran past its next wait");
    };
    slot.replace(first(slot, log));
    loop.advance(2s);
    EXPECT_EQ(*log, (Lines{"second begins", "second ends"}));
}

TEST(TaskSlot, CleanUpOfACancelledTaskFindsTheSlotEmptyAndMayUseIt) {
    VirtualLoop loop;
    const Log log = makeLog();
    TaskSlot slot(loop);
    slot.replace(workFor(1s, log, "first", Probe([&slot, log] {
                             EXPECT_FALSE(slot.isRunning());
                             slot.cancel();
                             slot.replace(workFor(1s, log, "from clean-up", Probe()));
                         })));
    slot.replace(workFor(1s, log, "second", Probe()));
    loop.advance(2s);
    EXPECT_EQ(*log, (Lines{"first begins", "from clean-up begins", "second begins", "second ends"}));
    EXPECT_EQ(Probe::living, 0);
}

TEST(TaskSlot, ATaskMayDestroyTheObjectThatHoldsItsSlot) {
    VirtualLoop loop;
    struct Owner {
        explicit Owner(EventLoop& l) : slot(l) {}
        TaskSlot slot;
    };
    const Log log = makeLog();
    auto owner = std::make_unique<Owner>(loop);
    const auto work = [](std::unique_ptr<Owner>& self, EventLoop::Duration before, Log events) -> Task<void> {
        if (before > 0s) co_await sleepFor(before);
        self.reset();
        events->push_back("owner is gone");
        co_await sleepFor(1s);
        events->push_back("ran on without its owner");
    };
    for (const EventLoop::Duration before : {0s, 1s}) {
        owner = std::make_unique<Owner>(loop);
        owner->slot.replace(work(owner, before, log));
        loop.advance(5s);
    }
    EXPECT_EQ(*log, (Lines{"owner is gone", "owner is gone"}));
}

}  // namespace
}  // namespace ovrin
