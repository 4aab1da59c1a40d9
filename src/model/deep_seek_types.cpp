#include "model/deep_seek_types.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "model/json_reader.h"
#include "model/wire_decoding.h"

namespace ovrin::DeepSeek {

namespace {

bool readDelta(JSONReader& reader, ChatStreamChunk::Delta& delta) {
    delta = {};
    // Whatever stands there spoils nothing.
    const auto readThought = [&delta](JSONReader& value) {
        std::string thought;
        delta.isThinking |= value.readString(thought) && !thought.empty();
        return true;
    };
    return readRecord(reader, optional("content", delta.content), optional("reasoning_content", readThought),
                      optional("reasoning", readThought));
}

bool readStreamChoice(JSONReader& reader, ChatStreamChunk::Choice& choice) {
    return readRecord(reader,
                      required("delta", [&choice](JSONReader& value) { return readDelta(value, choice.delta); }),
                      optional("finish_reason", choice.finishReason));
}

bool readMessage(JSONReader& reader, Message& message) {
    return readRecord(reader, required("role", message.role), required("content", message.content));
}

bool readResponseChoice(JSONReader& reader, ChatResponse::Choice& choice) {
    return readRecord(reader,
                      required("message", [&choice](JSONReader& value) { return readMessage(value, choice.message); }));
}

// Both bodies with choices, whose elements readChoice(reader, choice) reads.
template <typename Body, typename ReadChoice>
std::optional<Body> decodeChoices(std::string_view json, ReadChoice readChoice) {
    return decodeWhole<Body>(json, [&](JSONReader& reader, Body& body) {
        const auto readChoices = [&](JSONReader& value) { return readList(value, body.choices, readChoice); };
        return readRecord(reader, required("choices", readChoices));
    });
}

bool readErrorPayload(JSONReader& reader, APIErrorBody::ErrorPayload& error) {
    error = {};
    return readRecord(reader, required("message", error.message), optional("type", error.type),
                      optional("code", error.code));
}

bool readAPIErrorBody(JSONReader& reader, APIErrorBody& body) {
    return readRecord(reader,
                      required("error", [&body](JSONReader& value) { return readErrorPayload(value, body.error); }));
}

}  // namespace

std::string encode(const ChatRequest& request) {
    json::Value messages = json::Value::array();
    for (const Message& message : request.messages) {
        messages.push_back({{"role", message.role}, {"content", message.content}});
    }
    json::Value body = {{"model", request.model}, {"messages", std::move(messages)}, {"stream", request.stream}};
    if (request.temperature) body["temperature"] = *request.temperature;
    return json::encoded(body);
}

std::optional<ChatStreamChunk> decodeChatStreamChunk(std::string_view json) {
    return decodeChoices<ChatStreamChunk>(json, readStreamChoice);
}

std::optional<ChatResponse> decodeChatResponse(std::string_view json) {
    return decodeChoices<ChatResponse>(json, readResponseChoice);
}

std::optional<APIErrorBody> decodeAPIErrorBody(std::string_view json) {
    return decodeWhole<APIErrorBody>(json, readAPIErrorBody);
}

}  // namespace ovrin::DeepSeek
