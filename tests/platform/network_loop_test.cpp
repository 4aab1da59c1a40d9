#include "platform/linux/network/network_loop.h"

#include <chrono>
#include <filesystem>
#include <future>
#include <iterator>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace ovrin {
namespace {

long threadCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

TEST(NetworkLoop, StartsItsThreadWithTheFirstWork) {
    std::thread([] {}).join();  // a sanitizer starts a thread of its own with the first
    const long before = threadCount();
    NetworkLoop loop;
    EXPECT_EQ(threadCount(), before);
    std::promise<bool> isCurrent;
    loop.post([&] { isCurrent.set_value(loop.isCurrent()); });
    EXPECT_TRUE(isCurrent.get_future().get());
    EXPECT_FALSE(loop.isCurrent());
}

TEST(NetworkLoop, RunsWhatWasPostedBeforeItEndsAndForgetsTimers) {
    const auto marker = std::make_shared<int>(0);
    {
        NetworkLoop loop;
        loop.postAfter(1h, [marker] { ++*marker; });
        loop.post([&loop, marker] { loop.post([marker] { ++*marker; }); });
    }
    EXPECT_EQ(*marker, 1);
    EXPECT_EQ(marker.use_count(), 1);
}

}  // namespace
}  // namespace ovrin
