#include "model/json_reader.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

bool isJSON(std::string_view text) {
    JSONReader reader(text);
    reader.skip();
    return reader.isComplete();
}

std::string stringOf(std::string_view json) {
    JSONReader reader(json);
    std::string result;
    EXPECT_TRUE(reader.readString(result) && reader.isComplete()) << json;
    return result;
}

std::string nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST(JSONReader, AcceptsJSONAndNothingElse) {
    for (const char* json : {"{}", " [ ] ", "null", "true", "false", "0", "-0.5e+10", "12E3", R"("")", "1e999",
                             R"({"a":[1,{"b":[]},"c"],"a":null})", R"("\u0000\/\b")", "\t\r\n[1 , 2]\n"}) {
        EXPECT_TRUE(isJSON(json)) << json;
    }
    for (const char* json : {"",
                             " ",
                             "{",
                             "}",
                             "[1,]",
                             "[,1]",
                             R"({"a"})",
                             R"({"a":})",
                             R"({"a":1,})",
                             "{a:1}",
                             R"({"a":1 "b":2})",
                             "[1 2]",
                             "01",
                             "-",
                             "1.",
                             ".5",
                             "1e",
                             "+1",
                             "nul",
                             "truefalse",
                             "NaN",
                             R"(")",
                             R"("\)",
                             R"("\x")",
                             R"("\u12")",
                             "\"\n\"",
                             R"("\ud800")",
                             R"("\udc00")",
                             R"("\ud800\u0041")",
                             "'a'",
                             "{} {}",
                             "[] ,",
                             "\xEF\xBB\xBF{}",
                             "/**/1"}) {
        EXPECT_FALSE(isJSON(json)) << json;
    }
    EXPECT_FALSE(isJSON(std::string_view("1\0", 2)));
    EXPECT_TRUE(isJSON(nested(512)));
    EXPECT_FALSE(isJSON(nested(513)));
    EXPECT_FALSE(isJSON(std::string(1'000'000, '[')));
}

TEST(JSONReader, ReadsTextsWithEscapesAndAnyAlphabet) {
    EXPECT_EQ(stringOf(R"("plain, longer than one machine word")"), "plain, longer than one machine word");
    EXPECT_EQ(stringOf(R"("a\"\\\/\b\f\n\r\tz")"), "a\"\\/\b\f\n\r\tz");
    EXPECT_EQ(stringOf(R"("\u4f60\u597D 你好 \ud83c\udf4c")"), "你好 你好 🍌");
    EXPECT_EQ(stringOf(R"("\u0000")"), std::string(1, '\0'));
    EXPECT_EQ(stringOf("\"a\xE4\xBD\"\n"), "a\uFFFD");
    EXPECT_EQ(stringOf("\"\xFF\\u0041\""),
              "\uFFFD"
              "A");
}

TEST(JSONReader, FindsMembersBySpelledOutAndEscapedKeys) {
    JSONReader reader(R"({"k\u0065y":1,"other":{"key":"inner"},"key":2})");
    std::vector<std::string> keys;
    EXPECT_TRUE(reader.readObject([&](std::string_view key) {
        keys.emplace_back(key);
        reader.skip();
    }));
    EXPECT_TRUE(reader.isComplete());
    EXPECT_EQ(keys, (std::vector<std::string>{"key", "other", "key"}));
}

TEST(JSONReader, SkipsAValueOfAnotherKind) {
    JSONReader reader(R"([{"a":[1]},"text",null,7])");
    std::vector<bool> fits;
    std::string text;
    EXPECT_TRUE(reader.readArray([&] {
        const std::size_t index = fits.size();
        if (index == 0) fits.push_back(reader.readString(text));
        if (index == 1) fits.push_back(reader.readObject([](std::string_view) {}));
        if (index == 2) fits.push_back(reader.readNull());
        if (index == 3) fits.push_back(reader.readArray([] {}));
    }));
    EXPECT_TRUE(reader.isComplete());
    EXPECT_EQ(fits, (std::vector<bool>{false, false, true, false}));
}

}  // namespace
}  // namespace ovrin
