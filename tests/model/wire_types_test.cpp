// What the records of both wire standards require of JSON.
#include <gtest/gtest.h>

#include "model/anthropic_types.h"
#include "model/deep_seek_types.h"

namespace ovrin {
namespace {

TEST(DeepSeekTypes, DecodesAStreamChunk) {
    const auto chunk = DeepSeek::decodeChatStreamChunk(
        R"({"id":"x","choices":[{"index":0,"delta":{"role":"assistant","content":"a"},"finish_reason":null},
            {"delta":{},"finish_reason":"stop","logprobs":{"content":[1]}},{"delta":{"content":null}}],"usage":null})");
    ASSERT_TRUE(chunk);
    ASSERT_EQ(chunk->choices.size(), 3U);
    EXPECT_EQ(chunk->choices[0].delta.content, "a");
    EXPECT_EQ(chunk->choices[1].finishReason, "stop");
    EXPECT_FALSE(chunk->choices[1].delta.content);
    EXPECT_FALSE(chunk->choices[2].delta.content);
    EXPECT_TRUE(DeepSeek::decodeChatStreamChunk(R"({"choices":[]})"));
}

TEST(DeepSeekTypes, RefusesAStreamChunkThatDoesNotFit) {
    for (const char* json :
         {R"({})", R"([])", R"("choices")", R"({"choices":null})", R"({"choices":{}})", R"({"choices":[null]})",
          R"({"choices":[{}]})", R"({"choices":[{"delta":null}]})", R"({"choices":[{"delta":"a"}]})",
          R"({"choices":[{"delta":{"content":1}}]})", R"({"choices":[{"delta":{"content":["a"]}}]})",
          R"({"choices":[{"delta":{},"finish_reason":0}]})", R"({"choices":[{"delta":{"content":"a"}},{}]})",
          R"({"choices":[]} x)", R"({"choices":[{"delta":{"content":"a"}}])", R"({"error":{"message":"busy"}})"}) {
        EXPECT_FALSE(DeepSeek::decodeChatStreamChunk(json)) << json;
    }
}

TEST(DeepSeekTypes, CountsTheLastOfRepeatedKeys) {
    const auto chunk = DeepSeek::decodeChatStreamChunk(
        R"({"choices":0,"choices":[{"delta":1,"delta":{"content":"old","content":"new"}}]})");
    ASSERT_TRUE(chunk);
    EXPECT_EQ(chunk->choices.at(0).delta.content, "new");
    const auto emptied = DeepSeek::decodeChatStreamChunk(R"({"choices":[{"delta":{"content":"old"},"delta":{}}]})");
    ASSERT_TRUE(emptied);
    EXPECT_FALSE(emptied->choices.at(0).delta.content);
    EXPECT_FALSE(DeepSeek::decodeChatStreamChunk(R"({"choices":[],"choices":1})"));
}

TEST(AnthropicTypes, DecodesAStreamEvent) {
    const auto event = Anthropic::decodeStreamEvent(
        R"({"type":"content_block_delta","index":0,"delta":{"type":"text_delta","text":"a"},"error":null})");
    ASSERT_TRUE(event && event->delta);
    EXPECT_EQ(event->delta->text, "a");
    const auto error = Anthropic::decodeStreamEvent(R"({"type":"error","error":{"message":"m"}})");
    ASSERT_TRUE(error && error->error);
    EXPECT_FALSE(error->error->type);
    EXPECT_TRUE(Anthropic::decodeStreamEvent(R"({"type":"ping"})"));
    for (const char* json : {R"({})", R"({"type":null})", R"({"type":"a","delta":{}})", R"({"type":"a","delta":[]})",
                             R"({"type":"a","delta":{"type":"t","text":1}})", R"({"type":"a","error":{"type":"t"}})",
                             R"({"type":"a","error":{"type":1,"message":"m"}})"}) {
        EXPECT_FALSE(Anthropic::decodeStreamEvent(json)) << json;
    }
}

}  // namespace
}  // namespace ovrin
