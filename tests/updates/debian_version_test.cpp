#include "updates/debian_version.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

TEST(DebianVersionTest, SortsAsThePolicySays) {
    const std::vector<std::string_view> ascending{"0.9",       "1.0~~",      "1.0~~a",  "1.0~",
                                                  "1.0~rc1-1", "1.0",        "1.0-0.1", "1.0-1~bpo12+1",
                                                  "1.0-1",     "1.0-1+b1",   "1.0-2",   "1.0-10",
                                                  "1.0a-1",    "1.0+git1-1", "1.0.1",   "1.9",
                                                  "1.10-1",    "1.10.0-1-2", "2",       "99999999999999999999.1",
                                                  "1:0.1",     "2:0"};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        EXPECT_TRUE(isDebianVersion(ascending[i])) << ascending[i];
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            EXPECT_EQ(std::is_lt(compareDebianVersions(ascending[i], ascending[j])), i < j)
                << ascending[i] << " and " << ascending[j];
        }
    }
    EXPECT_TRUE(std::is_eq(compareDebianVersions("1.0", "0:1.00-0"))) << "leading zeros and absent parts count nothing";
}

TEST(DebianVersionTest, OtherTextsAreNone) {
    for (const std::string_view text : {"", "a", "1.0 1", "1.0-", ":1", "x:1", "1.0_1", "1;rm", "版本1", "-1", "1:"}) {
        EXPECT_FALSE(isDebianVersion(text)) << text;
    }
}

}  // namespace
}  // namespace ovrin
