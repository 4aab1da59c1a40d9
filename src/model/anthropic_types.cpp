#include "model/anthropic_types.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "base/json.h"
#include "model/json_reader.h"
#include "model/wire_decoding.h"

namespace ovrin::Anthropic {

namespace {

// A delta and a content block have the same fields.
template <typename TypedText>
bool readTypedText(JSONReader& reader, TypedText& value) {
    return readRecord(reader, required("type", value.type), optional("text", value.text));
}

bool readErrorPayload(JSONReader& reader, ErrorPayload& error) {
    error = {};
    return readRecord(reader, optional("type", error.type), required("message", error.message));
}

bool readStreamEvent(JSONReader& reader, StreamEvent& event) {
    const auto readDelta = [&event](JSONReader& value) {
        return readOptional(value, event.delta, readTypedText<StreamEvent::Delta>);
    };
    const auto readError = [&event](JSONReader& value) { return readOptional(value, event.error, readErrorPayload); };
    return readRecord(reader, required("type", event.type), optional("delta", readDelta), optional("error", readError));
}

bool readAPIErrorBody(JSONReader& reader, APIErrorBody& body) {
    return readRecord(reader,
                      required("error", [&body](JSONReader& value) { return readErrorPayload(value, body.error); }));
}

bool readResponse(JSONReader& reader, Response& response) {
    const auto readContent = [&response](JSONReader& value) {
        return readList(value, response.content, readTypedText<Response::ContentBlock>);
    };
    return readRecord(reader, required("content", readContent));
}

}  // namespace

std::string encode(const Request& request) {
    json::Value body = {{"model", request.model}, {"max_tokens", request.maxTokens}};
    if (request.system) body["system"] = *request.system;
    json::Value messages = json::Value::array();
    for (const Message& message : request.messages) {
        messages.push_back({{"role", message.role}, {"content", message.content}});
    }
    body["messages"] = std::move(messages);
    if (request.temperature) body["temperature"] = *request.temperature;
    body["stream"] = request.stream;
    return json::encoded(body);
}

std::optional<StreamEvent> decodeStreamEvent(std::string_view json) {
    return decodeWhole<StreamEvent>(json, readStreamEvent);
}

std::optional<APIErrorBody> decodeAPIErrorBody(std::string_view json) {
    return decodeWhole<APIErrorBody>(json, readAPIErrorBody);
}

std::optional<Response> decodeResponse(std::string_view json) {
    return decodeWhole<Response>(json, readResponse);
}

}  // namespace ovrin::Anthropic
