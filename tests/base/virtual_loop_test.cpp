#include "base/virtual_loop.h"

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace ovrin {
namespace {

using Lines = std::vector<std::string>;

class VirtualLoopTest : public testing::Test {
protected:
    EventLoop::Work note(std::string text) {
        return [this, text] { log_.push_back(text + "@" + std::to_string(loop_.now().time_since_epoch() / 1ms)); };
    }

    VirtualLoop loop_;
    Lines log_;
};

TEST_F(VirtualLoopTest, StopsAtEveryTimerOnTheWay) {
    loop_.postAfter(20ms, note("second"));
    loop_.postAfter(10ms, [this] {
        note("first")();
        loop_.postAfter(5ms, note("added on the way"));
        loop_.post(note("posted on the way"));
    });
    loop_.postAfter(20ms, note("third"));
    loop_.postAfter(31ms, note("beyond"));
    loop_.advance(30ms);
    EXPECT_EQ(log_, (Lines{"first@10", "posted on the way@10", "added on the way@15", "second@20", "third@20"}));
    EXPECT_EQ(loop_.now().time_since_epoch(), 30ms);
    loop_.advance(1ms);
    EXPECT_EQ(log_.back(), "beyond@31");
}

TEST_F(VirtualLoopTest, RunPostedLeavesTheTimeAlone) {
    loop_.postAfter(1ns, note("later"));
    loop_.postAfter(0ns, note("due"));
    loop_.post(note("posted"));
    loop_.runPosted();
    EXPECT_EQ(log_, (Lines{"posted@0", "due@0"}));
}

TEST_F(VirtualLoopTest, WorkMayMoveTheTimeOnItself) {
    loop_.postAfter(10ms, [this] { loop_.advance(1s); });
    loop_.postAfter(500ms, note("within"));
    loop_.advance(20ms);
    EXPECT_EQ(log_, Lines{"within@500"});
    EXPECT_EQ(loop_.now().time_since_epoch(), 1010ms) << "time never goes back";
}

TEST_F(VirtualLoopTest, RunUntilWaitsForWorkAndDueTimersOfOtherThreads) {
    bool isPosted = false;
    bool isTimerRun = false;
    std::thread other([&] {
        loop_.post([&] { isPosted = true; });
        loop_.postAfter(0ns, [&] { isTimerRun = true; });
    });
    loop_.runUntil([&] { return isPosted && isTimerRun; });
    other.join();
    EXPECT_EQ(loop_.now().time_since_epoch(), 0ns);
}

}  // namespace
}  // namespace ovrin
