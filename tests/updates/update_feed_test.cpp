#include "updates/update_feed.h"

#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "fakes/update_feed_text.h"

namespace ovrin {
namespace {

std::string failure(const std::string& document) {
    try {
        parseUpdateFeed(document);
    } catch (const Error& error) {
        return error.errorDescription();
    }
    return "";
}

TEST(UpdateFeedTest, GivesItsItemsInOrderAndLeavesOutWhatIsNotOurs) {
    const FeedItem item{.version = "1.2", .build = "34", .notes = "# New\n<script>alert(1)</script> **b**"};
    FeedItem older = item;
    older.build = "";
    const std::string news = "<item><title>News</title><description>x</description></item>";
    const auto items = parseUpdateFeed(feedDocument(feedItem(item) + news + feedItem(older)));
    ASSERT_EQ(items.size(), 2U);
    const UpdateItem& first = items.front();
    EXPECT_EQ(first.version, "1.2");
    EXPECT_EQ(first.build, "34");
    EXPECT_EQ(first.target, (UpdateTarget{.distribution = "debian", .release = "12", .architecture = "amd64"}));
    EXPECT_EQ(first.packageURL, item.url);
    EXPECT_EQ(first.packageSize, 3U);
    EXPECT_EQ(first.signature, item.signature);
    EXPECT_EQ(first.notes, item.notes) << "scripts are text like any other";
    EXPECT_EQ(first.page, "https://example.com/page");
    EXPECT_EQ(iso8601Text(first.date.value()), "2026-11-24T10:00:00Z");
    EXPECT_EQ(items.back().build, "");
    std::string far = feedDocument(feedItem(item));
    far.replace(far.find("2026 10:00"), 4, "99999");
    EXPECT_EQ(parseUpdateFeed(far).front().date, std::nullopt);
}

TEST(UpdateFeedTest, AnItemOfOursThatLacksSomethingMakesItWrong) {
    const auto with = [](auto change) {
        FeedItem item;
        change(item);
        return failure(feedDocument(feedItem(FeedItem()) + feedItem(item)));
    };
    EXPECT_EQ(with([](FeedItem&) {}), "");
    EXPECT_EQ(with([](FeedItem& item) { item.signature = " "; }), "更新源的内容有误：第 2 条缺少 signature。");
    EXPECT_NE(with([](FeedItem& item) { item.version = ""; }), "");
    EXPECT_NE(with([](FeedItem& item) { item.version = "1 2"; }), "");
    EXPECT_NE(with([](FeedItem& item) { item.release = ""; }), "");
    EXPECT_NE(with([](FeedItem& item) { item.url = "http://example.com/ovrin.deb"; }), "");
    for (const char* const length : {"", "0", "-1", "1e3", "99999999999", "12 bytes"}) {
        EXPECT_NE(with([&](FeedItem& item) { item.length = length; }), "") << length;
    }
}

TEST(UpdateFeedTest, HostileDocumentsAreRefused) {
    const std::string item = feedItem(FeedItem());
    const std::string good = feedDocument(item);
    const std::string body = good.substr(good.find("<rss"));
    const std::string noXML = "更新源不是有效的 XML 文档。";
    EXPECT_EQ(failure(""), noXML);
    EXPECT_EQ(failure("<html><body>Log in"), "更新源的内容有误：不是 RSS 文档。");
    EXPECT_EQ(failure(good.substr(0, good.size() / 2)), noXML);
    EXPECT_EQ(failure(good + "<rss/>"), noXML);
    EXPECT_EQ(failure(feedDocument(item + "&undefined;")), noXML);

    const std::string noDoctype = "更新源的内容有误：不允许 DOCTYPE。";
    EXPECT_EQ(failure("<!DOCTYPE rss>" + body), noDoctype);
    EXPECT_EQ(failure("<!DOCTYPE rss [<!ENTITY f SYSTEM \"file:///etc/passwd\">]>" + body), noDoctype);
    std::string laughs = "<!DOCTYPE rss [<!ENTITY l0 \"ha\">";
    for (int i = 1; i < 20; ++i) {
        const std::string name = std::to_string(i - 1);
        laughs.append("<!ENTITY l").append(std::to_string(i)).append(" '");
        for (int times = 0; times < 10; ++times) laughs.append("&l").append(name).append(";");
        laughs.append("'>");
    }
    EXPECT_EQ(failure(laughs + "]><rss>&l19;</rss>"), noDoctype);

    std::string items;
    for (std::size_t i = 0; i < maximumUpdateFeedItems; ++i) items += "<item/>";
    EXPECT_EQ(failure(feedDocument(items)), "");
    EXPECT_EQ(failure(feedDocument(items + "<item/>")), "更新源的内容有误：超过 200 条。");
    EXPECT_EQ(failure(std::string(maximumUpdateFeedSize + 1, ' ')), "更新源过大（超过 1 MB）。");
    std::string deep;
    for (int i = 0; i < 100'000; ++i) deep += "<item>";
    EXPECT_EQ(failure("<rss>" + deep), noXML);
}

}  // namespace
}  // namespace ovrin
