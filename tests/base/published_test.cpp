#include "base/published.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/watch.h"

namespace ovrin {
namespace {

using Lines = std::vector<std::string>;

TEST(Published, TellsOfAChangeBeforeAndAfterItTakesEffect) {
    Published<std::string> field("old");
    Lines heard;
    const auto before = field.onWillChange([&](const auto& value) { heard.push_back(field.value() + " to " + value); });
    const auto after = field.onDidChange([&](const auto& value) {
        EXPECT_EQ(value, field.value());
        heard.push_back("now " + value);
    });
    field.set("new");
    field.set("new");
    EXPECT_EQ(heard, (Lines{"old to new", "now new"})) << "an equal value tells nobody";
    EXPECT_EQ(field->size(), 3U);
}

TEST(Published, AWatchHearsTheValueNowAndEveryChangeOfEachFieldUntilItEnds) {
    Published<int> first(1);
    Published<std::string> second("a");
    Lines heard;
    {
        const auto one = watch(first, [&](int value) { heard.push_back(std::to_string(value)); });
        const auto both =
            watch(std::tie(first, second), [&] { heard.push_back(std::to_string(first.value()) + second.value()); });
        first.set(2);
        second.set("b");
    }
    first.set(3);
    EXPECT_EQ(heard, (Lines{"1", "1a", "2", "2a", "2b"}));
}

TEST(Published, SubscriptionsEndWithTheirObjectAndMayOutliveTheField) {
    int changes = 0;
    Subscription kept;
    {
        Published<int> field(0);
        kept = field.onDidChange([&](int) { ++changes; });
        {
            const auto brief = field.onDidChange([&](int) { changes += 10; });
            field.set(1);
        }
        field.set(2);
        kept = {};
        field.set(3);
        kept = field.onDidChange([&](int) { ++changes; });
    }
    EXPECT_EQ(changes, 12);
}

TEST(Published, HandlersMaySubscribeAndUnsubscribe) {
    Published<int> field(0);
    Lines heard;
    Subscription first;
    Subscription second;
    Subscription late;
    first = field.onDidChange([&](int) {
        heard.push_back("first");
        second = {};
        late = field.onDidChange([&](int) { heard.push_back("late"); });
        first = {};
    });
    second = field.onDidChange([&](int) { heard.push_back("second"); });
    field.set(1);
    EXPECT_EQ(heard, Lines{"first"}) << "who came during the round hears of the next one";
    field.set(2);
    EXPECT_EQ(heard, (Lines{"first", "late"}));
}

TEST(Published, AValueSetWhileOthersAreToldReachesEachOnce) {
    Published<int> field(0);
    Lines heard;
    const auto clamp = field.onDidChange([&](int value) {
        heard.push_back("clamp " + std::to_string(value));
        field.set(std::min(value, 10));
    });
    const auto view = field.onDidChange([&](int value) { heard.push_back("view " + std::to_string(value)); });
    field.set(50);
    EXPECT_EQ(heard, (Lines{"clamp 50", "clamp 10", "view 10"}));
    EXPECT_EQ(field.value(), 10);
}

TEST(Published, AValueSetBeforeAChangeIsOverwrittenByIt) {
    Published<int> field(0);
    const auto subscription = field.onWillChange([&](int value) {
        if (value == 1) field.set(5);
    });
    field.set(1);
    EXPECT_EQ(field.value(), 1);
}

TEST(Published, AHandlerMayDestroyTheField) {
    for (const bool isBefore : {true, false}) {
        auto field = std::make_unique<Published<std::string>>("a text too long for the small string buffer");
        const auto destroy = [&field](const std::string&) { field.reset(); };
        const auto first = isBefore ? field->onWillChange(destroy) : field->onDidChange(destroy);
        const auto hear = [](const std::string&) { ADD_FAILURE() << "the field has gone"; };
        const auto second = isBefore ? field->onWillChange(hear) : field->onDidChange(hear);
        field->set("another text too long for the small string buffer");
        EXPECT_FALSE(field);
    }
}

}  // namespace
}  // namespace ovrin
