// JSON, identities, moments and numbers as text.
#include <cmath>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/date_time.h"
#include "base/json.h"
#include "base/number_text.h"
#include "base/uuid.h"

namespace ovrin {
namespace {

using ::testing::Eq;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

TEST(JsonTest, GettersGiveNothingForWhatIsMissingOrOfAnotherType) {
    const json::Value value =
        json::parseOrThrow(R"({"text":"中","count":7,"whole":4096.0,"half":0.5,"on":true,"none":null,)"
                           R"("huge":18446744073709551615,"far":1e300})");
    EXPECT_THAT(json::string(value, "text"), Optional(std::string("中")));
    EXPECT_EQ(json::string(value, "count"), std::nullopt);
    EXPECT_EQ(json::string(value, "none"), std::nullopt);
    EXPECT_EQ(json::string(json::parseOrThrow("[]"), "text"), std::nullopt);
    EXPECT_THAT(json::integer(value, "count"), Optional(Eq(7)));
    EXPECT_THAT(json::integer(value, "whole"), Optional(Eq(4096)));
    EXPECT_EQ(json::integer(value, "half"), std::nullopt);
    EXPECT_EQ(json::integer(value, "huge"), std::nullopt);
    EXPECT_EQ(json::integer(value, "far"), std::nullopt);
    EXPECT_EQ(json::integer(value, "on"), std::nullopt);
    EXPECT_THAT(json::number(value, "half"), Optional(0.5));
    EXPECT_THAT(json::boolean(value, "on"), Optional(true));
    EXPECT_EQ(json::boolean(value, "count"), std::nullopt);
}

TEST(JsonTest, MalformedDocumentsAreRefusedWithoutQuotingThem) {
    for (const char* document : {"", "{", "[1,]", R"({"a":"sk-secret)", "[1e999]", "\"\xFF\"", "[1] 2"}) {
        EXPECT_EQ(json::parse(document), std::nullopt) << document;
    }
    try {
        json::parseOrThrow(R"({"apiKey": "sk-secret)");
        FAIL();
    } catch (const json::ParseError& error) {
        EXPECT_THAT(error.errorDescription(), Not(HasSubstr("secret")));
    }
}

TEST(JsonTest, NestingIsBounded) {
    const std::string deep(100'000, '[');
    EXPECT_EQ(json::parse(deep + std::string(100'000, ']')), std::nullopt);
    EXPECT_THROW(json::parseOrThrow(deep), json::ParseError);
    const std::string allowed = std::string(512, '[') + std::string(512, ']');
    EXPECT_NE(json::parse(allowed), std::nullopt);
    EXPECT_NE(json::parse(R"(["\")" + deep + R"("])"), std::nullopt);
}

TEST(JsonTest, TextIsWrittenAsItIsAndRepaired) {
    EXPECT_EQ(json::encoded({{"k", "译/\n"}}), R"({"k":"译/\n"})");
    EXPECT_EQ(json::encoded({{"k", "a\xFF"}}), "{\"k\":\"a\uFFFD\"}");
}

TEST(UuidTest, TextFormsAreReadAndWritten) {
    const auto uuid = Uuid::parse("e621e1f8-C36C-495a-93fc-0C247A3E6E5F");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->text(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    for (const char* text : {"", "E621E1F8C36C495A93FC0C247A3E6E5F", "E621E1F8-C36C-495A-93FC-0C247A3E6E5",
                             "E621E1F8-C36C-495A-93FC-0C247A3E6E5G", "{621E1F8-C36C-495A-93FC-0C247A3E6E5F}"}) {
        EXPECT_EQ(Uuid::parse(text), std::nullopt) << text;
    }
}

TEST(UuidTest, RandomOnesDifferAndCarryTheirVersion) {
    std::set<Uuid> seen;
    for (int count = 0; count < 1000; ++count) {
        const Uuid uuid = Uuid::random();
        EXPECT_EQ(uuid.text()[14], '4');
        EXPECT_THAT(std::string("89AB"), HasSubstr(uuid.text().substr(19, 1)));
        seen.insert(uuid);
    }
    EXPECT_EQ(seen.size(), 1000U);
}

TEST(DateTimeTest, WritesWholeSecondsInUtc) {
    const auto moment = parseIso8601("2026-03-01T09:05:07.999Z");
    ASSERT_TRUE(moment);
    EXPECT_EQ(iso8601Text(*moment), "2026-03-01T09:05:07Z");
    EXPECT_EQ(iso8601Text(Timestamp(std::chrono::milliseconds(-1))), "1969-12-31T23:59:59Z");
}

TEST(DateTimeTest, ReadsInternetDateTimesOnly) {
    EXPECT_EQ(parseIso8601("2026-03-01T17:05:07+08:00"), parseIso8601("2026-03-01T09:05:07Z"));
    EXPECT_EQ(parseIso8601("2026-02-28T20:05:07-13:00"), parseIso8601("2026-03-01T09:05:07Z"));
    EXPECT_NE(parseIso8601("2024-02-29T00:00:00Z"), std::nullopt);
    for (const char* text :
         {"", "2026-03-01", "2026-03-01T09:05:07", "2026-02-30T00:00:00Z", "2026-13-01T00:00:00Z",
          "2026-03-01T24:00:00Z", "2026-03-01T09:60:07Z", "2026-03-01 09:05:07Z", "2026-3-01T09:05:07Z",
          "2026-03-01T09:05:07.Z", "2026-03-01T09:05:07Zjunk", "2026-03-01T09:05:07+0800", "0001-01-01T00:00:00Z",
          "9999-12-31T23:59:59Z", "-026-03-01T09:05:07Z"}) {
        EXPECT_EQ(parseIso8601(text), std::nullopt) << text;
    }
}

TEST(NumberTextTest, IsTheShortestThatReadsBack) {
    const std::pair<double, const char*> expectations[] = {{0, "0.0"},
                                                           {-0.0, "-0.0"},
                                                           {0.25, "0.25"},
                                                           {3, "3.0"},
                                                           {0.1 + 0.2, "0.30000000000000004"},
                                                           {0.0001, "0.0001"},
                                                           {0.00001, "1e-05"},
                                                           {-2.5e-7, "-2.5e-07"},
                                                           {1.0 / 3, "0.3333333333333333"},
                                                           {1e300, "1e+300"},
                                                           {1e15, "1000000000000000.0"}};
    for (const auto& [value, text] : expectations) {
        EXPECT_EQ(shortestDecimalText(value), text);
        EXPECT_EQ(std::stod(shortestDecimalText(value)), value);
    }
}

}  // namespace
}  // namespace ovrin
