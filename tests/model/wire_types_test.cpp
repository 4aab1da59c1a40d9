// What the records of both wire standards require of JSON, and the JSON they become.
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "model/anthropic_types.h"
#include "model/deep_seek_types.h"

namespace ovrin {
namespace {

using Json = nlohmann::json;

TEST(DeepSeekTypes, EncodesARequest) {
    const std::string body = encode(DeepSeek::ChatRequest{
        .model = " m ", .messages = {{"system", "“你\"\n"}, {"user", ""}}, .temperature = 0.2, .stream = true});
    EXPECT_EQ(Json::parse(body), Json::parse(R"({"model":" m ","messages":[{"role":"system","content":"“你\"\n"},
        {"role":"user","content":""}],"temperature":0.2,"stream":true})"));
    EXPECT_EQ(body.find('\n'), std::string::npos);
}

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

TEST(DeepSeekTypes, DecodesResponsesAndErrorBodies) {
    const auto response = DeepSeek::decodeChatResponse(
        R"({"choices":[{"message":{"role":"assistant","content":"hi"},"finish_reason":"stop"}]})");
    ASSERT_TRUE(response);
    EXPECT_EQ(response->choices.at(0).message, (DeepSeek::Message{"assistant", "hi"}));
    EXPECT_FALSE(DeepSeek::decodeChatResponse(R"({"choices":[{"message":{"role":"assistant","content":null}}]})"));
    EXPECT_FALSE(DeepSeek::decodeChatResponse(R"({"choices":[{"message":{"content":"hi"}}]})"));

    const auto error = DeepSeek::decodeAPIErrorBody(R"({"error":{"message":"No","type":"t","param":null,"code":"c"}})");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->error.message, "No");
    EXPECT_EQ(error->error.type, "t");
    EXPECT_EQ(error->error.code, "c");
    EXPECT_TRUE(DeepSeek::decodeAPIErrorBody(R"({"error":{"message":"","type":null,"code":null}})"));
    EXPECT_FALSE(DeepSeek::decodeAPIErrorBody(R"({"error":{"message":"No","code":401}})"));
    EXPECT_FALSE(DeepSeek::decodeAPIErrorBody(R"({"error":{"type":"t"}})"));
    EXPECT_FALSE(DeepSeek::decodeAPIErrorBody(R"({"error":"No"})"));
}

TEST(AnthropicTypes, EncodesARequest) {
    Anthropic::Request request{.model = "m",
                               .maxTokens = std::numeric_limits<std::int64_t>::max(),
                               .system = "s",
                               .messages = {{"user", "u"}},
                               .temperature = 0,
                               .stream = false};
    EXPECT_EQ(Json::parse(encode(request)), Json::parse(R"({"model":"m","max_tokens":9223372036854775807,"system":"s",
                              "messages":[{"role":"user","content":"u"}],"temperature":0.0,"stream":false})"));
    request.system.reset();
    request.messages.clear();
    EXPECT_EQ(Json::parse(encode(request)).contains("system"), false);
    EXPECT_EQ(Json::parse(encode(request)).at("messages"), Json::array());
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

TEST(AnthropicTypes, DecodesResponsesAndErrorBodies) {
    const auto response =
        Anthropic::decodeResponse(R"({"content":[{"type":"thinking","thinking":"…"},{"type":"text","text":"a"}]})");
    ASSERT_TRUE(response);
    ASSERT_EQ(response->content.size(), 2U);
    EXPECT_FALSE(response->content[0].text);
    EXPECT_EQ(response->content[1].text, "a");
    EXPECT_FALSE(Anthropic::decodeResponse(R"({"content":"a"})"));
    EXPECT_FALSE(Anthropic::decodeResponse(R"({"content":[{"text":"a"}]})"));

    const auto error = Anthropic::decodeAPIErrorBody(
        R"({"type":"error","error":{"type":"overloaded_error","message":"Overloaded"},"request_id":"r"})");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->error.type, "overloaded_error");
    EXPECT_EQ(error->error.message, "Overloaded");
}

}  // namespace
}  // namespace ovrin
