#include "updates/update_configuration.h"

#include <gtest/gtest.h>

namespace ovrin {
namespace {

UpdateConfiguration with(std::string feedURL, std::string publicKey) {
    return {.feedURL = std::move(feedURL), .publicKey = std::move(publicKey), .version = "1.2", .build = "34"};
}

TEST(UpdateConfigurationTest, NeedsAnHTTPSFeedAndAKeyThatTheBuildHasFilledIn) {
    EXPECT_TRUE(with(" HTTPS://example.com/feed.xml\n", "key").isConfigured());
    EXPECT_FALSE(with("http://example.com/feed.xml", "key").isConfigured());
    EXPECT_FALSE(with("https://", "key").isConfigured());
    EXPECT_FALSE(with("example.com/feed.xml", "key").isConfigured());
    EXPECT_FALSE(with("", "key").isConfigured());
    EXPECT_FALSE(with("https://example.com/$(FEED)", "key").isConfigured());
    EXPECT_FALSE(with("https://example.com/feed.xml", " \n").isConfigured());
    EXPECT_FALSE(with("https://example.com/feed.xml", "$(UPDATE_KEY)").isConfigured());
}

TEST(UpdateConfigurationTest, TheVersionIsShownWithItsBuild) {
    EXPECT_EQ(with("", "").versionDisplay(), "版本 1.2（34）");
    UpdateConfiguration configuration;
    EXPECT_EQ(configuration.versionDisplay(), "版本 –（–）");
    configuration.version = "1.2";
    EXPECT_EQ(configuration.versionDisplay(), "版本 1.2（–）");
}

}  // namespace
}  // namespace ovrin
